#pragma once
// The straightforward line validator: every check assembles its document from row constants, upper-cases
// it and parses it with pugixml, then walks the rows. Slow by design; the benchmark's baseline and the
// tests' second opinion on the indexed validator.
#include <cstdint>
#include <string_view>

#include "nimbara/error_array.hpp"
#include "validation/line_validator.hpp"

namespace nimbara::testing {

ValidationResult literal_validate_line(const validation::LineInput& line);

}  // namespace nimbara::testing
