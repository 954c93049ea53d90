#pragma once

#include <optional>

#include <QString>
#include <QStringList>

namespace velto {

// One subtitle stream of a probed file.
struct SubtitleTrack {
    qint64 index = 0;         // stream index in the container: what "-map 0:<index>" takes
    qint64 relativeIndex = 0; // position among the file's subtitle streams, from 0
    QString codec = QStringLiteral("unknown");
    QString language = QStringLiteral("und"); // normalised (Languages::normalize)
    QString rawLanguage;                      // the language tag as found
    QString title;
    bool forced = false;
    bool isDefault = false;
    bool hearingImpaired = false;
    std::optional<qint64> frameCount; // number of subtitle events, when the file states it

    static bool isTextCodec(const QString& codec);
    // Image formats, teletext included: none of them can be translated without OCR.
    static bool isBitmapCodec(const QString& codec);

    bool isText() const { return isTextCodec(codec); }
    bool isBitmap() const { return isBitmapCodec(codec); }
    QString languageName() const;
    // "predeterminada", "forzada", "SDH", "imagen", each only when it applies.
    QStringList flags() const;
    // "#3  inglés  «Full»  [predeterminada, SDH]  (812 eventos)"
    QString summary() const;

    bool operator==(const SubtitleTrack&) const = default;
};

} // namespace velto
