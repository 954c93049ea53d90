#pragma once

// Invariants shared by the subtitle fuzz targets. A broken invariant aborts, which libFuzzer
// reports as a crash with the input that caused it.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <QByteArray>
#include <QString>
#include <QStringList>

#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/TextDecoder.h"

namespace velto::fuzz {

inline void require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "invariant broken: %s\n", what);
        std::abort();
    }
}

inline QString decoded(const uint8_t* data, size_t size) {
    return TextDecoder::decode(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
}

inline std::unique_ptr<SubtitleDocument> reparse(const SubtitleDocument& document) {
    if (document.kind() == u"ass")
        return std::make_unique<AssDocument>(AssDocument::parse(document.render()));
    return std::make_unique<SrtDocument>(SrtDocument::parse(document.render()));
}

inline void requireStableTimings(const SubtitleDocument& document, const char* what) {
    require(reparse(document)->timingSignature() == document.timingSignature(), what);
}

// A script read without a Format: line rests on a guess that edits may change (see
// AssDocument::guessedFieldOrder); every other document must read back the same after edits.
inline bool editsMustReadBack(const SubtitleDocument& document) {
    const auto* ass = dynamic_cast<const AssDocument*>(&document);
    return ass == nullptr || !ass->guessedFieldOrder();
}

// Whatever a model sends back (other cues' texts, stray line breaks, timing lines, placeholders
// from the input itself) must never move a timing once the file is written and read again.
inline void requireTranslationsCannotMoveTimings(SubtitleDocument& document, const QString& noise) {
    const QStringList texts = document.texts();
    QStringList translated;
    for (qsizetype k = 0; k < texts.size(); ++k)
        translated.append(texts[(k * 7 + 3) % texts.size()] + noise.left(k % 5 * 16));
    document.setTexts(translated);
    require(document.texts().size() == texts.size(), "setTexts changed the number of texts");
    if (editsMustReadBack(document))
        requireStableTimings(document, "a translation moved a timing");
}

} // namespace velto::fuzz
