#include "VeltoKit/core/Leftovers.h"

#include <mutex>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>

#if !defined(Q_OS_WIN)
#include <csignal>
#endif

namespace velto::Leftovers {
namespace {

struct Listed {
    std::mutex mutex;
    QList<QString> paths;
    QList<qint64> children;
};

Listed& listed() {
    static Listed instance;
    return instance;
}

} // namespace

Path::Path(QString path)
    : m_path(std::move(path)) {
    const std::lock_guard lock(listed().mutex);
    listed().paths.append(m_path);
}

Path::~Path() {
    const std::lock_guard lock(listed().mutex);
    listed().paths.removeOne(m_path);
}

Child::Child(qint64 processId)
    : m_processId(processId) {
    const std::lock_guard lock(listed().mutex);
    listed().children.append(m_processId);
}

Child::~Child() {
    const std::lock_guard lock(listed().mutex);
    listed().children.removeOne(m_processId);
}

void removeNow() {
    const std::lock_guard lock(listed().mutex);
#if !defined(Q_OS_WIN)
    // First the writers, so nothing is written again after it was removed.
    for (const qint64 child : listed().children)
        ::kill(static_cast<pid_t>(child), SIGKILL);
#endif
    for (const QString& path : listed().paths) {
        if (QFileInfo(path).isDir())
            QDir(path).removeRecursively();
        else
            QFile::remove(path);
    }
}

} // namespace velto::Leftovers
