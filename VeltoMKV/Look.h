#pragma once

#include <QIcon>
#include <QPalette>
#include <QString>

class QLabel;
class QScrollArea;
class QToolButton;
class QVBoxLayout;
class QPushButton;
class QWidget;

// The window's three text levels, its one accent and its spacing, all from the platform's font
// and palette so dark mode and high contrast follow by themselves.
namespace velto::Look {

inline constexpr int margin = 24;
inline constexpr int rowGap = 12;
inline constexpr int groupGap = 24;
inline constexpr int maxColumnWidth = 720;

// File names and the failure's heading: the platform's font, larger and semibold.
QLabel* title(const QString& text, QWidget* parent);
// Gives `label` the title's font.
void makeTitle(QLabel* label);
// Help texts, details, times: body size in the palette's placeholder colour.
QLabel* secondary(const QString& text, QWidget* parent);
// Section headers: semibold body.
QLabel* heading(const QString& text, QWidget* parent);
// A label whose text wraps and can be selected and copied.
QLabel* paragraph(const QString& text, QWidget* parent);
// The one action a page leads to: drawn in the highlight colour.
QPushButton* primaryButton(const QString& text, QWidget* parent);
// Any other action: the platform's button, as tall as the primary one and as roomy.
QPushButton* button(const QString& text, QWidget* parent);
// A quiet action that reads like a link.
QPushButton* quietButton(const QString& text, QWidget* parent);
// A flat toggle with an arrow that points down while what it folds is open.
QToolButton* disclosure(const QString& text, QWidget* parent);
// A label showing a standard icon at text height, sharp at any scale.
QLabel* iconLabel(const QIcon& icon, int size, QWidget* parent);
// A frameless scrolling column for a page whose content may outgrow the window; its layout
// keeps a gap from the scroll bar while one shows.
struct ScrollingColumn {
    QScrollArea* area;
    QVBoxLayout* layout;
};
ScrollingColumn scrollingColumn(QWidget* parent);
QIcon warningIcon();
// The round mark of a list's chosen row (filled with the accent) or of the others (a ring).
QIcon choiceMark(bool chosen, const QPalette& palette);
// A check in an accent disc: a job that ended well.
QIcon doneMark(const QPalette& palette);
QIcon informationIcon();

} // namespace velto::Look
