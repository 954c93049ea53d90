#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

class QLabel;
class QMimeData;
class QPushButton;
class QVBoxLayout;

namespace velto {

class DropTarget;

// The idle page: a large target for a video file (or several, or a folder), with a button for those
// who would rather pick it from a dialog, in a column that scrolls when the window is smaller than
// its content. Refusals show as a quiet line inside the zone, never as a dialog.
class DropZone : public QWidget {
    Q_OBJECT

public:
    explicit DropZone(QWidget* parent = nullptr);

    // The local files and folders that `data` carries; empty unless it carries only those.
    static QStringList droppedFiles(const QMimeData* data);
    // Why `data` is refused, in the user's words; empty when it is accepted.
    static QString refusal(const QMimeData* data);

    QPushButton* chooseButton() const { return m_choose; }
    // Puts `widget` under the target, in the same scrolling column.
    void addBelow(QWidget* widget);
    QString refusalText() const;
    void showRefusal(const QString& text);

signals:
    void filesDropped(const QStringList& paths);
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
