#pragma once

#include <exception>
#include <string>

namespace velto {

// What `operation` threw, as UTF-8 (a VeltoError's description, "Operación cancelada."...),
// or "no failure" when it returned.
template <typename Operation>
std::string failureText(Operation&& operation) {
    try {
        operation();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no failure";
}

} // namespace velto
