#pragma once

#include <QString>

namespace velto {
struct JobResult;
}

namespace velto::UsageSummary {

// What a finished job's requests took, in one line: "38 pedidos · 95.412 tokens de entrada y
// 24.318 de salida · US$ 0,46" (or "sin costo", or "precio desconocido"). Empty when the job
// sent no request.
QString of(const JobResult& result);

} // namespace velto::UsageSummary
