#pragma once

#include <QList>
#include <QString>

namespace velto::SubtitleCorpus {

// One subtitle file, read and classified as a track extracted from a video would be.
struct File {
    QString path;
    QString text;  // decoded as Subtitles::readText decodes it
    QString codec; // "ass" or "subrip": what the prober would report
    // Judged independently of the parsers: no dialogue line (ASS) or no line shaped like an SRT
    // timing line. Subtitles::load refuses exactly these files.
    bool holdsNoCue() const;
};

// The shared real-world corpus: $VELTO_CORPUS_DIR when set, else the folder chosen at configure
// time. It lives beside the project, so a fresh clone may not have it.
QString directory();
// Empty when the corpus holds files; otherwise the one line a test that needs it skips with.
QString missingReason();

// Every subtitle file under `root` and its subfolders, sorted by path, the corpus's own notes
// (SOURCES.md, SHA256SUMS, .gitattributes) left out.
QList<File> files(const QString& root);

} // namespace velto::SubtitleCorpus
