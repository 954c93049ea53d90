#pragma once

#include <optional>

#include <QString>
#include <QWidget>

class QLabel;
class QMimeData;
class QPushButton;
class QVBoxLayout;

namespace velto {

class DropTarget;

// The idle page: a large target for one video file, with a button for those who would rather
// pick it from a dialog, in a column that scrolls when the window is smaller than its content.
// Refusals show as a quiet line inside the zone, never as a dialog.
class DropZone : public QWidget {
    Q_OBJECT

public:
    explicit DropZone(QWidget* parent = nullptr);

    // The one local file that `data` carries, if it carries exactly that.
    static std::optional<QString> droppedFile(const QMimeData* data);
    // Why `data` is refused, in the user's words; empty when it is accepted.
    static QString refusal(const QMimeData* data);

    QPushButton* chooseButton() const { return m_choose; }
    // Puts `widget` under the target, in the same scrolling column.
    void addBelow(QWidget* widget);
    QString refusalText() const;

signals:
    void fileDropped(const QString& path);
    void chooseRequested();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void setHovering(bool hovering);

    QVBoxLayout* m_column;
    DropTarget* m_target;
    QPushButton* m_choose;
    QLabel* m_refusal;
};

} // namespace velto
