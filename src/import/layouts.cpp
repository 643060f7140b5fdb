#include "import/layouts.hpp"

#include <algorithm>

namespace nimbara::import {

const std::vector<Layout>& layouts()
{
    static const std::vector<Layout> all = {
        {"0501", {8, 9, 13, 17, 4}, {{"0501", "DoImportDados0501"}}, {"DoImportDados0501"}},
        {"0502",
         {10, 10, 15, 17, 4},
         {{"0502", "DoImportDados0502"}, {"0504", "DoImportDados0504"}},
         {"DoImportDados0502", "DoImportDados0504"}},
        // The kept procedures of 0509 and 0510 read the 0506 order, which 050313 only extends at the end.
        {"0506",
         {10, 10, 16, 17, 4},
         {{"0506", "DoImportDados0506"}, {"0507", "DoImportDados0507"}, {"0508", "DoImportDados0508"}},
         {"DoImportDados0506", "DoImportDados0507", "DoImportDados0508", "DoImportDados0509", "DoImportDados0510"}},
        {"050313",
         {10, 10, 16, 18, 4},
         {{"05083", "DoImportDadosTo050313"},
          {"0509", "DoImportDadosTo050313"},
          {"0510", "DoImportDadosTo050313"},
          {"0511", "DoImportDadosTo050313"},
          {"0512", "DoImportDadosTo050313"}},
         {"DoImportDadosTo050313", "DoImportDados0509", "DoImportDados0510"}},
        {"050313B",
         {11, 10, 16, 19, 4},
         {{"0513", "DoImportDadosTo050313B"}, {"0514", "DoImportDadosTo050314"}},
         {"DoImportDadosTo050313B", "DoImportDadosTo050313C", "DoImportDadosTo050314"}},
    };
    return all;
}

TableShape shape_of(const platform::OldDatabase& source)
{
    TableShape shape;
    for (std::size_t i = 0; i < kSourceTables.size(); ++i)
        if (const auto name = source.find_table(kSourceTables[i]))
            shape[i] = source.open_table(*name)->column_names().size();
    return shape;
}

const Layout* layout_of(const TableShape& shape)
{
    for (const auto& layout : layouts()) {
        bool fits = true;
        for (std::size_t i = 0; i < shape.size(); ++i) fits = fits && shape[i] == layout.columns[i];
        if (fits) return &layout;
    }
    return nullptr;
}

std::string describe(const TableShape& shape)
{
    std::string text;
    for (std::size_t i = 0; i < shape.size(); ++i) {
        text += (i ? ", " : "") + std::string(kSourceTables[i]) + " ";
        text += shape[i] ? std::to_string(*shape[i]) + (i == 0 ? " columns" : "") : "missing";
    }
    return text;
}

bool reads(const Layout& layout, std::string_view procedure)
{
    return std::ranges::any_of(layout.procedures, [&](const char* p) { return procedure == p; });
}

std::string versions_text(const Layout& layout)
{
    std::string text = layout.versions.size() == 1 ? "version " : "versions ";
    for (std::size_t i = 0; i < layout.versions.size(); ++i) {
        if (i) text += i + 1 == layout.versions.size() ? " and " : ", ";
        text += layout.versions[i].version;
    }
    return text + " (layout " + layout.name + ")";
}

}  // namespace nimbara::import
