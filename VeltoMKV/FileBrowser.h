#pragma once

#include <QString>

namespace velto::FileBrowser {

// Shows `path` selected in the system's file browser: Finder on macOS, Explorer on Windows, the
// desktop's file manager over D-Bus on Linux, or at least its folder when none answers.
// Returns at once; the file browser comes up on its own time.
void reveal(const QString& path);

} // namespace velto::FileBrowser
