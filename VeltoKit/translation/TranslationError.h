#pragma once

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// The one error of every engine. A fatal one says the same request can never succeed (bad key,
// unknown model...), so the job stops; a transient one says only this attempt failed.
class TranslationError : public VeltoError {
public:
    static TranslationError fatal(QString message);
    static TranslationError transient(QString message);

    QString message() const { return description(); }
    bool isFatal() const { return m_fatal; }

private:
    TranslationError(QString message, bool fatal);

    bool m_fatal;
};

} // namespace velto
