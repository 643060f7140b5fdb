#include "settings_json.hpp"

#include <strings.h>

#include <array>
#include <cmath>
#include <cstdlib>

#include "db_command.hpp"
#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/cls_Parametro.hpp"

namespace nimbara::cli {
namespace {

// A margin may be given in millimetres ("10mm"); the table keeps twips, 56.7 to the millimetre.
std::string margin_in_twips(const std::string& name, const std::string& value)
{
    if (!value.ends_with("mm")) return value;
    const std::string number = value.substr(0, value.size() - 2);
    char* end = nullptr;
    const double mm = number.empty() ? -1 : std::strtod(number.c_str(), &end);
    if (number.empty() || *end != '\0' || !(mm >= 0 && mm <= 100))
        throw CommandError(name + ": \"" + value + "\" is not a number of millimetres from 0 to 100. Nothing was saved.");
    return std::to_string(static_cast<long>(std::lround(mm * kTwipsPerMm)));
}

}  // namespace

// A setting without a stored value shows the value the entity reads in its place, marked.
nlohmann::ordered_json settings_json(const std::shared_ptr<Database>& db)
{
    Recordset stored = db->open("SELECT * FROM Tbl_Parametro");
    const bool row = stored.RecordCount() > 0;
    if (row) stored.MoveFirst();
    cls_ParametroA defaults;
    defaults.PreencheObjecto(param::Table{});
    const auto fallback = [&](std::size_t i) {
        const std::array<const std::string*, cls_Parametro::kSettings> values = {
            &defaults.VCod2DFonteSize, &defaults.vCod2DRatio,       &defaults.vCod2DNColunas,
            &defaults.vCod2DNLinhas,   &defaults.vCod2DErroLevel,   &defaults.vCod2DPDFMode,
            &defaults.vCod2DTruncated, &defaults.vCod2DApplyTilde,  &defaults.vGuiaNVias,
            &defaults.vGuiaMargensTopo, &defaults.vGuiaMargensEsquerda, &defaults.vCodTerceiro};
        return *values[i];
    };
    nlohmann::ordered_json settings;
    for (std::size_t i = 0; i < cls_Parametro::kSettings; ++i) {
        const char* column = cls_Parametro::ColumnNames()[i];
        const bool set = row && !stored[column].is_null();
        settings[cls_Parametro::PropertyNames()[i]] = {{"value", set ? stored[column].text() : fallback(i)}, {"set", set}};
    }
    return settings;
}

void save_settings(const std::shared_ptr<Database>& db, const std::vector<std::pair<std::string, std::string>>& assignments)
{
    cls_Parametro p(db);
    const auto values = p.Properties();
    // A table without a row starts from the factory settings rather than from values that do not print.
    if (db->open("SELECT * FROM Tbl_Parametro").RecordCount() == 0) {
        cls_ParametroA factory = factory_print_settings();
        const std::array<const std::string*, cls_Parametro::kSettings> from = {
            &factory.VCod2DFonteSize, &factory.vCod2DRatio,       &factory.vCod2DNColunas,
            &factory.vCod2DNLinhas,   &factory.vCod2DErroLevel,   &factory.vCod2DPDFMode,
            &factory.vCod2DTruncated, &factory.vCod2DApplyTilde,  &factory.vGuiaNVias,
            &factory.vGuiaMargensTopo, &factory.vGuiaMargensEsquerda, &factory.vCodTerceiro};
        for (std::size_t i = 0; i < cls_Parametro::kSettings; ++i) *values[i] = *from[i];
    }
    for (const auto& [name, value] : assignments) {
        std::size_t i = 0;
        while (i < cls_Parametro::kSettings && ::strcasecmp(cls_Parametro::PropertyNames()[i], name.c_str()) != 0) ++i;
        if (i == cls_Parametro::kSettings)
            throw FieldError("unknown setting \"" + name + "\" (the names are those `nimbara db params` prints)", name);
        const bool margin = i == 9 || i == 10;
        *values[i] = margin ? margin_in_twips(cls_Parametro::PropertyNames()[i], value) : value;
    }
    try {
        p.DoSave();
    } catch (const ParametroError& e) {
        throw CommandError(std::string(e.what()) + " Nothing was saved.");
    } catch (const std::invalid_argument&) {
        throw CommandError("vGuiaNVias, vCod2DNColunas and vCod2DErroLevel must be whole numbers. Nothing was saved.");
    }
}

}  // namespace nimbara::cli
