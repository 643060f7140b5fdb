#include "validation/rows_by_product.hpp"

#include <algorithm>
#include <map>

namespace nimbara::validation {

RowsByProduct::RowsByProduct(const rules::PossibleValueTable& table)
{
    const auto column = table.column("CODPRODUTO");
    std::map<std::string_view, std::vector<std::uint32_t>> grouped;
    for (std::size_t row = 0; row < table.rows(); ++row) {
        const std::string_view product = column ? table.cell(row, *column).value_or(std::string_view{}) : std::string_view{};
        grouped[product].push_back(static_cast<std::uint32_t>(row));
        const auto [min, max] = table.bounds[row];
        if (!min || !max) bounds_unreadable_ = true;
    }
    products_.assign(std::make_move_iterator(grouped.begin()), std::make_move_iterator(grouped.end()));
}

std::span<const std::uint32_t> RowsByProduct::rows(std::string_view product) const
{
    const auto it = std::lower_bound(products_.begin(), products_.end(), product,
                                     [](const auto& entry, std::string_view p) { return entry.first < p; });
    if (it == products_.end() || it->first != product) return {};
    return it->second;
}

}  // namespace nimbara::validation
