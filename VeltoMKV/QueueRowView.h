#pragma once

#include <optional>

#include <QWidget>

class QComboBox;
class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;

namespace velto {

struct QueueRow;

// One video of the queue: its state as a mark, its name, the track it will translate (a picker
// until it starts), the state in words with its own bar while it runs, and the one action that
// fits: move or remove before the start, show the file when done, try again after a failure.
class QueueRowView : public QWidget {
    Q_OBJECT

public:
    QueueRowView(quint64 id, QWidget* parent = nullptr);

    quint64 id() const { return m_id; }
    // `first` and `last` say where it sits, for the buttons that move it.
    void show(const QueueRow& row, bool first, bool last);

    QLabel* nameLabel() const { return m_name; }
    QComboBox* trackPicker() const { return m_track; }
    // The state in a word ("esperando", "43 %", "listo"), and under it what a word cannot say.
    QLabel* badge() const { return m_badge; }
    QLabel* stateLine() const { return m_state; }
    QProgressBar* bar() const { return m_bar; }
    QPushButton* actionButton() const { return m_action; }

signals:
    void trackChosen(quint64 id, std::optional<qint64> index);
    void moveRequested(quint64 id, int step);
    void removeRequested(quint64 id);
    void retryRequested(quint64 id);
    void revealRequested(const QString& path);

private:
    void showTracks(const QueueRow& row);
    void showAction(const QueueRow& row, bool first, bool last);
    void act();

    quint64 m_id;
    QLabel* m_mark;
    QLabel* m_name;
    QLabel* m_badge;
    QComboBox* m_track;
    QLabel* m_state;
    QProgressBar* m_bar;
    QToolButton* m_up;
    QToolButton* m_down;
    QPushButton* m_action;
    // What the action button does now.
    enum class Action { none, remove, reveal, retry } m_doing = Action::none;
    QString m_output;
    // The picker is being filled: its changes are not the user's.
    bool m_filling = false;
};

} // namespace velto
