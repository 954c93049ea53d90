#pragma once

#include <optional>

#include <QByteArray>
#include <QString>

namespace velto::TextDecoder {

// Subtitle bytes to text: UTF-8, else Windows-1252, else ISO Latin 1 (which takes any byte), with
// a leading byte-order mark dropped. Never fails.
QString decode(const QByteArray& bytes);

// Strict UTF-8: std::nullopt on any invalid or truncated sequence.
std::optional<QString> utf8(const QByteArray& bytes);

// Exact Windows-1252: std::nullopt when a byte is one of the five the code page leaves undefined
// (0x81, 0x8D, 0x8F, 0x90, 0x9D).
std::optional<QString> windows1252(const QByteArray& bytes);

} // namespace velto::TextDecoder
