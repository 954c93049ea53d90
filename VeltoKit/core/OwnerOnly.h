#pragma once

#include <QString>

class QFileDevice;

// What a user translates is theirs: the folders and files that hold it while the program works
// are readable by their owner only, even in a temporary folder shared with other users.
namespace velto::OwnerOnly {

// Creates `path` and its missing parents, then closes the last one to everyone else (0700).
// False when the folder could not be made.
bool makeFolder(const QString& path);
// Closes an existing folder to everyone else (0700).
bool closeFolder(const QString& path);
// Closes an existing file to everyone else (0600).
bool closeFile(const QString& path);
// The same for a file being written, before its first byte.
bool closeFile(QFileDevice& file);

} // namespace velto::OwnerOnly
