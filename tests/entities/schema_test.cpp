#include <gtest/gtest.h>

#include <map>
#include <set>

#include "nimbara/Schema.hpp"
#include "rules/catalogue.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

class SchemaTest : public SeededStoreTest {};
INSTANTIATE_TEST_SUITE_P(Stores, SchemaTest, kBothStores, store_name);

TEST_P(SchemaTest, SeedsTheRulesTheListsAndTheFactorySettings)
{
    EXPECT_EQ(count("tbl_Validacao"), 141);
    EXPECT_EQ(count("tbl_Validacao WHERE Activo = " + std::string(db->boolean_literal(false))), 13);
    // One row of print settings that prints: the factory's, with margins clear of the unprintable border.
    const Recordset settings = db->open("SELECT * FROM Tbl_Parametro");
    ASSERT_EQ(settings.RecordCount(), 1);
    const std::vector<std::string> seeded = {"3", "1", "16", "0", "2", "0", "0", "0", "1", "284", "284", "0"};
    for (std::size_t i = 0; i < seeded.size(); ++i) EXPECT_EQ(settings[i].text(), seeded[i]) << "column " << i;
    EXPECT_EQ(db->open("SELECT version FROM schema_version")["version"].integer(), kSchemaVersion);

    // Rule 1 as the rule table gives it, in every dimension.
    const Recordset rule = db->open("SELECT * FROM tbl_Validacao WHERE CodValidacao = 1");
    EXPECT_EQ(rule["Cod_Produto"].text(), "C01");
    EXPECT_EQ(rule["C_Escalao_Max"].integer(), 50);
    EXPECT_EQ(count("tbl_Val_Formato WHERE CodValidacao = 1"), 3);
    EXPECT_EQ(count("tbl_Val_PreTratamento WHERE CodValidacao = 1 AND Pre_Tratamento = 2"), 1);

    // TAB_CONFIG is read by position: columns, lines, level, mode, ratio, font size, truncated, tilde.
    const Recordset config = db->open("SELECT * FROM TAB_CONFIG WHERE config_id = 1");
    ASSERT_EQ(config.RecordCount(), 1);
    const std::vector<std::string> factory = {"1", "16", "0", "2", "0", "1", "3", "0", "0"};
    for (std::size_t i = 0; i < factory.size(); ++i) EXPECT_EQ(config[i].text(), factory[i]) << "column " << i;
}

TEST_P(SchemaTest, EveryCodeOfTheRulesIsInItsListOnce)
{
    using rules::Dimension;
    struct Case { const char* table; Dimension dimension; };
    const Case cases[] = {
        {"Tbl_A_ZonaTaxacao", Dimension::Zone},       {"Tbl_E_Velocidade", Dimension::Speed},
        {"Tbl_F_Formato", Dimension::Format},         {"Tbl_PreTratamento", Dimension::PreTreatment},
        {"Tbl_H_Descontos", Dimension::Discount},     {"Tbl_N_AmbitoDistribuicao", Dimension::Scope},
        {"Tbl_K_EntregaSampling", Dimension::Sampling}, {"Tbl_I_ServicosEspeciais", Dimension::Service},
    };
    for (const auto& c : cases) {
        std::set<std::string> used = {"0"};
        for (const auto& rule : rules::rule_table())
            if (rule.in_rule_list()) rules::for_each_code(rule.codes_of(c.dimension), [&](auto code) { used.emplace(code); });
        std::multiset<std::string> listed;
        for (Recordset rs = db->open(std::string("SELECT Codigo FROM ") + c.table); !rs.IsEOF(); rs.MoveNext())
            listed.insert(rs["Codigo"].text());
        EXPECT_EQ(std::set<std::string>(listed.begin(), listed.end()), used) << c.table;
        EXPECT_EQ(listed.size(), used.size()) << c.table;
        EXPECT_EQ(listed.count("0"), 1u) << c.table;
    }
    const Recordset zone = db->open("SELECT Designacao FROM Tbl_A_ZonaTaxacao WHERE Codigo = '01'");
    EXPECT_EQ(zone["Designacao"].text(), "Continente, Açores e Madeira");
    const Recordset none = db->open("SELECT Designacao FROM Tbl_F_Formato WHERE Codigo = '0'");
    EXPECT_EQ(none["Designacao"].text(), "");
}

TEST_P(SchemaTest, ASecondCreationChangesNothing)
{
    db->execute("DELETE FROM tbl_Val_ServicoE");
    const auto before = count("tbl_Validacao");
    EXPECT_THROW(create_schema(), SchemaExistsError);
    EXPECT_EQ(count("tbl_Validacao"), before);
    EXPECT_EQ(count("tbl_Val_ServicoE"), 0);
}

TEST_P(SchemaTest, ThePrintingViewNamesEveryLineWithItsDesignations)
{
    db->execute("INSERT INTO Tbl_Linha (N_Req, N_Linha, A_Zona_Taxacao, B_Produto, C_Escalao, D_Quantidade, "
                "E_Velocidade, F_Formato, G_Pre_Tratamento, H_Descontos, K_Entrega_Sampling, N_Ambito_Distrib) "
                "VALUES (5, 1, '01', 'C01', 20, 300, '0', '01', 1, '0', '0', '0'), "
                "(5, 2, '99', 'X99', 20, 1, '0', '01', 1, '0', '0', '0')");
    Recordset rs = db->open("Select * from Query_ParteVariavel where n_req = ? ORDER BY N_Linha", {5});
    ASSERT_EQ(rs.RecordCount(), 2) << "a code the lists lack keeps its line";
    EXPECT_EQ(rs["D_Quantidade"].integer(), 300);
    EXPECT_EQ(rs["Desig_Zona_Taxacao"].text(), "Continente, Açores e Madeira");
    EXPECT_EQ(rs["Desig_Formato"].text(), "Normalizado");
    rs.MoveNext();
    EXPECT_TRUE(rs["Desig_Produto"].is_null());
}
