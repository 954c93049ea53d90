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
    srt,        // subrip
    ass,        // ass, converted by ffmpeg from the SRT
    webvtt,     // webvtt, converted by ffmpeg from the SRT
    movText,    // mov_text (MP4/MOV)
    pgs,        // hdmv_pgs_subtitle, from a generated .sup
    dvdSubtitle // dvd_subtitle, converted by ffmpeg from the same .sup
};

struct SubtitleRecipe {
    // srt becomes mov_text in MP4/MOV and webvtt in WebM, the text formats those take.
    SubtitleFormat format = SubtitleFormat::srt;
    // Every member has an initializer, so a designated initializer may leave any of them out
    // without a missing-initializer warning.
    QString language{}; // the tag as written ("eng", "es"); empty: no tag
    QString title{};    // empty: no title
    bool isDefault = false;
    bool forced = false;
    bool hearingImpaired = false;
    // One cue per line, 0.9 s each, one every second from 0.5 s. Image formats draw one box
    // per line.
    QStringList lines = {QStringLiteral("Hello there."), QStringLiteral("How are you?"),
                         QStringLiteral("Fine, thanks.")};
    // When not empty, the SRT file (for image formats, the .sup stream) used instead of `lines`.
    QByteArray contents{};
};

// Three seconds of video and audio, the subtitles in order, then an optional font and chapters.
struct VideoRecipe {
    bool fontAttachment = false; // one attached font file (Matroska only)
    bool chapters = false;       // two chapters, "Uno" and "Dos"
    QList<SubtitleRecipe> subtitles{};
};

// Writes `path`; the container follows its extension (mkv, mp4, mov...). Throws
// std::runtime_error with ffmpeg's message when ffmpeg refuses.
void writeVideo(const QString& path, const VideoRecipe& recipe);
// The SRT file writeVideo makes of `lines` (timed as SubtitleRecipe::lines says).
QByteArray srtText(const QStringList& lines);

// The real ffmpeg and ffprobe (throws std::runtime_error when they are not installed).
FFmpeg tools();
// Every stream of `path` as ffprobe lists them (`-show_streams`).
QJsonArray probeStreams(const QString& path);
// One line per subtitle track of `info`: "codec: summary".
QStringList describeTracks(const MediaInfo& info);
// The cues of subtitle stream `n` of `path` (0: its first subtitle track), as ffmpeg reads them
// into SRT.
QString subtitleText(const QString& path, int n);
// `mkvmerge -J path`, the independent reading of a Matroska file.
QJsonObject mkvmergeIdentify(const QString& path);
// Writes `bytes` to `path`, throwing std::runtime_error on failure.
void writeFile(const QString& path, const QByteArray& bytes);
// The bytes of `path`; empty when it cannot be read.
QByteArray readFile(const QString& path);

} // namespace velto::MediaFixtures
