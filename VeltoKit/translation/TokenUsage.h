#pragma once

#include <QtGlobal>

namespace velto {

// Tokens one or more requests took, as the service bills them: thinking counts as output.
struct TokenUsage {
    qint64 input = 0;
    qint64 output = 0;

    TokenUsage& operator+=(const TokenUsage& other) {
        input += other.input;
        output += other.output;
        return *this;
    }
    friend bool operator==(const TokenUsage&, const TokenUsage&) = default;
};

} // namespace velto
