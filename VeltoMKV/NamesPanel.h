#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QTableWidget;
class QToolButton;

namespace velto {

class AppState;
class NameList;

// «Nombres y términos», folded under a one-line summary (a film has dozens of names): the
// open video's list as two columns, the term and how it goes in Spanish (empty: it stays as it
// is). Editing a cell, «Agregar» and «Quitar» change the list, which writes the folder's file.
class NamesPanel : public QWidget {
    Q_OBJECT

public:
    explicit NamesPanel(AppState& state, QWidget* parent = nullptr);

    QToolButton* disclosure() const { return m_disclosure; }
    QLabel* summary() const { return m_summary; }
    QTableWidget* table() const { return m_table; }
    NameList& list() const { return *m_list; }

private:
    void showList();
    void bringIntoView();
    void cellEdited(int row, int column);
    void addRow();
    void removeRow();
    QString summaryText() const;

    NameList* m_list;
    QToolButton* m_disclosure;
    QLabel* m_summary;
    QWidget* m_body;
    QTableWidget* m_table;
    QLabel* m_note;
    QPushButton* m_remove;
};

} // namespace velto
