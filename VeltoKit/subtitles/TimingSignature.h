#pragma once

#include <QStringList>

namespace velto {

// Everything that fixes when and how one cue or event is shown, as the exact text read.
// Compared as text: no time arithmetic, so "0:01:02.5" and "00:01:02,500" differ on purpose.
struct TimingSignature {
    QStringList fields;

    // ["a", "b"]: how the verification messages print a signature.
    QString toListNotation() const;

    friend bool operator==(const TimingSignature&, const TimingSignature&) = default;
};

} // namespace velto
