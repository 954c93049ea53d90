#pragma once

#include <optional>

#include <QString>
#include <QWidget>

class QLabel;
class QMimeData;
class QPushButton;

namespace velto {

// The idle page: a large target for one video file, with a button for those who would rather
// pick it from a dialog. Refusals show as a quiet line inside the zone, never as a dialog.
class DropZone : public QWidget {
    Q_OBJECT

public:
    explicit DropZone(QWidget* parent = nullptr);

    // The one local file that `data` carries, if it carries exactly that.
    static std::optional<QString> droppedFile(const QMimeData* data);
    // Why `data` is refused, in the user's words; empty when it is accepted.
    static QString refusal(const QMimeData* data);

    QPushButton* chooseButton() const { return m_choose; }
    QString refusalText() const;

signals:
    void fileDropped(const QString& path);
    void chooseRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void setHovering(bool hovering);

    QPushButton* m_choose;
    QLabel* m_refusal;
    bool m_hovering = false;
};

} // namespace velto
