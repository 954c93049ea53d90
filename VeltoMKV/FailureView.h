#pragma once

#include "VeltoMKV/Page.h"

class QLabel;
class QPushButton;

namespace velto {

class AppState;

// The failed page: the job's own sentence, and the two ways on.
class FailureView : public Page {
    Q_OBJECT

public:
    explicit FailureView(AppState& state, QWidget* parent = nullptr);

    QLabel* message() const { return m_message; }
    QPushButton* retryButton() const { return m_retry; }
    QPushButton* startOverButton() const { return m_startOver; }

signals:
    void retryRequested();

private:
    AppState& m_state;
    QLabel* m_message;
    QPushButton* m_retry;
    QPushButton* m_startOver;
};

} // namespace velto
