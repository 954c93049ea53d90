#pragma once

#include <QElapsedTimer>
#include <QTimer>

#include "VeltoMKV/Page.h"

class QLabel;
class QProgressBar;
class QPushButton;

namespace velto {

class AppState;

// The working page: the stage, its detail, a bar (indeterminate while no fraction is known),
// the time so far and the way to stop. The clock ticks on its own, between job reports.
class ProgressView : public Page {
    Q_OBJECT

public:
    explicit ProgressView(AppState& state, QWidget* parent = nullptr);

    // Restarts the clock: a job just started.
    void startClock();
    void stopClock();

    QPushButton* cancelButton() const { return m_cancel; }
    QProgressBar* bar() const { return m_bar; }
    QLabel* stageLine() const { return m_stage; }

private:
    void showProgress();
    void tick();

    AppState& m_state;
    QLabel* m_stage;
    QLabel* m_detail;
    QProgressBar* m_bar;
    QLabel* m_percent;
    QLabel* m_elapsed;
    QPushButton* m_cancel;
    QElapsedTimer m_clock;
    QTimer m_ticker;
};

} // namespace velto
