#include "VeltoKit/translation/TranslationError.h"

namespace velto {

TranslationError::TranslationError(QString message, bool fatal)
    : VeltoError(std::move(message))
    , m_fatal(fatal) {}

} // namespace velto
