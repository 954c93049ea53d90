#pragma once

#include <QMainWindow>

class QAction;
class QLabel;
class QStackedWidget;

namespace velto {

class AppState;
class DropZone;
class EngineLine;
class SettingsDialog;
class FailureView;
class AnalyzingView;
class JobView;
class OpenFileRelay;
class Preferences;
class ProgressView;
class QueueState;
class QueueView;
class ResultView;
class SettingsPresenter;

// One calm column whose page follows the state's phase. It holds no logic: it shows the state
// and the preferences and calls their actions.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    MainWindow(AppState& state, Preferences& preferences, SettingsPresenter& settings,
               OpenFileRelay& relay, QWidget* parent = nullptr);

    DropZone* dropZone() const { return m_dropZone; }
    JobView* jobView() const { return m_jobView; }
    ProgressView* progressView() const { return m_progressView; }
    ResultView* resultView() const { return m_resultView; }
    FailureView* failureView() const { return m_failureView; }
    QueueView* queueView() const { return m_queueView; }
    QueueState& queueState() const { return *m_queue; }
    QWidget* currentPage() const;
    QLabel* ffmpegWarning() const { return m_ffmpegText; }
    EngineLine* startEngine() const { return m_startEngine; }

    void openFile(const QString& path);
    // One video opens as before; several, or a folder, go to the queue (and join it while it
    // shows).
    void openFiles(const QStringList& paths);
    void chooseFile();
    void startJob();
    // Runs the failed job again as it was set up, or reads the file again if it never was.
    void retry();

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void showPhase();
    void showFfmpegStatus();
    void takePendingFile();
    void presentSettings(bool presented);
    void returnPressed();
    bool acceptsFiles() const;
    bool showsQueue() const;
    // The folder of the last video opened, or the home folder.
    QString startFolder() const;

    AppState& m_state;
    Preferences& m_preferences;
    SettingsPresenter& m_settings;
    OpenFileRelay& m_relay;
    QStackedWidget* m_pages;
    DropZone* m_dropZone;
    AnalyzingView* m_analyzingView;
    JobView* m_jobView;
    ProgressView* m_progressView;
    ResultView* m_resultView;
    FailureView* m_failureView;
    QueueState* m_queue;
    QueueView* m_queueView;
    QWidget* m_ffmpegRow;
    QLabel* m_ffmpegText;
    QAction* m_openAction;
    EngineLine* m_startEngine;
    SettingsDialog* m_settingsDialog = nullptr;
    // Return came while the file was still being read: start as soon as it is ready.
    bool m_startWhenReady = false;
};

} // namespace velto
