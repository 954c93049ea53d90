#include "VeltoKit/translation/SpanishVariant.h"

#include "VeltoKit/core/EnumTable.h"

namespace velto {
namespace {

struct VariantTexts {
    SpanishVariant value;
    QStringView raw;
    QStringView label;
    QStringView dialect;
};

constexpr VariantTexts variants[] = {
    {SpanishVariant::neutro, u"neutro", u"Neutro (recomendado)",
     u"español neutro latinoamericano, sin modismos de ningún país en particular"},
    {SpanishVariant::rioplatense, u"rioplatense", u"Rioplatense (voseo)",
     u"español rioplatense (Argentina/Uruguay): voseo, «vos tenés», «mirá», sin «tú» ni "
     u"«vosotros»"},
    {SpanishVariant::latino, u"latino", u"Latinoamericano",
     u"español latinoamericano estándar de doblaje, con «tú» y sin «vosotros»"},
    {SpanishVariant::espana, u"espana", u"España",
     u"español de España: uso de «vosotros», «vale», registro peninsular"},
};
static_assert(EnumTable::coversInOrder(variants, SpanishVariant::espana));

} // namespace

const std::array<SpanishVariant, 4>& allSpanishVariants() {
    static constexpr std::array<SpanishVariant, 4> all = EnumTable::values(variants);
    return all;
}

QString rawValue(SpanishVariant variant) {
    return EnumTable::row(variants, variant).raw.toString();
}

QString label(SpanishVariant variant) {
    return EnumTable::row(variants, variant).label.toString();
}

QString dialectDescription(SpanishVariant variant) {
    return EnumTable::row(variants, variant).dialect.toString();
}

std::optional<SpanishVariant> spanishVariantFromRawValue(QStringView raw) {
    return EnumTable::find(variants, &VariantTexts::raw, raw);
}

} // namespace velto
