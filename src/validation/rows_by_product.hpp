#pragma once
// A possible-value table's rows grouped by the product they name, in document order, so that a
// question about one product reads its own rows rather than the whole document.
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "rules/catalogue.hpp"

namespace nimbara::validation {

class RowsByProduct {
public:
    // The table must outlive the index: the product texts are views into it.
    explicit RowsByProduct(const rules::PossibleValueTable& table);

    // The rows whose product reads as `product`, a row without one reading as the empty text.
    std::span<const std::uint32_t> rows(std::string_view product) const;

    // Some row's weight bound is no number: every question with a weight fails on it.
    bool bounds_unreadable() const { return bounds_unreadable_; }

private:
    std::vector<std::pair<std::string_view, std::vector<std::uint32_t>>> products_;  // sorted by product
    bool bounds_unreadable_ = false;
};

}  // namespace nimbara::validation
