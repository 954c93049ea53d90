#pragma once

#include <QWidget>

class QHBoxLayout;
class QIcon;
class QLabel;
class QVBoxLayout;

namespace velto {

// The shape every page of the window shares: a header with the page's icon, its title, a
// secondary line under it and room for a quiet action at the right; a column that scrolls when
// the content outgrows the window; and a footer whose buttons sit at the right, the main one
// last. Pages fill the column and the footer; the header and its spacing are decided here.
class Page : public QWidget {
    Q_OBJECT

public:
    Page(const QIcon& icon, QWidget* parent);

protected:
    QLabel* titleLabel() const { return m_title; }
    QLabel* subtitleLabel() const { return m_subtitle; }
    // The line under the title; hidden while empty.
    void setSubtitle(const QString& text);
    void setIcon(const QIcon& icon);
    void setHeaderAction(QWidget* action);
    QVBoxLayout* column() const { return m_column; }
    QHBoxLayout* footer() const { return m_footer; }

private:
    QLabel* m_icon;
    QLabel* m_title;
    QLabel* m_subtitle;
    QHBoxLayout* m_header;
    QVBoxLayout* m_column;
    QHBoxLayout* m_footer;
};

} // namespace velto
