#include "VeltoKit/translation/SpanishVariant.h"

namespace velto {

QString rawValue(SpanishVariant variant) {
    switch (variant) {
    case SpanishVariant::neutro:
        return QStringLiteral("neutro");
    case SpanishVariant::rioplatense:
        return QStringLiteral("rioplatense");
    case SpanishVariant::latino:
        return QStringLiteral("latino");
    case SpanishVariant::espana:
        return QStringLiteral("espana");
    }
    Q_UNREACHABLE();
    return {};
}

QString label(SpanishVariant variant) {
    switch (variant) {
    case SpanishVariant::neutro:
        return QStringLiteral("Neutro (recomendado)");
    case SpanishVariant::rioplatense:
        return QStringLiteral("Rioplatense (voseo)");
    case SpanishVariant::latino:
        return QStringLiteral("Latinoamericano");
    case SpanishVariant::espana:
        return QStringLiteral("España");
    }
    Q_UNREACHABLE();
    return {};
}

QString dialectDescription(SpanishVariant variant) {
    switch (variant) {
    case SpanishVariant::neutro:
        return QStringLiteral(
            "español neutro latinoamericano, sin modismos de ningún país en particular");
    case SpanishVariant::rioplatense:
        return QStringLiteral("español rioplatense (Argentina/Uruguay): voseo, «vos tenés», "
                              "«mirá», sin «tú» ni «vosotros»");
    case SpanishVariant::latino:
        return QStringLiteral(
            "español latinoamericano estándar de doblaje, con «tú» y sin «vosotros»");
    case SpanishVariant::espana:
        return QStringLiteral("español de España: uso de «vosotros», «vale», registro peninsular");
    }
    Q_UNREACHABLE();
    return {};
}

std::optional<SpanishVariant> spanishVariantFromRawValue(QStringView raw) {
    for (SpanishVariant variant : allSpanishVariants()) {
        if (raw == rawValue(variant))
            return variant;
    }
    return std::nullopt;
}

} // namespace velto
