#pragma once

#include <ostream>

#include <QString>

// Lets GoogleTest print QString values as text in failure messages instead of raw bytes.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
