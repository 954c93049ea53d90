#pragma once

#include <optional>

#include <QString>

namespace velto {

// The users' API keys, one per provider, in the operating system's credential store (Keychain
// on macOS, Secret Service on Linux, Credential Manager on Windows), never in a settings file.
// The three operations block until the store answers and may be called from any thread.
namespace Keychain {

// Replaces the stored key of `account`; an empty value just deletes it. Failures are silent:
// the old key is gone either way, and a missing key is reported where it is needed.
void set(const QString& value, const QString& account);
// The stored key, or the empty string when there is none or the store can't be read.
QString get(const QString& account);
void remove(const QString& account);

// Why keys can't be kept on this machine right now, as a sentence for the places where a key
// is typed; absent when the store answers.
std::optional<QString> unavailableReason();

} // namespace Keychain
} // namespace velto
