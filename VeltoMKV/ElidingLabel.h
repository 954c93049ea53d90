#pragma once

#include <QLabel>

namespace velto {

// A one-line label that gives up its width: a name longer than the room left shows its start
// and its end around a "…" (or its start, for a summary), and the whole name in a tooltip. text()
// stays the whole name.
class ElidingLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidingLabel(QWidget* parent = nullptr, Qt::TextElideMode mode = Qt::ElideMiddle);

    // What fits in the current width.
    QString shownText() const;
    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Qt::TextElideMode m_mode;
};

} // namespace velto
