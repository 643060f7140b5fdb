#include "nimbara/cls_Parametro.hpp"

#include <stdexcept>

#include "entities/connection.hpp"
#include "entities/schema_tables.hpp"
#include "entities/stored_values.hpp"

namespace nimbara {
namespace {

// The spellings the old loader used; the stores compare names without regard to case.
constexpr std::array<const char*, cls_Parametro::kSettings> kReadSpellings = {
    "Cod2dFonteSize", "Cod2dratio",      "cod2dncolunas", "cod2dnlinhas",    "Cod2dErrolevel",      "Cod2dPDFMode",
    "Cod2dTruncated", "Cod2dApplyTilde", "Guianvias",     "GuiaMargensTopo", "GuiaMargensEsquerda", "CodTerceiro"};

std::string column_list()
{
    std::string list;
    for (const char* c : cls_Parametro::ColumnNames()) list += std::string(list.empty() ? "" : ", ") + c;
    return list;
}

}  // namespace

const std::array<const char*, cls_Parametro::kSettings>& cls_Parametro::ColumnNames()
{
    static constexpr std::array<const char*, kSettings> names = {
        "Cod2DFonteSize", "Cod2DRatio",      "Cod2DNColunas", "Cod2DNLinhas",    "Cod2DErroLevel",      "Cod2DPDFMode",
        "Cod2DTruncated", "Cod2DApplyTilde", "GuiaNVias",     "GuiaMargensTopo", "GuiaMargensEsquerda", "CodTerceiro"};
    return names;
}

const std::array<const char*, cls_Parametro::kSettings>& cls_Parametro::PropertyNames()
{
    static constexpr std::array<const char*, kSettings> names = {
        "VCod2DFonteSize",  "vCod2DRatio",      "vCod2DNColunas", "vCod2DNLinhas",    "vCod2DErroLevel",
        "vCod2DPDFMode",    "vCod2DTruncated",  "vCod2DApplyTilde", "vGuiaNVias",     "vGuiaMargensTopo",
        "vGuiaMargensEsquerda", "vCodTerceiro"};
    return names;
}

std::array<std::string*, cls_Parametro::kSettings> cls_Parametro::Properties()
{
    return {&VCod2DFonteSize, &vCod2DRatio,     &vCod2DNColunas, &vCod2DNLinhas,    &vCod2DErroLevel,      &vCod2DPDFMode,
            &vCod2DTruncated, &vCod2DApplyTilde, &vGuiaNVias,    &vGuiaMargensTopo, &vGuiaMargensEsquerda, &vCodTerceiro};
}

cls_Parametro::cls_Parametro() : myConn(entities::connection_from_ini()) { load(); }

cls_Parametro::cls_Parametro(std::shared_ptr<Database> db) : myConn(std::move(db)) { load(); }

void cls_Parametro::SelectAll(Recordset& rs)
{
    rs = entities::require(myConn).open("SELECT " + entities::spelled_columns("Tbl_Parametro") + " FROM Tbl_Parametro");
}

void cls_Parametro::load()
{
    Recordset rs;
    SelectAll(rs);
    const auto properties = Properties();
    if (rs.IsBOF() && rs.IsEOF()) {
        // The same defaults as a headless Guia without parameters.
        cls_ParametroA defaults;
        defaults.PreencheObjecto(param::Table{});
        const std::array<const std::string*, kSettings> from = {
            &defaults.VCod2DFonteSize, &defaults.vCod2DRatio,          &defaults.vCod2DNColunas,
            &defaults.vCod2DNLinhas,   &defaults.vCod2DErroLevel,      &defaults.vCod2DPDFMode,
            &defaults.vCod2DTruncated, &defaults.vCod2DApplyTilde,     &defaults.vGuiaNVias,
            &defaults.vGuiaMargensTopo, &defaults.vGuiaMargensEsquerda, &defaults.vCodTerceiro};
        for (std::size_t i = 0; i < kSettings; ++i) *properties[i] = *from[i];
        return;
    }
    for (std::size_t i = 0; i < kSettings; ++i) {
        const FieldValue& v = rs[kReadSpellings[i]];
        // Only CodTerceiro was read with a null test; a null elsewhere stopped the load.
        if (v.is_null() && i != kSettings - 1) throw std::invalid_argument("Invalid use of Null");
        *properties[i] = v.text();
    }
}

bool cls_Parametro::Validate() const
{
    cls_ParametroA checked;
    checked.vGuiaNVias = vGuiaNVias;
    checked.vCod2DNColunas = vCod2DNColunas;
    checked.vCod2DErroLevel = vCod2DErroLevel;
    if (!checked.Validate()) return false;
    // What is saved must print: the rules printing reads the settings with judge them here too.
    const std::array<const std::string*, kSettings> properties = {
        &VCod2DFonteSize, &vCod2DRatio,     &vCod2DNColunas, &vCod2DNLinhas,    &vCod2DErroLevel,      &vCod2DPDFMode,
        &vCod2DTruncated, &vCod2DApplyTilde, &vGuiaNVias,    &vGuiaMargensTopo, &vGuiaMargensEsquerda, &vCodTerceiro};
    for (std::size_t i = 0; i < kSettings; ++i) {
        const auto problem = print_setting_problem(static_cast<param::Field>(i), *properties[i]);
        if (problem) throw ParametroError(std::string(PropertyNames()[i]) + ": \"" + *properties[i] + "\" " + *problem + ".");
    }
    return true;
}

void cls_Parametro::DoSave()
{
    if (!Validate()) return;
    std::vector<FieldValue> values;
    for (const std::string* p : Properties()) values.emplace_back(*p);
    const auto columns = ColumnNames();
    const std::vector<std::string_view> names(columns.begin(), columns.end());
    entities::check_row("Tbl_Parametro", "the print settings", names, values);
    Recordset rs;
    SelectAll(rs);
    if (rs.IsBOF() && rs.IsEOF())
        DoInsert();
    else
        DoUpdate();
}

void cls_Parametro::DoInsert()
{
    std::vector<FieldValue> values;
    for (const std::string* p : Properties()) values.emplace_back(*p);
    entities::require(myConn).execute(
        "INSERT INTO Tbl_Parametro (" + column_list() + ") VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)", values);
}

void cls_Parametro::DoUpdate()
{
    std::string sql = "UPDATE Tbl_Parametro SET ";
    std::vector<FieldValue> values;
    const auto properties = Properties();
    for (std::size_t i = 0; i < kSettings; ++i) {
        sql += std::string(i ? ", " : "") + ColumnNames()[i] + " = ?";
        values.emplace_back(*properties[i]);
    }
    // No WHERE: the table holds one row in use, and every row there is takes the values.
    entities::require(myConn).execute(sql, values);
}

}  // namespace nimbara
