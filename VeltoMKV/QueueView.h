#pragma once

#include "VeltoMKV/Page.h"

class QCheckBox;
class QLabel;
class QPushButton;
class QVBoxLayout;

namespace velto {

class EngineLine;
class OptionsPanel;
class Preferences;
class QueueRowView;
class QueueState;
class SettingsPresenter;

// The queue's page: one row per video, «Traducir igual» for the whole list when some video
// already has Spanish, the options and the engine, and at the end what became of each video. It
// shows the queue's state and calls its actions; the rows run on the state's floor.
class QueueView : public Page {
    Q_OBJECT

public:
    QueueView(QueueState& queue, Preferences& preferences, SettingsPresenter& settings,
              QWidget* parent = nullptr);

    QueueRowView* rowView(qsizetype position) const;
    QPushButton* startButton() const { return m_start; }
    QPushButton* cancelButton() const { return m_cancel; }
    QPushButton* clearButton() const { return m_clear; }
    QCheckBox* forceToggle() const { return m_force; }
    // The closing lines: the counts and the warnings of each video.
    QWidget* summaryPanel() const { return m_summary; }
    QLabel* summaryText() const { return m_summaryText; }
    void refreshEngine();
    void start();

signals:
    void revealRequested(const QString& path);

private:
    void rebuildRows();
    void showRow(quint64 id);
    void showQueue();
    void showSummary();

    QueueState& m_queue;
    Preferences& m_preferences;
    QPushButton* m_clear;
    QVBoxLayout* m_rows;
    QList<QueueRowView*> m_rowViews;
    QWidget* m_forceRow;
    QCheckBox* m_force;
    QWidget* m_summary;
    QLabel* m_summaryText;
    QLabel* m_warnings;
    QLabel* m_failure;
    QLabel* m_optionsSummary;
    QPushButton* m_optionsButton;
    OptionsPanel* m_options;
    EngineLine* m_engine;
    QPushButton* m_cancel;
    QPushButton* m_start;
    // The row whose job the list last scrolled to.
    quint64 m_followed = 0;
};

} // namespace velto
