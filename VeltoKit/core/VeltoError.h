#pragma once

#include <exception>
#include <stop_token>

#include <QByteArray>
#include <QString>

namespace velto {

// Every failure the user may see carries its finished Spanish sentence; front ends show
// description() as it stands.
class VeltoError : public std::exception {
public:
    explicit VeltoError(QString description);

    QString description() const { return m_description; }
    const char* what() const noexcept override;

private:
    QString m_description;
    QByteArray m_utf8;
};

// A file that could not be read, written, created or removed.
class FileError : public VeltoError {
public:
    using VeltoError::VeltoError;
};

// The user cancelled. Deliberately not a VeltoError: a cancellation is never a failure.
class Cancelled : public std::exception {
public:
    QString description() const;
    const char* what() const noexcept override;
};

// The sentence a front end shows for any failure: a VeltoError's own, else one that admits the
// program did not expect it.
QString describeFailure(const std::exception& error);

// Throws Cancelled when a stop was requested; for the suspension points of long work.
void throwIfStopped(const std::stop_token& stop);

} // namespace velto
