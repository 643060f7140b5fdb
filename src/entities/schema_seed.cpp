#include <map>
#include <optional>
#include <string>

#include "entities/schema_tables.hpp"
#include "nimbara/Schema.hpp"
#include "nimbara/cls_ParametroA.hpp"
#include "rules/catalogue.hpp"

namespace nimbara::entities {
namespace {

using rules::Dimension;

struct ReferenceSeed {
    const char* table;
    std::optional<Dimension> dimension;  // nothing: the product column
    const char* label_set;
};

// Each list holds "0" (the dimension does not apply) and the codes the rule table uses in its
// dimension, so that the listings, which join every line to these lists, lose no line.
constexpr ReferenceSeed kReferenceLists[] = {
    {"Tbl_A_ZonaTaxacao", Dimension::Zone, "Zones"},
    {"Tbl_B_Produto", std::nullopt, "Prod"},
    {"Tbl_E_Velocidade", Dimension::Speed, "Speed"},
    {"Tbl_F_Formato", Dimension::Format, "Format"},
    {"Tbl_PreTratamento", Dimension::PreTreatment, "Pre"},
    {"Tbl_H_Descontos", Dimension::Discount, "Disc"},
    {"Tbl_N_AmbitoDistribuicao", Dimension::Scope, "Scope"},
    {"Tbl_K_EntregaSampling", Dimension::Sampling, "Sampl"},
    {"Tbl_I_ServicosEspeciais", Dimension::Service, "Serv"},
};

struct RuleDimensionSeed {
    Dimension dimension;
    const char* table;
    const char* column;
    bool numeric;
};

// Sampling has no rule table: the register names none.
constexpr RuleDimensionSeed kRuleDimensions[] = {
    {Dimension::Zone, "tbl_Val_ZTaxacao", "CodZtaxacao", false},
    {Dimension::Speed, "tbl_Val_Velocidade", "CodVelocidade", false},
    {Dimension::Format, "tbl_Val_Formato", "CodFormato", false},
    {Dimension::PreTreatment, "tbl_Val_PreTratamento", "Pre_Tratamento", true},
    {Dimension::Discount, "tbl_Val_Desconto", "CodDesconto", false},
    {Dimension::Scope, "tbl_Val_AmbitoDist", "CodAmbitoDist", false},
    {Dimension::Service, "tbl_Val_ServicoE", "CodServicoE", false},
};

void seed_reference_lists(Database& db)
{
    for (const auto& list : kReferenceLists) {
        std::map<std::string, bool, std::less<>> codes = {{"0", true}};  // code -> used by an active rule
        for (const auto& rule : rules::rule_table()) {
            if (!rule.in_rule_list()) continue;
            const bool active = rule.listing == rules::Listing::Active;
            const auto add = [&](std::string_view code) { codes[std::string(code)] |= active; };
            if (!list.dimension) {
                if (!rule.product.empty()) add(rule.product);
            } else {
                rules::for_each_code(rule.codes_of(*list.dimension), add);
            }
        }
        for (const auto& [code, active] : codes)
            db.execute("INSERT INTO " + std::string(list.table) +
                           " (Codigo, Designacao, Activo, Observacoes) VALUES (?, ?, ?, ?)",
                       {code, rules::designations().label(list.label_set, code), active, ""});
    }
}

void seed_rules(Database& db)
{
    for (const auto& rule : rules::rule_table()) {
        // Rows that only the dimension documents hold have no rule of their own, but their
        // dimension rows are copied as the documents carry them.
        if (rule.in_rule_list())
            db.execute("INSERT INTO tbl_Validacao (CodValidacao, Cod_Produto, Activo, C_Escalao_Min, C_Escalao_Max) "
                       "VALUES (?, ?, ?, ?, ?)",
                       {rule.id, rule.product, rule.listing == rules::Listing::Active, rule.min, rule.max});
        for (const auto& d : kRuleDimensions) {
            const std::string sql =
                "INSERT INTO " + std::string(d.table) + " (CodValidacao, " + d.column + ") VALUES (?, ?)";
            rules::for_each_code(rule.codes_of(d.dimension), [&](std::string_view code) {
                db.execute(sql, {rule.id, d.numeric ? FieldValue(std::stoi(std::string(code))) : FieldValue(code)});
            });
        }
    }
}

}  // namespace

void seed_schema(Database& db)
{
    seed_reference_lists(db);
    seed_rules(db);
    // The factory barcode settings, 0.25 mm modules (the common minimum for counter scanners) in a
    // symbol about 85 mm wide; the print settings start from them, so that a new database prints.
    const cls_ParametroA factory = factory_print_settings();
    const auto whole = [](const std::string& text) { return FieldValue(std::stoi(text)); };
    db.execute("INSERT INTO TAB_CONFIG (config_id, NColunas, NLinhas, ErroLevel, PDFMode, Ratio, FonteSize, Truncated, "
               "ApplyTilde) VALUES (1, ?, ?, ?, ?, ?, ?, ?, ?)",
               {whole(factory.vCod2DNColunas), whole(factory.vCod2DNLinhas), whole(factory.vCod2DErroLevel),
                factory.vCod2DPDFMode, whole(factory.vCod2DRatio), whole(factory.VCod2DFonteSize),
                factory.vCod2DTruncated, factory.vCod2DApplyTilde});
    db.execute("INSERT INTO Tbl_Parametro (Cod2DFonteSize, Cod2DRatio, Cod2DNColunas, Cod2DNLinhas, Cod2DErroLevel, "
               "Cod2DPDFMode, Cod2DTruncated, Cod2DApplyTilde, GuiaNVias, GuiaMargensTopo, GuiaMargensEsquerda, "
               "CodTerceiro) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
               {factory.VCod2DFonteSize, factory.vCod2DRatio, factory.vCod2DNColunas, factory.vCod2DNLinhas,
                factory.vCod2DErroLevel, factory.vCod2DPDFMode, factory.vCod2DTruncated, factory.vCod2DApplyTilde,
                factory.vGuiaNVias, factory.vGuiaMargensTopo, factory.vGuiaMargensEsquerda, factory.vCodTerceiro});
    db.execute("INSERT INTO schema_version (version) VALUES (?)", {kSchemaVersion});
    db.execute("INSERT INTO tbl_Val_Versao (Contador) VALUES (1)");
}

}  // namespace nimbara::entities
