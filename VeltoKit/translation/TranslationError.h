#pragma once

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// The one error of every engine. fatal: the same request can never succeed (bad key,
// unknown model...), so the job stops; otherwise only this attempt failed.
class TranslationError : public VeltoError {
public:
    TranslationError(QString message, bool fatal);

    QString message() const { return description(); }
    bool fatal() const { return m_fatal; }

private:
    bool m_fatal;
};

} // namespace velto
