// A catalogue built from the rows of the compiled-in rules, as another rule source will hand them in,
// answers exactly as the compiled one: the same possible-value tables cell for cell, and the same
// verdict and possible values for lines of every rule.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nimbara/cls_ValProdutosA.hpp"
#include "rules/catalogue.hpp"
#include "rules/possible_value_key.hpp"
#include "validation/line_validator.hpp"
#include "validation/possible_values.hpp"
#include "validation/rule_catalogue.hpp"
#include "support/temp_folder.hpp"
#include "support/validation_text.hpp"

using nimbara::rules::PossibleValueKey;
using nimbara::rules::PossibleValueTable;
using nimbara::validation::LineInput;
using nimbara::validation::RuleCatalogue;

namespace {

// Rows whose texts live only as long as the call that builds the catalogue, as a recordset's would.
RuleCatalogue built_from_transient_rows()
{
    std::vector<std::string> texts;
    texts.reserve(nimbara::rules::rule_table().size() * 9);
    std::vector<nimbara::rules::RuleRow> rows;
    for (auto row : nimbara::rules::rule_table()) {
        row.product = texts.emplace_back(row.product);
        for (auto& codes : row.codes) codes = texts.emplace_back(codes);
        rows.push_back(row);
    }
    auto catalogue = RuleCatalogue::from_rows(rows);
    for (auto& t : texts) t.assign(t.size(), '#');  // a view left pointing here would now read wrong
    return catalogue;
}

std::string show(const nimbara::validation::PossibleValues& v)
{
    if (std::holds_alternative<nimbara::validation::PossibleValuesFailed>(v)) return "failed";
    std::string s;
    for (const auto& c : std::get<0>(v)) s += c.code + "=" + c.label + ";";
    return s;
}

using nimbara::testing::show;

}  // namespace

TEST(RuleCatalogue, BuiltFromTheCompiledRowsHasTheSameTables)
{
    const auto built = built_from_transient_rows();
    const auto& compiled = RuleCatalogue::compiled();
    for (std::size_t k = 0; k < nimbara::rules::kPossibleValueKeyCount; ++k) {
        const PossibleValueTable& a = compiled.possible_values(PossibleValueKey(k));
        const PossibleValueTable& b = built.possible_values(PossibleValueKey(k));
        ASSERT_EQ(a.function, b.function);
        ASSERT_EQ(std::vector(a.tags.begin(), a.tags.end()), std::vector(b.tags.begin(), b.tags.end())) << a.function;
        ASSERT_EQ(a.rows(), b.rows()) << a.function;
        for (std::size_t r = 0; r < a.rows(); ++r) {
            EXPECT_EQ(a.bounds[r].min, b.bounds[r].min) << a.function << " row " << r;
            EXPECT_EQ(a.bounds[r].max, b.bounds[r].max) << a.function << " row " << r;
            for (std::size_t c = 0; c < a.tags.size(); ++c)
                EXPECT_EQ(a.cell(r, c), b.cell(r, c)) << a.function << " row " << r << " " << a.tags[c];
        }
    }
}

