#pragma once

#include <QWidget>

class QLabel;

namespace velto {

class AppState;
class CostPreview;
class Preferences;

// Under the engine line, before the job starts: how many requests, tokens, dollars and minutes
// the chosen track will take with the chosen engine and options, in one quiet line.
class EstimateLine : public QWidget {
    Q_OBJECT

public:
    EstimateLine(AppState& state, Preferences& preferences, QWidget* parent = nullptr);

    QLabel* text() const { return m_text; }

private:
    void refresh();
    void show();

    AppState& m_state;
    Preferences& m_preferences;
    CostPreview* m_preview;
    QLabel* m_text;
};

} // namespace velto
