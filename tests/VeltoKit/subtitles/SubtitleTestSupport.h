#pragma once

#include <ostream>

#include <QString>
#include <QStringList>

#include "VeltoKit/subtitles/TimingSignature.h"

// Readable failure output: gtest would otherwise print these as raw bytes.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QStringList& list, std::ostream* out)
{
    *out << '[' << list.join(QStringLiteral(", ")).toStdString() << ']';
}

namespace velto {

inline void PrintTo(const TimingSignature& signature, std::ostream* out)
{
    *out << signature.toListNotation().toStdString();
}

} // namespace velto

namespace velto::test {

inline QString dataFile(const QString& name)
{
    return QStringLiteral(VELTO_TEST_DATA_DIR "/subtitles/") + name;
}

} // namespace velto::test
