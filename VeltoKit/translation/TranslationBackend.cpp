#include "VeltoKit/translation/TranslationBackend.h"

#include "VeltoKit/translation/TranslationError.h"

namespace velto {

QString TranslationBackend::cacheScope() const {
    return label();
}

EngineAnswer TranslationBackend::answer(const QString& system, const QString& prompt,
                                        std::stop_token stop) const {
    return {complete(system, prompt, stop), std::nullopt};
}

std::optional<qint64> TranslationBackend::outputLimit() const {
    return std::nullopt;
}

void TranslationBackend::preflight(std::stop_token stop) const {
    const QString answer =
        complete(QStringLiteral("Respondé exactamente con el texto pedido, sin agregar nada más."),
                 QStringLiteral("Respondé exactamente: PONG"), stop);
    if (!answer.toUpper().contains(QStringLiteral("PONG"))) {
        throw TranslationError::fatal(
            QStringLiteral("El motor respondió algo inesperado al chequeo inicial: ") +
            answer.left(200));
    }
}

} // namespace velto
