#pragma once

// What every subtitle test uses: the parsers, GoogleTest, and a few helpers.
#include <gtest/gtest.h>

#include "VeltoKit/subtitles/AssDocument.h"
#include "VeltoKit/subtitles/SrtDocument.h"
#include "VeltoKit/subtitles/SubtitleError.h"
#include "VeltoKit/subtitles/Subtitles.h"

namespace velto {

inline const QString assEvents =
    QStringLiteral("[Events]\nFormat: Layer, Start, End, Style, Name, MarginL, MarginR, MarginV, "
                   "Effect, Text\n");

inline QString testDataFile(const QString& name) {
    return QStringLiteral(VELTO_TEST_DATA_DIR "/subtitles/") + name;
}

// The description of the error an operation throws ("empty: " or "timingChanged: " before a
// SubtitleError's), or "(no error)".
template <typename Operation>
QString errorOf(Operation operation) {
    try {
        operation();
    } catch (const SubtitleError& error) {
        const bool empty = error.kind() == SubtitleError::Kind::empty;
        return (empty ? QStringLiteral("empty: ") : QStringLiteral("timingChanged: ")) +
               error.description();
    } catch (const VeltoError& error) {
        return error.description();
    }
    return QStringLiteral("(no error)");
}

} // namespace velto
