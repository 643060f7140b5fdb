#pragma once
// The rules that line validation, possible values and the report work on, as one value: the
// compiled-in catalogue by default, or one built once from rule rows handed in by another source.
#include <array>
#include <memory>
#include <span>

#include "rules/catalogue.hpp"
#include "rules/possible_value_key.hpp"
#include "validation/rows_by_product.hpp"
#include "validation/rule_index.hpp"

namespace nimbara::validation {

class RuleCatalogue {
public:
    // The compiled-in catalogue, indexed on first use.
    static const RuleCatalogue& compiled();

    // A catalogue of the rows handed in, their texts copied. The repeated rows and the possible-value
    // tables are derived from them with the compiled-in document shapes and designations, as the
    // generator derives the compiled ones. Throws std::exception for rows they cannot take.
    static RuleCatalogue from_rows(std::span<const rules::RuleRow> rows);

    const RuleIndex& index() const { return *index_; }
    const rules::PossibleValueTable& possible_values(rules::PossibleValueKey key) const
    {
        return *tables_[static_cast<std::size_t>(key)];
    }
    // The same table's rows by product.
    const RowsByProduct& rows_by_product(rules::PossibleValueKey key) const
    {
        return (*rows_by_product_)[static_cast<std::size_t>(key)];
    }

private:
    RuleCatalogue() = default;
    void index_possible_values();

    // Shared, so that copies are cheap and the views into a built catalogue's storage stay valid.
    std::shared_ptr<const void> storage_;  // what a catalogue built from rows points into
    std::shared_ptr<const RuleIndex> index_;
    std::array<const rules::PossibleValueTable*, rules::kPossibleValueKeyCount> tables_{};
    std::shared_ptr<const std::vector<RowsByProduct>> rows_by_product_;
};

}  // namespace nimbara::validation
