#include "validation/rule_catalogue.hpp"

#include <deque>
#include <stdexcept>
#include <string>
#include <vector>

#include "rules/build/designations.hpp"

namespace nimbara::validation {
namespace {

// A possible-value document's rows in the layout of the compiled tables, owning what they point at.
struct OwnedTable {
    std::string function;
    std::vector<std::string> tag_texts;
    std::vector<std::string_view> tags;
    std::string texts;
    std::vector<rules::PossibleValueCell> cells;
    std::vector<rules::WeightBounds> bounds;
    rules::PossibleValueTable view;

    OwnedTable(std::string name, rules::PossibleValueDocument doc)
        : function(std::move(name)), tag_texts(std::move(doc.tags)), bounds(std::move(doc.bounds))
    {
        tags.assign(tag_texts.begin(), tag_texts.end());
        for (const auto& row : doc.rows) {
            for (const auto& cell : row) {
                if (!cell) {
                    cells.emplace_back();
                    continue;
                }
                if (texts.size() + cell->size() >= rules::PossibleValueCell::kAbsent)
                    throw std::length_error(function + ": possible-value texts too long");
                cells.push_back({static_cast<std::uint32_t>(texts.size()), static_cast<std::uint32_t>(cell->size())});
                texts += *cell;
            }
        }
        view = {function, tags, texts, cells, bounds};
    }
    OwnedTable(const OwnedTable&) = delete;
    OwnedTable& operator=(const OwnedTable&) = delete;
};

// Everything a catalogue built from rows points into; deques, so that nothing moves as it grows.
struct Storage {
    std::deque<std::string> texts;
    std::vector<rules::RuleRow> rows;
    std::vector<rules::DocumentShape> shapes;
    std::vector<rules::RepeatedRow> repeated;
    std::deque<OwnedTable> tables;
};

}  // namespace

const RuleCatalogue& RuleCatalogue::compiled()
{
    static const RuleCatalogue catalogue = [] {
        RuleCatalogue c;
        c.index_ = std::make_shared<const RuleIndex>(rules::rule_table(), rules::repeated_rows());
        for (std::size_t k = 0; k < rules::kPossibleValueKeyCount; ++k)
            c.tables_[k] = &rules::possible_value_table(static_cast<rules::PossibleValueKey>(k));
        c.index_possible_values();
        return c;
    }();
    return catalogue;
}

RuleCatalogue RuleCatalogue::from_rows(std::span<const rules::RuleRow> rows)
{
    auto storage = std::make_shared<Storage>();
    const auto keep = [&](std::string_view text) -> std::string_view { return storage->texts.emplace_back(text); };
    for (const auto& row : rows) {
        rules::RuleRow copy = row;
        copy.product = keep(row.product);
        for (auto& codes : copy.codes) codes = keep(codes);
        storage->rows.push_back(copy);
    }

    RuleCatalogue c;
    const auto& sources = rules::source_texts();
    storage->shapes = rules::parse_document_specs(sources.document_shapes);
    for (const auto& shape : storage->shapes)
        if (const auto r = rules::repeated_row(shape, storage->rows)) storage->repeated.push_back(*r);
    c.index_ = std::make_shared<const RuleIndex>(storage->rows, storage->repeated);

    const rules::Designations designations(sources.designations);
    const auto specs = rules::parse_possible_value_specs(sources.possible_values, sources.possible_values_left_out);
    if (specs.size() != rules::kPossibleValueKeyCount)
        throw std::logic_error("the possible-value specifications do not match the generated keys");
    for (std::size_t k = 0; k < specs.size(); ++k) {
        const auto& table = storage->tables.emplace_back(
            specs[k].function, rules::build_possible_value_document(specs[k], storage->rows, designations));
        c.tables_[k] = &table.view;
    }
    c.storage_ = std::move(storage);
    c.index_possible_values();
    return c;
}

void RuleCatalogue::index_possible_values()
{
    auto rows = std::make_shared<std::vector<RowsByProduct>>();
    rows->reserve(tables_.size());
    for (const auto* table : tables_) rows->emplace_back(*table);
    rows_by_product_ = std::move(rows);
}

}  // namespace nimbara::validation
