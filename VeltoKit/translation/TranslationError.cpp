#include "VeltoKit/translation/TranslationError.h"

namespace velto {

TranslationError::TranslationError(QString message, bool fatal)
    : VeltoError(std::move(message))
    , m_fatal(fatal) {}

TranslationError TranslationError::fatal(QString message) {
    return TranslationError(std::move(message), true);
}

TranslationError TranslationError::transient(QString message) {
    return TranslationError(std::move(message), false);
}

TranslationError TranslationError::busy(QString message, std::chrono::milliseconds pause) {
    TranslationError error(std::move(message), false);
    error.m_pause = pause;
    return error;
}

} // namespace velto
