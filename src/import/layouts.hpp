#pragma once
// The layouts of the old files: which tables a run of versions kept and how many columns each had.
// The procedures read fields by position, so a file read by the wrong procedure fails somewhere in
// the middle, or worse, succeeds with values in the wrong columns; recognising the layout first lets
// the import refuse it by name.
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/old_database.hpp"

namespace nimbara::import {

// The five data tables in the order the procedures copy them.
inline constexpr std::array<const char*, 5> kSourceTables = {"TBL_CLIENTE", "TBL_CONTRATO", "TBL_CAB", "TBL_LINHA",
                                                             "TBL_LINHA_SERVICOESPECIAL"};

struct VersionProcedure {
    const char* version;
    const char* procedure;
};

struct Layout {
    const char* name;
    std::array<std::size_t, 5> columns;  // per table of kSourceTables
    std::vector<VersionProcedure> versions;
    // The procedures that read this layout: those of its versions, and kept ones that read a prefix of it.
    std::vector<const char*> procedures;
};

const std::vector<Layout>& layouts();

// What a file holds of the data tables: each table's column count, or nothing when it is missing.
using TableShape = std::array<std::optional<std::size_t>, 5>;

TableShape shape_of(const platform::OldDatabase& source);

// The layout whose tables and column counts the file has, or nullptr.
const Layout* layout_of(const TableShape& shape);

// "TBL_CLIENTE 11 columns, TBL_CONTRATO 10, ..., TBL_LINHA_SERVICOESPECIAL missing"
std::string describe(const TableShape& shape);

// Whether `procedure` reads files of `layout`.
bool reads(const Layout& layout, std::string_view procedure);

// "versions 0513 and 0514 (layout 050313B)"
std::string versions_text(const Layout& layout);

}  // namespace nimbara::import
