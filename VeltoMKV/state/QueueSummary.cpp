#include "VeltoMKV/state/QueueSummary.h"

#include "VeltoMKV/state/Format.h"

namespace velto {
namespace {

QString counted(qsizetype number, const QString& one, const QString& many) {
    return Format::count(number) + u' ' + (number == 1 ? one : many);
}

} // namespace

QString QueueSummary::text() const {
    QStringList parts;
    if (done > 0)
        parts << counted(done, QStringLiteral("video listo"), QStringLiteral("videos listos"));
    if (skipped > 0)
        parts << counted(skipped, QStringLiteral("omitido"), QStringLiteral("omitidos"));
    if (failed > 0)
        parts << counted(failed, QStringLiteral("falló"), QStringLiteral("fallaron"));
    if (cancelled > 0)
        parts << counted(cancelled, QStringLiteral("cancelado"), QStringLiteral("cancelados"));
    return parts.join(QStringLiteral(" · "));
}

} // namespace velto
