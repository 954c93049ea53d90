#pragma once

#include <chrono>

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// The one error of every engine. A fatal one says the same request can never succeed (bad key,
// unknown model...), so the job stops; a transient one says only this attempt failed.
class TranslationError : public VeltoError {
public:
    static TranslationError fatal(QString message);
    static TranslationError transient(QString message);
    // A transient failure whose service asked not to be asked again before `pause` is over.
    static TranslationError busy(QString message, std::chrono::milliseconds pause);

    QString message() const { return description(); }
    bool isFatal() const { return m_fatal; }
    // Zero unless the service named a wait.
    std::chrono::milliseconds requestedPause() const { return m_pause; }

private:
    TranslationError(QString message, bool fatal);

    bool m_fatal;
    std::chrono::milliseconds m_pause{0};
};

} // namespace velto
