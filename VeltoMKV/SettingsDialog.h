#pragma once

#include <QDialog>
#include <QTimer>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace velto {

class AddressField;
class AppState;
class EngineQueries;
class KeyField;
class ModelField;
class Preferences;
class Spinner;
struct Provider;

// "Motor de traducción": choose the provider and give it what it needs, set ffmpeg's folder,
// and test the connection. Every change is stored at once; only the sections the chosen
// provider needs are shown. A sheet over the main window on macOS, window-modal elsewhere.
class SettingsDialog : public QDialog {
    Q_OBJECT

public:
    SettingsDialog(Preferences& preferences, AppState& state, QWidget* parent);
    ~SettingsDialog() override;

    // Shows the dialog in the platform's way for settings of one window.
    void present();

protected:
    void done(int result) override;

private:
    QWidget* buildProviders();
    QWidget* buildDetails();
    QWidget* buildEffort();
    QWidget* buildClaudeCLI();
    QWidget* buildNotice();
    QWidget* buildTools();
    QWidget* buildFooter();

    // Shows the stored provider's sections and values, and drops the queries of the last one.
    void showProvider();
    void showReadiness();
    void showFfmpeg();
    void chooseClaude();
    void chooseFfmpegFolder();
    void testConnection();
    void showTestResult(bool succeeded, const QString& message);

    Preferences& m_preferences;
    AppState& m_state;
    EngineQueries* m_queries = nullptr;

    QListWidget* m_providers = nullptr;
    QLabel* m_note = nullptr;
    QWidget* m_service = nullptr;
    KeyField* m_key = nullptr;
    AddressField* m_address = nullptr;
    ModelField* m_model = nullptr;
    QWidget* m_effort = nullptr;
    QComboBox* m_effortChoice = nullptr;
    QWidget* m_cli = nullptr;
    QComboBox* m_cliModel = nullptr;
    QLineEdit* m_cliPath = nullptr;
    QWidget* m_cliMissing = nullptr;
    QLabel* m_noticeIcon = nullptr;
    QLabel* m_notice = nullptr;
    QLineEdit* m_ffmpegFolder = nullptr;
    QLabel* m_ffmpegIcon = nullptr;
    QLabel* m_ffmpegStatus = nullptr;
    QPushButton* m_test = nullptr;
    Spinner* m_testSpinner = nullptr;
    QLabel* m_testIcon = nullptr;
    QLabel* m_testResult = nullptr;
    QTimer m_claudePathPause;
};

} // namespace velto
