#pragma once

#include <QString>

namespace velto {

// What a run has on disk or running while it works: scratch folders, half-written outputs and
// the tools writing them. Their owners take them away on every ordinary way out; this list is
// for the one way that skips the owners, a process that must end at once (a second Ctrl-C).
// Thread-safe.
namespace Leftovers {

// Listed for as long as the object lives.
class Path {
public:
    explicit Path(QString path);
    ~Path();
    Path(const Path&) = delete;
    Path& operator=(const Path&) = delete;

private:
    QString m_path;
};

class Child {
public:
    explicit Child(qint64 processId);
    ~Child();
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

private:
    qint64 m_processId;
};

// Kills the listed children, then removes the listed files and folders. Not for a signal
// handler: it allocates and takes a lock.
void removeNow();

} // namespace Leftovers
} // namespace velto
