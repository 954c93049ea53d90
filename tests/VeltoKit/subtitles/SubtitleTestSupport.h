#pragma once

#include <ostream>

#include <QStringList>

#include "VeltoKit/subtitles/SubtitleError.h"
#include "VeltoKit/subtitles/TimingSignature.h"
#include "support/QStringPrinter.h"

inline void PrintTo(const QStringList& list, std::ostream* out) {
    *out << '[' << list.join(QStringLiteral(", ")).toStdString() << ']';
}

namespace velto {

inline void PrintTo(const TimingSignature& signature, std::ostream* out) {
    *out << signature.toListNotation().toStdString();
}

inline QString testDataFile(const QString& name) {
    return QStringLiteral(VELTO_TEST_DATA_DIR "/subtitles/") + name;
}

// The description of the error an operation throws, or "(no error)".
template <typename Error, typename Operation>
QString errorOf(Operation operation) {
    try {
        operation();
    } catch (const Error& error) {
        return error.description();
    }
    return QStringLiteral("(no error)");
}

// "empty: <message>" or "timingChanged: <message>", or "(no error)".
template <typename Operation>
QString subtitleErrorOf(Operation operation) {
    try {
        operation();
    } catch (const SubtitleError& error) {
        const bool empty = error.kind() == SubtitleError::Kind::empty;
        return (empty ? QStringLiteral("empty: ") : QStringLiteral("timingChanged: ")) +
               error.description();
    }
    return QStringLiteral("(no error)");
}

} // namespace velto
