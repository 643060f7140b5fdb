#include "foundation/cell_values.hpp"

#include "foundation/text.hpp"

namespace nimbara {

std::optional<double> cell_number(const Cell& cell) { return cell ? text::to_number(*cell) : 0.0; }

std::optional<std::int32_t> cell_int32(const Cell& cell) { return cell ? text::to_int32(*cell) : 0; }

}  // namespace nimbara
