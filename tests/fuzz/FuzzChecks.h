#pragma once

// A broken invariant aborts, which libFuzzer reports as a crash with the input that caused it.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "VeltoKit/subtitles/TextDecoder.h"
#include "support/SubtitleInvariants.h"

namespace velto::fuzz {

inline void require(const char* broken) {
    if (broken != nullptr) {
        std::fprintf(stderr, "invariant broken: %s\n", broken);
        std::abort();
    }
}

inline QString decoded(const uint8_t* data, size_t size) {
    return TextDecoder::decode(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
}

// No crash; parse → render → parse keeps every timing (and an ASS script renders back to its
// own text); no translation can move a timing of the rendered file.
inline int checkLoading(bool ass, const uint8_t* data, size_t size) {
    const QString text = decoded(data, size);
    if (const auto document = SubtitleInvariants::parsed(ass, text)) {
        require(SubtitleInvariants::brokenByLoading(*document, text));
        require(SubtitleInvariants::brokenByTranslating(*document, text));
    }
    return 0;
}

} // namespace velto::fuzz
