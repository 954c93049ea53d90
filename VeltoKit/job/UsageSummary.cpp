#include "VeltoKit/job/UsageSummary.h"

#include <QLocale>

#include "VeltoKit/job/JobResult.h"
#include "VeltoKit/job/Money.h"

namespace velto::UsageSummary {

QString of(const JobResult& result) {
    if (result.requests == 0)
        return {};
    static const QLocale spanish(QLocale::Spanish, QLocale::Argentina);
    QString cost = QStringLiteral("precio desconocido");
    if (result.cost)
        cost = *result.cost == 0 ? QStringLiteral("sin costo") : Money::usd(*result.cost);
    return spanish.toString(result.requests) +
           (result.requests == 1 ? QStringLiteral(" pedido · ") : QStringLiteral(" pedidos · ")) +
           spanish.toString(result.usage.input) + QStringLiteral(" tokens de entrada y ") +
           spanish.toString(result.usage.output) + QStringLiteral(" de salida · ") + cost;
}

} // namespace velto::UsageSummary
