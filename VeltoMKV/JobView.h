#pragma once

#include "VeltoMKV/Page.h"

class QCheckBox;
class QLabel;
class QListWidget;
class QPushButton;
class QToolButton;

namespace velto {

class AppState;
class EngineLine;
class OptionsPanel;
class Preferences;
class SettingsPresenter;

// The ready page: the open file, its subtitle tracks with the chosen one marked, the notices
// about Spanish tracks already there, the options, the engine and where the result goes, and
// the button that starts the job. It reads the state and calls its actions, nothing more.
class JobView : public Page {
    Q_OBJECT

public:
    JobView(AppState& state, Preferences& preferences, SettingsPresenter& settings,
            QWidget* parent = nullptr);

    QPushButton* startButton() const { return m_start; }
    QListWidget* trackList() const { return m_tracks; }
    QCheckBox* forceToggle() const { return m_force; }
    QLabel* notice() const { return m_noticeText; }
    QLabel* engineLine() const;
    QLabel* outputLine() const { return m_output; }
    QToolButton* optionsDisclosure() const { return m_disclosure; }
    // Asks the engine again (its key may have changed elsewhere).
    void refreshEngine();

signals:
    // The user asked to start; the window decides with which preferences.
    void startRequested();

private:
    void showFile();
    void showTracks();
    void markChosenTrack();
    void showOutput();
    // The main button follows the engine's readiness.
    void showStart();
    int rowHeight() const;
    void chooseOutput();

    AppState& m_state;
    Preferences& m_preferences;
    QListWidget* m_tracks;
    QWidget* m_noticeRow;
    QLabel* m_noticeIcon;
    QLabel* m_noticeText;
    QCheckBox* m_force;
    QToolButton* m_disclosure;
    QLabel* m_optionsSummary;
    OptionsPanel* m_options;
    EngineLine* m_engine;
    QLabel* m_outputQuestion;
    QLabel* m_output;
    QPushButton* m_saveAs;
    QPushButton* m_start;
};

} // namespace velto
