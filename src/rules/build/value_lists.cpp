#include "rules/build/value_lists.hpp"

#include <stdexcept>

#include "rules/build/rule_table.hpp"
#include "rules/build/tsv.hpp"
#include "rules/build/xml_text.hpp"

namespace nimbara::rules {

std::vector<ValueListShape> parse_value_lists(std::string_view text)
{
    std::vector<ValueListShape> lists;
    for (const TsvLine& line : read_tsv(text, "value_lists.tsv")) {
        const auto& f = line.fields;
        const std::string where = "value_lists.tsv:" + std::to_string(line.number) + ": ";
        if (f.size() != 4) throw std::runtime_error(where + "expected Function, Labels, Codes and Repeat");
        if (f[3] != "last" && f[3] != "none") throw std::runtime_error(where + "Repeat must be last or none");
        ValueListShape list{std::string(f[0]), {}, f[3] == "last"};
        for_each_code(f[2], [&](std::string_view entry) {
            ValueListShape::Row row;
            if (entry.starts_with('!')) {
                row.active = false;
                entry.remove_prefix(1);
            }
            const auto at = entry.find('@');
            row.code = std::string(entry.substr(0, at));
            row.label_set = std::string(at == std::string_view::npos ? f[1] : entry.substr(at + 1));
            if (row.code.empty() || row.label_set.empty()) throw std::runtime_error(where + "malformed code \"" + std::string(entry) + "\"");
            list.rows.push_back(std::move(row));
        });
        lists.push_back(std::move(list));
    }
    return lists;
}

std::string build_value_list(const ValueListShape& shape, const Designations& designations)
{
    const auto item = [](std::string_view code, std::string_view label, bool active) {
        const TaggedValue values[] = {{"CODIGO", code},
                                      {"DESIGNACAO", label, ValueForm::CData},
                                      {"OBSERVACOES", "", ValueForm::CData},
                                      {"ACTIVO", active ? "TRUE" : "FALSE"}};
        return item_text(values);
    };
    std::vector<std::string> items{item("0", "", true)};
    for (const auto& row : shape.rows) items.push_back(item(row.code, designations.label(row.label_set, row.code), row.active));
    return list_text(items, shape.repeat_last);
}

}  // namespace nimbara::rules
