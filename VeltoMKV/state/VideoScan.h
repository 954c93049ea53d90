#pragma once

#include <QString>
#include <QStringList>

// Turns what the user dropped or chose (files, folders) into the videos to translate.
namespace velto::VideoScan {

// "E2" before "E10": runs of digits compare by their value, the rest ignoring case.
bool naturalLess(const QString& a, const QString& b);
// Whether the name ends in an extension of a container the job reads.
bool isVideo(const QString& path);
// The videos of `paths`, absolute, in natural order: files as they are, folders by their videos
// at any depth, without the copies the job made of them earlier; each video once.
QStringList videos(const QStringList& paths);

} // namespace velto::VideoScan
