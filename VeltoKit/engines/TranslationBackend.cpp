#include "VeltoKit/engines/TranslationBackend.h"

#include "VeltoKit/engines/TranslationError.h"

namespace velto {

void TranslationBackend::preflight(std::stop_token stop) const {
    const QString answer =
        complete(QStringLiteral("Respondé exactamente con el texto pedido, sin agregar nada más."),
                 QStringLiteral("Respondé exactamente: PONG"), stop);
    if (!answer.toUpper().contains(QStringLiteral("PONG"))) {
        throw TranslationError(
            QStringLiteral("El motor respondió algo inesperado al chequeo inicial: ") +
                answer.left(200),
            true);
    }
}

} // namespace velto
