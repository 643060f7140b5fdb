#pragma once
// The result of the validators: no error, or an error number with a text or a list of service codes.
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace nimbara {

using ListArray = std::vector<std::string>;

struct ErrorArray {
    std::int32_t number = 0;
    std::variant<std::string, ListArray> description;

    bool holds_list() const { return std::holds_alternative<ListArray>(description); }
    friend bool operator==(const ErrorArray&, const ErrorArray&) = default;
};

// An empty result (std::nullopt) means that the line or the Guia passed.
using ValidationResult = std::optional<ErrorArray>;

}  // namespace nimbara
