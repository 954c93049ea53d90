#pragma once

#include <memory>

#include <QString>

#include "VeltoKit/core/Leftovers.h"

namespace velto {

class SubtitleDocument;

// The subtitle file written beside a video. It is written under a hidden name in its own folder,
// read back from there and proved against the source's timings, and takes its name only when
// the job commits it: a failure or a cancel before that leaves nothing under the name.
class SidecarFile {
public:
    // Copies `verified` (the file that goes into the video) to a hidden file beside `path` and
    // proves its timings equal `source`'s. Throws FileError or SubtitleError unchanged, leaving
    // nothing behind.
    SidecarFile(QString path, const QString& verified, const SubtitleDocument& source);
    // Removes the hidden file unless it was committed.
    ~SidecarFile();
    SidecarFile(const SidecarFile&) = delete;
    SidecarFile& operator=(const SidecarFile&) = delete;

    // Gives the file its name, replacing one that was there. Throws FileError.
    void commit();

    const QString& path() const { return m_path; }

private:
    QString m_path;
    QString m_hidden;
    std::unique_ptr<Leftovers::Path> m_listed;
};

} // namespace velto
