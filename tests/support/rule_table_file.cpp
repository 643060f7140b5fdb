#include "support/rule_table_file.hpp"

#include <pugixml.hpp>

#include <fstream>
#include <sstream>
#include <stdexcept>

namespace nimbara::testing {

std::vector<TableRow> read_rule_table_file()
{
    std::ifstream in(std::string(NIMBARA_SOURCE_DIR) + "/data/rules.tsv");
    if (!in) throw std::runtime_error("cannot read data/rules.tsv");
    std::vector<TableRow> rows;
    std::string line;
    bool header = true;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#') continue;
        if (header) {
            header = false;
            continue;
        }
        TableRow r;
        std::stringstream s(line);
        std::string field;
        while (std::getline(s, field, '\t')) r.f.push_back(field);
        while (r.f.size() < 13) r.f.emplace_back();
        rows.push_back(r);
    }
    return rows;
}

std::vector<std::string> split_blanks(const std::string& s)
{
    std::vector<std::string> out;
    std::stringstream in(s);
    std::string w;
    while (in >> w)
        if (w != "-") out.push_back(w);
    return out;
}

std::vector<Item> read_items(std::string_view document)
{
    pugi::xml_document doc;
    if (!doc.load_buffer(document.data(), document.size())) throw std::runtime_error("not well-formed XML");
    std::vector<Item> items;
    for (const auto& i : doc.select_nodes("LIST/ITEM")) {
        Item& item = items.emplace_back();
        for (const auto& c : i.node().children()) item.emplace_back(c.name(), c.text().get());
    }
    return items;
}

}  // namespace nimbara::testing
