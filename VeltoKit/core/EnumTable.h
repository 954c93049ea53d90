#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include <QStringView>

namespace velto {

// The texts of an enum's cases, written once as data: an array of rows, one per case in
// declaration order, each a struct whose member `value` is the case and whose other members are
// its texts. Lookups go both ways.
namespace EnumTable {

template <typename Row>
using ValueOf = decltype(Row::value);

// True when the rows hold the cases from the first to `last`, each once and in order: what lets
// row() index instead of search. Every table is checked with it where it is written.
template <typename Row, std::size_t N>
constexpr bool coversInOrder(const Row (&rows)[N], ValueOf<Row> last) {
    for (std::size_t k = 0; k < N; ++k) {
        if (static_cast<std::size_t>(rows[k].value) != k)
            return false;
    }
    return static_cast<std::size_t>(last) + 1 == N;
}

template <typename Row, std::size_t N>
constexpr const Row& row(const Row (&rows)[N], ValueOf<Row> value) {
    return rows[static_cast<std::size_t>(value)];
}

// The case whose text in `column` is exactly `text`.
template <typename Row, std::size_t N>
std::optional<ValueOf<Row>> find(const Row (&rows)[N], QStringView Row::*column, QStringView text) {
    for (const Row& candidate : rows) {
        if (candidate.*column == text)
            return candidate.value;
    }
    return std::nullopt;
}

// Every case, in declaration order.
template <typename Row, std::size_t N>
constexpr std::array<ValueOf<Row>, N> values(const Row (&rows)[N]) {
    std::array<ValueOf<Row>, N> all{};
    for (std::size_t k = 0; k < N; ++k)
        all[k] = rows[k].value;
    return all;
}

} // namespace EnumTable
} // namespace velto
