#pragma once

#include <QDialog>

class QLabel;
class QListWidget;

namespace velto {

class Preferences;

// A plain stand-in for the settings window: the providers in catalogue order, each choice
// stored at once, with the chosen one's note and what it still lacks.
class EngineChooser : public QDialog {
    Q_OBJECT

public:
    EngineChooser(Preferences& preferences, QWidget* parent);

    QListWidget* providerList() const { return m_list; }

private:
    void showChoice();

    Preferences& m_preferences;
    QListWidget* m_list;
    QLabel* m_note;
    QLabel* m_readiness;
};

} // namespace velto
