#include "VeltoKit/subtitles/TimingSignature.h"

namespace velto {

QString TimingSignature::toListNotation() const {
    QString out = QStringLiteral("[");
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i > 0)
            out += QStringLiteral(", ");
        out += u'"' + fields[i] + u'"';
    }
    return out + u']';
}

} // namespace velto
