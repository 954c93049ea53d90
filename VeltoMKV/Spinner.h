#pragma once

#include <QTimer>
#include <QWidget>

namespace velto {

// A turning arc in the highlight colour, for waits without a known length. It turns only
// while shown.
class Spinner : public QWidget {
    Q_OBJECT

public:
    explicit Spinner(QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QTimer m_timer;
    int m_angle = 0;
};

} // namespace velto
