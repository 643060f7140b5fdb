#pragma once
// A plain explanation beside the system's own text, where that text misleads: an unknown product
// reported as an error reading XML, a missing service listed among wrong ones, a failed minimum that
// names neither the product nor the sum. The report keeps the system's text unchanged.
#include <optional>
#include <string>

#include "nimbara/error_array.hpp"
#include "nimbara/guia_file.hpp"

namespace nimbara::cli {

// `row` is the failing line's place among the file's produtos, or nothing for a rule of the whole
// Guia. Nothing when the system's text says enough.
std::optional<std::string> explanation(const ErrorArray& error, const GuiaFile& file, std::optional<int> row);

}  // namespace nimbara::cli
