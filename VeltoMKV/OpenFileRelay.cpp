#include "VeltoMKV/OpenFileRelay.h"

#include <QFileInfo>
#include <QFileOpenEvent>

namespace velto {

OpenFileRelay::OpenFileRelay(QObject* parent)
    : QObject(parent) {}

void OpenFileRelay::setPending(const QString& path) {
    m_pending = QFileInfo(path).absoluteFilePath();
    emit pendingChanged();
}

std::optional<QString> OpenFileRelay::take() {
    return std::exchange(m_pending, std::nullopt);
}

bool OpenFileRelay::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FileOpen) {
        const auto* open = static_cast<QFileOpenEvent*>(event);
        if (!open->file().isEmpty()) {
            setPending(open->file());
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace velto