TEST(RuleCatalogue, BuiltFromTheCompiledRowsJudgesAlike)
{
    namespace v = nimbara::validation;
    const auto built = built_from_transient_rows();
    const auto& compiled = RuleCatalogue::compiled();
    int lines = 0;
    for (const auto& row : nimbara::rules::rule_table()) {
        if (!row.in_rule_list()) continue;
        // The rule's own line, then one just beyond each end of its weights, each with every service.
        const auto first = [&](nimbara::rules::Dimension d) {
            const auto codes = row.codes_of(d);
            return codes.empty() ? std::string("0") : std::string(codes.substr(0, codes.find(' ')));
        };
        using D = nimbara::rules::Dimension;
        const std::string zone = first(D::Zone), speed = first(D::Speed), format = first(D::Format),
                          pre = first(D::PreTreatment), discount = first(D::Discount), scope = first(D::Scope),
                          sampling = first(D::Sampling), services = std::string(row.codes_of(D::Service));
        for (const int weight : {row.min, row.min + 1, row.max, row.max + 1}) {
            const LineInput line{row.product, zone, weight, speed, format, pre, discount, scope, sampling, services};
            ++lines;
            const auto where = std::string(row.product) + " rule " + std::to_string(row.id) + " weight " + std::to_string(weight);
            EXPECT_EQ(show(v::validate_line(built.index(), line)), show(v::validate_line(compiled.index(), line))) << where;
            const auto both = [&](auto ask) { EXPECT_EQ(show(ask(built)), show(ask(compiled))) << where; };
            both([&](const RuleCatalogue& c) { return v::GetPossibleValues_ZonaTaxacao(row.product, c); });
            both([&](const RuleCatalogue& c) { return v::GetPossibleValues_Peso(row.product, zone, c); });
            both([&](const RuleCatalogue& c) { return v::GetPossibleValues_Velocidade(row.product, zone, weight, c); });
            both([&](const RuleCatalogue& c) { return v::GetPossibleValues_Formato(row.product, zone, speed, weight, c); });
            both([&](const RuleCatalogue& c) {
                return v::GetPossibleValues_PreTratamento(row.product, zone, speed, format, weight, c);
            });
            both([&](const RuleCatalogue& c) {
                return v::GetPossibleValues_Desconto(row.product, zone, speed, format, pre, weight, c);
            });
            both([&](const RuleCatalogue& c) {
                return v::GetPossibleValues_AmbitoDistribuicao(row.product, zone, speed, format, pre, weight, c);
            });
            both([&](const RuleCatalogue& c) {
                return v::GetPossibleValues_AmostraDireta(row.product, zone, speed, format, pre, scope, weight, c);
            });
            both([&](const RuleCatalogue& c) {
                return v::GetPossibleValues_ServicosEspeciais(row.product, zone, speed, format, pre, discount, weight, c);
            });
        }
    }
    EXPECT_GT(lines, 500);
}

// A façade handed a catalogue of other rows judges lines and explains refusals by those rows: here
// the national C01 rules move from zone 01 to zone 33.
TEST(RuleCatalogue, DrivesTheFacadeItIsHanded)
{
    std::vector<nimbara::rules::RuleRow> rows(nimbara::rules::rule_table().begin(), nimbara::rules::rule_table().end());
    for (auto& row : rows)
        if (row.product == "C01" && row.codes_of(nimbara::rules::Dimension::Zone) == "01")
            row.codes[static_cast<std::size_t>(nimbara::rules::Dimension::Zone)] = "33";
    const nimbara::cls_ValProdutosA moved(RuleCatalogue::from_rows(rows)), compiled;

    const auto judge = [](const nimbara::cls_ValProdutosA& v, std::string_view zone) {
        return show(v.DoValidaProduto("C01", zone, 50, "0", "02", "1", "0", "0", "0", "0"));
    };
    EXPECT_EQ(judge(moved, "33"), "passes");
    EXPECT_EQ(judge(moved, "01"), "-2 Erro na Zona de Taxação");
    EXPECT_EQ(judge(compiled, "33"), "-2 Erro na Zona de Taxação");

    // The report of a Guia whose line stays in zone 01 lists the zones the moved rules accept.
    nimbara::testing::TempFolder folder;
    nimbara::cls_ValProdutosA guia(RuleCatalogue::from_rows(rows));
    guia.setReportFolder(folder.path());
    guia.setPrintingEnabled(false);
    nimbara::GuiaCabecalho head;
    head.cb_N_Req = "7", head.cb_CodCliente = "456", head.cb_NDoc = "2026/7";
    ASSERT_EQ(guia.PreencheCabecalho(head), 0);
    nimbara::GuiaProduto line;
    line.A_Zona_Taxacao = "01", line.B_Produto = "C01", line.N_Linha = "1", line.Escalao = "50", line.Formato = "02",
    line.PreTratamento = "1";
    ASSERT_EQ(guia.PreencheProduto(line), std::nullopt);
    const auto outcome = guia.ImprimeGuiaOutcome(false);
    ASSERT_TRUE(outcome.report);
    ASSERT_EQ(outcome.line_errors.size(), 1u);
    EXPECT_EQ(outcome.line_errors[0].error.number, -2);
    const auto report = nimbara::testing::read_file(*outcome.report);
    EXPECT_NE(report.find("Codigo = 33"), std::string::npos) << report;
    EXPECT_EQ(report.find("Codigo = 01"), std::string::npos) << report;
}
