#pragma once

#include <optional>

#include <QString>

#include "VeltoKit/core/VeltoError.h"

namespace velto {

// The credential store did not answer in time; the description says so in the user's words.
class KeychainError : public VeltoError {
public:
    using VeltoError::VeltoError;
};

// The users' API keys, one per provider, in the operating system's credential store (Keychain
// on macOS, Secret Service on Linux, Credential Manager on Windows), never in a settings file.
// Each operation waits for the store at most `deadline`: a store that took the call and never
// answers must not hang a run. Once it has kept silent, the next calls give up at once.
namespace Keychain {

constexpr int deadlineSeconds = 5;

// Replaces the stored key of `account`; an empty value just deletes it. Failures are silent:
// the old key is gone either way, and a missing key is reported where it is needed.
void set(const QString& value, const QString& account);
// The stored key, or the empty string when there is none or the store refused. Throws
// KeychainError when the store did not answer within the deadline.
QString get(const QString& account);
void remove(const QString& account);

// Why keys can't be kept on this machine right now, as a sentence for the places where a key
// is typed; absent when the store answers.
std::optional<QString> unavailableReason();

} // namespace Keychain
} // namespace velto
