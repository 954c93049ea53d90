#pragma once

#include <QTimer>

#include "VeltoMKV/Page.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace velto {

class AppState;
class LiveLines;

// The working page: the stage, the counts and the time left, a bar (indeterminate while no
// fraction is known), the time so far, the latest translated lines and the way to stop. The
// clock ticks on its own, between job reports.
class ProgressView : public Page {
    Q_OBJECT

public:
    explicit ProgressView(AppState& state, QWidget* parent = nullptr);

    // A job is running: the clock ticks.
    void startClock();
    void stopClock();

    QPushButton* cancelButton() const { return m_cancel; }
    QProgressBar* bar() const { return m_bar; }
    QLabel* stageLine() const { return m_stage; }
    QLabel* detailLine() const { return m_detail; }
    LiveLines* liveLines() const { return m_lines; }

private:
    void showProgress();
    void showDetail();
    void showLines();
    void tick();

    AppState& m_state;
    QLabel* m_stage;
    QLabel* m_detail;
    QProgressBar* m_bar;
    QLabel* m_percent;
    QLabel* m_elapsed;
    QWidget* m_linesPanel;
    LiveLines* m_lines;
    QPushButton* m_cancel;
    QTimer m_ticker;
};

} // namespace velto
