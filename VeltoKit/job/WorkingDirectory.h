#pragma once

#include <memory>

#include <QString>

#include "VeltoKit/core/Leftovers.h"

namespace velto {

// A fresh "veltomkv-<UUID>" folder in the system's temporary directory, removed with all it
// holds when the owner goes out of scope, however it leaves.
class WorkingDirectory {
public:
    // Throws FileError when the folder cannot be created.
    WorkingDirectory();
    ~WorkingDirectory();
    WorkingDirectory(const WorkingDirectory&) = delete;
    WorkingDirectory& operator=(const WorkingDirectory&) = delete;

    QString path() const { return m_path; }
    QString filePath(const QString& name) const;

private:
    QString m_path;
    std::unique_ptr<Leftovers::Path> m_listed;
};

} // namespace velto
