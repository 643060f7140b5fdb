#include "rules/build/possible_value_documents.hpp"

#include <algorithm>
#include <charconv>
#include <set>
#include <stdexcept>

#include "foundation/text.hpp"
#include "rules/build/tsv.hpp"

namespace nimbara::rules {
namespace {

using Source = PossibleValueShape::Source;

[[noreturn]] void fail(std::string_view file, std::size_t line, const std::string& what)
{
    throw std::runtime_error(std::string(file) + ":" + std::to_string(line) + ": " + what);
}

std::vector<std::string_view> words(std::string_view list)
{
    std::vector<std::string_view> out;
    if (list != "-") for_each_code(list, [&](std::string_view w) { out.push_back(w); });
    return out;
}

Source parse_source(std::string_view text, std::size_t line)
{
    constexpr std::string_view file = "possible_values.tsv";
    if (text.empty()) return {};
    if (text == "Id") return {Source::Kind::Id};
    if (text == "Prod") return {Source::Kind::Product};
    if (text == "Min") return {Source::Kind::Min};
    if (text == "Max") return {Source::Kind::Max};
    Source::Kind kind = Source::Kind::Code;
    if (text.starts_with("label(") && text.ends_with(')')) {
        kind = Source::Kind::Label;
        text = text.substr(6, text.size() - 7);
    }
    const auto dimension = dimension_of_column(text);
    if (!dimension) fail(file, line, "unknown source \"" + std::string(text) + "\"");
    return {kind, *dimension};
}

}  // namespace

std::vector<PossibleValueShape> parse_possible_value_specs(std::string_view specs_text, std::string_view left_out_text)
{
    std::vector<PossibleValueShape> shapes;
    for (const TsvLine& line : read_tsv(specs_text, "possible_values.tsv")) {
        const auto& f = line.fields;
        if (f.size() != 5) fail("possible_values.tsv", line.number, "expected Function, Tags, Plain, Omitted and Order");
        if (f[4] != "rules" && f[4] != "sorted") fail("possible_values.tsv", line.number, "Order must be rules or sorted");
        PossibleValueShape shape{std::string(f[0]), {}, f[4] == "sorted", {}};
        const auto plain = words(f[2]), omitted = words(f[3]);
        for (const auto entry : words(f[1])) {
            const auto eq = entry.find('=');
            if (eq == std::string_view::npos) fail("possible_values.tsv", line.number, "tag without a source: " + std::string(entry));
            const auto name = entry.substr(0, eq);
            shape.tags.push_back({std::string(name), parse_source(entry.substr(eq + 1), line.number),
                                 std::ranges::count(plain, name) ? ValueForm::Plain : ValueForm::CData,
                                 std::ranges::count(omitted, name) > 0});
        }
        const auto has_tag = [&](std::string_view tag) { return std::ranges::any_of(shape.tags, [&](const auto& t) { return t.name == tag; }); };
        for (const auto tag : plain)
            if (!has_tag(tag)) fail("possible_values.tsv", line.number, "no tag " + std::string(tag));
        for (const auto tag : omitted)
            if (!has_tag(tag)) fail("possible_values.tsv", line.number, "no tag " + std::string(tag));
        shapes.push_back(std::move(shape));
    }

    for (const TsvLine& line : read_tsv(left_out_text, "possible_values_left_out.tsv")) {
        const auto& f = line.fields;
        if (f.size() != 3) fail("possible_values_left_out.tsv", line.number, "expected Function, Rule and Zones");
        const auto shape = std::ranges::find_if(shapes, [&](const auto& s) { return s.function == f[0]; });
        if (shape == shapes.end()) fail("possible_values_left_out.tsv", line.number, "unknown document " + std::string(f[0]));
        PossibleValueShape::LeftOut left_out;
        const auto [end, ec] = std::from_chars(f[1].data(), f[1].data() + f[1].size(), left_out.rule);
        if (ec != std::errc{} || end != f[1].data() + f[1].size())
            fail("possible_values_left_out.tsv", line.number, "Rule is not a whole number");
        for (const auto zone : words(f[2])) left_out.zones.emplace_back(zone);
        shape->left_out.push_back(std::move(left_out));
    }
    return shapes;
}

PossibleValueDocument build_possible_value_document(const PossibleValueShape& shape, const std::vector<RuleRow>& table,
                                                    const Designations& designations)
{
    // The dimensions joined, in table order, and for each tag the position of its dimension among them.
    std::vector<Dimension> joined;
    for (const auto& tag : shape.tags)
        if ((tag.source.kind == Source::Kind::Code || tag.source.kind == Source::Kind::Label) &&
            std::ranges::find(joined, tag.source.dimension) == joined.end())
            joined.push_back(tag.source.dimension);
    std::ranges::sort(joined);
    const auto position = [&](Dimension d) { return static_cast<std::size_t>(std::ranges::find(joined, d) - joined.begin()); };
    const auto zone_at = position(Dimension::Zone);
    if (!shape.left_out.empty() && zone_at == joined.size())
        throw std::runtime_error(shape.function + " leaves out rows by zone but joins no zone");

    std::vector<std::size_t> removed(shape.left_out.size(), 0);
    std::set<std::vector<std::string>> seen;
    std::vector<std::vector<std::string>> rows;
    for (const RuleRow& rule : table) {
        if (!rule.in_rule_list()) continue;
        std::vector<std::vector<std::string_view>> lists;
        for (const auto d : joined) lists.push_back(words(rule.codes_of(d)));
        if (std::ranges::any_of(lists, [](const auto& l) { return l.empty(); })) continue;

        std::vector<std::size_t> at(joined.size(), 0);  // an odometer over the rule's code lists
        while (true) {
            std::size_t hit = shape.left_out.size();
            for (std::size_t i = 0; i < shape.left_out.size(); ++i)
                if (shape.left_out[i].rule == rule.id && std::ranges::count(shape.left_out[i].zones, lists[zone_at][at[zone_at]]))
                    hit = i;
            if (hit < shape.left_out.size()) {
                ++removed[hit];
            } else {
                std::vector<std::string> values;
                for (const auto& tag : shape.tags) {
                    const auto& s = tag.source;
                    switch (s.kind) {
                    case Source::Kind::Empty: values.emplace_back(); break;
                    case Source::Kind::Id: values.push_back(std::to_string(rule.id)); break;
                    case Source::Kind::Product: values.emplace_back(rule.product); break;
                    case Source::Kind::Min: values.push_back(std::to_string(rule.min)); break;
                    case Source::Kind::Max: values.push_back(std::to_string(rule.max)); break;
                    case Source::Kind::Code: values.emplace_back(lists[position(s.dimension)][at[position(s.dimension)]]); break;
                    case Source::Kind::Label:
                        values.emplace_back(designations.label(column_of(s.dimension), lists[position(s.dimension)][at[position(s.dimension)]]));
                        break;
                    }
                }
                if (seen.insert(values).second) rows.push_back(std::move(values));
            }
            std::size_t d = joined.size();
            while (d > 0 && ++at[d - 1] == lists[d - 1].size()) at[--d] = 0;
            if (d == 0) break;
        }
    }
    for (std::size_t i = 0; i < removed.size(); ++i)
        if (removed[i] == 0)
            throw std::runtime_error(shape.function + ": the left-out rows of rule " + std::to_string(shape.left_out[i].rule) +
                                     " are not in the join");
    if (shape.sorted) std::ranges::sort(rows);

    PossibleValueDocument doc;
    for (const auto& tag : shape.tags) doc.tags.push_back(tag.name);
    std::vector<std::string> items;
    for (const auto& row : rows) {
        std::vector<TaggedValue> tagged;
        std::vector<std::optional<std::string>> cells;
        for (std::size_t i = 0; i < shape.tags.size(); ++i) {
            if (shape.tags[i].omitted_when_empty && row[i].empty()) {
                cells.emplace_back();
            } else {
                tagged.push_back({shape.tags[i].name, row[i], shape.tags[i].form});
                cells.emplace_back(row[i]);
            }
        }
        items.push_back(item_text(tagged));
        doc.rows.push_back(std::move(cells));
    }
    doc.text = list_text(items, true);
    if (!doc.rows.empty()) doc.rows.push_back(doc.rows.back());

    const auto bound = [&doc](const std::vector<std::optional<std::string>>& cells, std::string_view tag) {
        const auto at = std::ranges::find(doc.tags, tag);
        if (at == doc.tags.end()) return std::optional<std::int32_t>{0};
        const auto& cell = cells[static_cast<std::size_t>(at - doc.tags.begin())];
        return cell ? text::to_int32(*cell) : 0;
    };
    for (const auto& cells : doc.rows) doc.bounds.push_back({bound(cells, "CESCALAOMIN"), bound(cells, "CESCALAOMAX")});
    return doc;
}

}  // namespace nimbara::rules
