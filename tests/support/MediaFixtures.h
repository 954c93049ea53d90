#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include "VeltoKit/media/FFmpeg.h"

// Small real media files for tests, written with the real ffmpeg from lavfi sources.
namespace velto::MediaFixtures {

enum class SubtitleFormat {
    srt,        // subrip (MKV)
    ass,        // ass (MKV)
    webvtt,     // webvtt (MKV)
    movText,    // mov_text (MP4/MOV)
    pgs,        // hdmv_pgs_subtitle (MKV), from a generated .sup
    dvdSubtitle // dvd_subtitle (MKV), converted from the same .sup
};

struct SubtitleRecipe {
    SubtitleFormat format = SubtitleFormat::srt;
    QString language; // the tag as written ("eng", "und", "es"); empty: no tag
    QString title;    // empty: no title
    bool isDefault = false;
    bool forced = false;
    bool hearingImpaired = false;
    // One cue per line, one second each, starting at 0.5 s. Image formats draw one box per line.
    QStringList lines = {QStringLiteral("Hello there."), QStringLiteral("How are you?"),
                         QStringLiteral("Fine, thanks.")};
    // When not empty, the subtitle file itself (e.g. one from the corpus), used instead of
    // `lines`; `format` must still say what it is.
    QByteArray contents;
};

struct VideoRecipe {
    double seconds = 3;
    bool audio = true;
    bool fontAttachment = false; // one attached font file (MKV only)
    bool chapters = false;       // two chapters, "Uno" and "Dos"
    QList<SubtitleRecipe> subtitles;
};

// Writes `path`; the container follows its extension (mkv, mp4, mov...). Throws
// std::runtime_error with ffmpeg's message when ffmpeg refuses.
void writeVideo(const QString& path, const VideoRecipe& recipe);

// Subtitle files with one cue per line, one second each from 0.5 s.
QByteArray srtText(const QStringList& lines);
QByteArray assText(const QStringList& lines);
QByteArray webvttText(const QStringList& lines);
// A PGS (.sup) stream that shows `count` small boxes, one second each from 0.5 s.
QByteArray pgsStream(int count);

// The real ffmpeg and ffprobe (throws std::runtime_error when they are not installed).
FFmpeg tools();
// Every stream of `path` as ffprobe lists them (`-show_streams`).
QJsonArray probeStreams(const QString& path);
// `mkvmerge -J path`, the independent reading of a Matroska file.
QJsonObject mkvmergeIdentify(const QString& path);
// Writes `bytes` to `path`, throwing std::runtime_error on failure.
void writeFile(const QString& path, const QByteArray& bytes);

} // namespace velto::MediaFixtures
