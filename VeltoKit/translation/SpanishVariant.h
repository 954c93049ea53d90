#pragma once

#include <array>
#include <optional>

#include <QString>
#include <QStringView>

namespace velto {

// The target dialect. Persisted and passed around by its raw value.
enum class SpanishVariant : quint8 { neutro, rioplatense, latino, espana };

// Every case, in the order pickers show them.
const std::array<SpanishVariant, 4>& allSpanishVariants();

// "neutro", "rioplatense", "latino", "espana"
QString rawValue(SpanishVariant variant);
// What the user picks from, e.g. "Rioplatense (voseo)".
QString label(SpanishVariant variant);
// The register sentence written into the system prompt.
QString dialectDescription(SpanishVariant variant);
// Exact match on the raw value only; anything else is no variant and the caller picks its default.
std::optional<SpanishVariant> spanishVariantFromRawValue(QStringView raw);

} // namespace velto
