#pragma once

#include "VeltoKit/translation/TokenUsage.h"

namespace velto {

// What a model costs, in US dollars per million tokens read and written.
struct TokenPrice {
    double inputPerMillion = 0;
    double outputPerMillion = 0;

    double cost(const TokenUsage& usage) const {
        return (static_cast<double>(usage.input) * inputPerMillion +
                static_cast<double>(usage.output) * outputPerMillion) /
               1e6;
    }
    bool isFree() const { return inputPerMillion == 0 && outputPerMillion == 0; }
    friend bool operator==(const TokenPrice&, const TokenPrice&) = default;
};

} // namespace velto
