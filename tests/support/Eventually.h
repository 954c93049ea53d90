#pragma once

#include <chrono>
#include <functional>

namespace velto {

// Polls `condition` until it holds, for a state another process or thread reaches at its
// own pace (a child that wrote its pid, a temporary file that appeared). False after `limit`.
bool eventually(const std::function<bool()>& condition,
                std::chrono::milliseconds limit = std::chrono::seconds(60));

} // namespace velto
