#include <gtest/gtest.h>

#include <functional>

#include "nimbara/cls_Guia.hpp"
#include "support/guia_listing_rows.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::store_listing_guias;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

namespace {

// The lines of a result as "N_REQ.N_LINHA", in their order.
std::string lines_of(Recordset rs)
{
    std::string out;
    for (; !rs.IsEOF(); rs.MoveNext())
        out += (out.empty() ? "" : " ") + rs["Req"].text() + "." + rs["N_linha"].text();
    return out;
}

class GuiaListingTest : public SeededStoreTest {
protected:
    void SetUp() override
    {
        SeededStoreTest::SetUp();
        if (!IsSkipped() && !HasFailure()) guia = std::make_unique<cls_Guia>(db);
    }
    std::unique_ptr<cls_Guia> guia;
};
INSTANTIATE_TEST_SUITE_P(Stores, GuiaListingTest, kBothStores, store_name);

}  // namespace

TEST_P(GuiaListingTest, FiltersAndOrders)
{
    store_listing_guias(db);
    struct Case { std::string year, month, client, order, lines; };
    const Case cases[] = {
        {"", "0", "0", "", "11.1 10.1 10.2 12.1 12.2 12.3 13.1"},
        {"", "", "", "", "11.1 10.1 10.2 12.1 12.2 12.3 13.1"},
        {"2024", "0", "0", "", "10.1 10.2 12.1 12.2 12.3 13.1"},
        {"2023", "", "", "", "11.1"},
        {" 2024 ", "3", "", "", "10.1 10.2 13.1"},
        {"", "3", "0", "", "10.1 10.2 13.1"},
        {"", "12", "", "", "11.1 12.1 12.2 12.3"},
        {"2024", "12", "", "", "12.1 12.2 12.3"},
        {"", "", "1002", "", "12.1 12.2 12.3 13.1"},
        {"2024", "3", "1002", "", "13.1"},
        {"2024", "13", "", "", ""},
        {"1", "", "", "", ""},
        {"", "", "", "guia desc, peso", "13.1 10.1 10.2 12.1 12.2 12.3 11.1"},
        {"", "", "", "GUIA DESC,PESO", "13.1 10.1 10.2 12.1 12.2 12.3 11.1"},
        {"", "", "", "data", "11.1 10.1 10.2 13.1 12.1 12.2 12.3"},
        {"", "", "", "Data Desc", "12.1 12.2 12.3 13.1 10.1 10.2 11.1"},
        {"", "", "", "nome", "12.1 12.2 12.3 13.1 10.1 10.2 11.1"},
        {"", "", "", "cliente desc, guia asc", "12.1 12.2 12.3 13.1 11.1 10.1 10.2"},
        {"", "", "", "quantidade desc", "12.3 10.2 12.2 10.1 11.1 12.1 13.1"},
        {"2024", "", "", "peso desc , guia", "10.1 10.2 12.1 12.2 12.3 13.1"},
        {"", "", "", "contrato,velocidade,produto,zona,formato,ambito", "10.1 10.2 11.1 12.1 12.2 12.3 13.1"},
    };
    for (const auto& c : cases) {
        std::int16_t erro = 7;
        auto rs = guia->getRSGuia(c.year, c.month, c.client, c.order, &erro);
        const std::string label = c.year + "|" + c.month + "|" + c.client + "|" + c.order;
        ASSERT_TRUE(rs) << label << ": " << guia->LastError();
        EXPECT_EQ(erro, 7) << label << ": success leaves erro alone";
        if (c.lines.empty()) {
            EXPECT_EQ(rs->FieldCount(), 15u) << label << ": the empty form";
            EXPECT_EQ((*rs)["Req2"].text(), "1") << label;
        } else {
            EXPECT_EQ(lines_of(*rs), c.lines) << label;
        }
    }
}

TEST_P(GuiaListingTest, RefusesWhatIsNoOrderOrFilter)
{
    store_listing_guias(db);
    struct Case { std::string year, client, order, word; };
    const Case cases[] = {
        {"", "", "guia; DELETE FROM Tbl_Linha", ";"},
        {"", "", "n_req", "n_req"},
        {"", "", "Tbl_Cab.N_req2", "_Cab.N_req2"},
        {"", "", "guiadesc", "guiadesc"},
        {"", "", "guia peso", "peso"},
        {"", "", "guia asc desc", "desc"},
        {"", "", "desc", "desc"},
        {"", "", "guia,", "empty place"},
        {"", "", ", guia", "empty place"},
        {"", "", "   ", "empty place"},
        {"", "", "peso -- comment", "--"},
        {"", "", "(peso)", "(peso)"},
        {"2024 OR 1=1", "", "", "2024 OR 1=1"},
        {"", "1002; DELETE FROM Tbl_Cab", "", "is no whole number"},
    };
    for (const auto& c : cases) {
        std::int16_t erro = 0;
        EXPECT_FALSE(guia->getRSGuia(c.year, "", c.client, c.order, &erro)) << c.order;
        EXPECT_EQ(erro, 1) << c.order;
        EXPECT_NE(guia->LastError().find(c.word), std::string::npos) << c.order << ": " << guia->LastError();
    }
    EXPECT_EQ(count("Tbl_Linha"), 7);
    EXPECT_FALSE(guia->getRSGuia("", "", "", "peso;")) << "without erro the refusal still answers nothing";
}

TEST_P(GuiaListingTest, ALineAsTheGridShowsIt)
{
    store_listing_guias(db);
    auto rs = guia->getRSGuia("2024", "3", "1001", "");
    ASSERT_TRUE(rs) << guia->LastError();
    const std::string designation = db->open("SELECT Designacao FROM Tbl_B_Produto WHERE Codigo = 'C01'")[0].text();
    struct Case { const char* column; std::string text; };
    const Case cases[] = {
        {"Req1", "10"}, {"Req2", "2"}, {"Req", "10"}, {"Guia", "5"}, {"N_linha", "1"}, {"Data", "05/03/2024"},
        {"Cliente", "1001"}, {"Nome", "Zé d'Almeida"}, {"Contrato", "1"}, {"Produto", "C01 - " + designation},
        {"Peso", "50"}, {"Quantidade", "100"}, {"CodigoCampanha", "CAMP"},
    };
    for (const auto& c : cases) EXPECT_EQ((*rs)[c.column].text(), c.text) << c.column;
    for (const char* composed : {"Velocidade", "Zona", "Formato", "Ambito"})
        EXPECT_NE((*rs)[composed].text().find(" - "), std::string::npos) << composed;
    EXPECT_EQ(rs->FieldName(0), "Req1") << "names as written, on both stores";
}

TEST_P(GuiaListingTest, YearsAndClients)
{
    EXPECT_FALSE(guia->getRSAno()) << "no Guias: nothing";
    store_listing_guias(db);
    auto years = guia->getRSAno();
    ASSERT_TRUE(years);
    EXPECT_EQ(years->RecordCount(), 2);
    EXPECT_EQ((*years)["Ano"].integer(), 2024);

    struct Case { std::string year; std::string clients; };
    const Case cases[] = {{"2024", "1001 1002"}, {"2023", "1001"}, {"2025", ""}, {"", ""}, {"dois", ""}};
    for (const auto& c : cases) {
        auto rs = guia->getRSClientes(c.year);
        std::string got;
        for (; rs && !rs->IsEOF(); rs->MoveNext()) got += (got.empty() ? "" : " ") + (*rs)["Cod_Cliente"].text();
        EXPECT_EQ(got, c.clients) << c.year;
        EXPECT_EQ(rs.has_value(), !c.clients.empty()) << c.year;
    }
    auto names = guia->getRSNomesClientes("1001");
    ASSERT_TRUE(names);
    EXPECT_EQ(names->RecordCount(), 2) << "the argument is not used";
}

TEST_P(GuiaListingTest, ServicesAndTheirAmounts)
{
    store_listing_guias(db);
    const auto designation = [&](const char* code) {
        return db->open("SELECT Designacao FROM Tbl_I_ServicosEspeciais WHERE Codigo = ?", {code})[0].text();
    };
    EXPECT_EQ(guia->getRSServEspExport(10, 1, ";"),
              "01 - " + designation("01") + ";1,50;02 - " + designation("02") + ";3,00;");
    EXPECT_EQ(guia->getRSServEspExport(13, 1, ";"), " ; ; ; ; ; ") << "no services: six blanks";
    EXPECT_EQ(guia->getRSServEspExport(13, 1, "|"), " | | | | | ");

    auto rs = guia->getRSServEsp(10, 2);
    ASSERT_TRUE(rs);
    EXPECT_EQ(rs->RecordCount(), 2);
    EXPECT_EQ((*rs)["CodigoServicoEspecial1"].text(), "01");
    EXPECT_EQ((*rs)["Designacao"].text(), designation("01"));

    struct Case { const char* stored; const char* shown; };
    const Case cases[] = {{"150", "1,50"}, {"123456", "1234,56"}, {"12", ",12"}, {"5", "0,05"}, {"0", "0,00"}};
    for (const auto& c : cases) {
        db->execute("UPDATE Tbl_Linha_ServicoEspecial SET Valor = ? WHERE N_Req = 10 AND N_Linha = 1 "
                    "AND CodigoServicoEspecial = '01'",
                    {c.stored});
        auto one = guia->getRSServEsp(10, 1);
        ASSERT_TRUE(one);
        EXPECT_EQ((*one)["Valor"].text(), c.shown) << c.stored;
    }
}

TEST_P(GuiaListingTest, EmptyForms)
{
    struct Case { const char* what; std::function<std::optional<Recordset>()> form; std::size_t fields; const char* first; };
    const Case cases[] = {
        {"lines", [&] { return guia->getRSGuiaEmpty(); }, 15, "0"},
        {"services", [&] { return guia->getRSServEspEmpty(); }, 4, "0"},
        {"services of a line without any", [&] { return guia->getRSServEsp(13, 1); }, 4, "0"},
        {"a listing that finds nothing", [&] { return guia->getRSGuia("2030", "", "", ""); }, 15, "0"},
    };
    for (const auto& c : cases) {
        auto rs = c.form();
        ASSERT_TRUE(rs) << c.what << ": " << guia->LastError();
        EXPECT_EQ(rs->RecordCount(), 0) << c.what << ": no row while its table is empty";
        EXPECT_EQ(rs->FieldCount(), c.fields) << c.what;
    }
    store_listing_guias(db);
    for (const auto& c : cases) {
        auto rs = c.form();
        ASSERT_TRUE(rs) << c.what;
        ASSERT_EQ(rs->RecordCount(), 1) << c.what;
        EXPECT_EQ((*rs)[0].text(), c.first) << c.what;
        for (std::size_t f = c.fields == 15 ? 2 : 1; f < rs->FieldCount(); ++f)
            EXPECT_EQ((*rs)[f].text(), "") << c.what << " " << rs->FieldName(f);
    }
}

TEST(GuiaReplace, ReplacesOnwardFromEachInsertion)
{
    struct Case { std::string in, find, with; std::int32_t start, count; CompareMode mode; std::string out; };
    const Case cases[] = {
        {"aaa", "a", "aa", 1, -1, CompareMode::Binary, "aaaaaa"},
        {"abcabc", "b", "X", 1, 1, CompareMode::Binary, "aXcabc"},
        {"abcabc", "b", "X", 3, -1, CompareMode::Binary, "abcaXc"},
        {"abcabcabc", "abc", "ab", 1, 2, CompareMode::Binary, "abababc"},
        {"abc", "", "X", 1, -1, CompareMode::Binary, "abc"},
        {"abc", "b", "b", 1, -1, CompareMode::Binary, "abc"},
        {"abc", "c", "", 1, -1, CompareMode::Binary, "ab"},
        {"abc", "b", "X", 9, -1, CompareMode::Binary, "abc"},
        {"ABCabc", "b", "x", 1, -1, CompareMode::Binary, "ABCaxc"},
        {"ABCabc", "b", "x", 1, -1, CompareMode::Text, "AxCaxc"},
        {"Ação ação", "AÇÃO", "x", 1, -1, CompareMode::Text, "x x"},
        {"guia desc", "guia", "Tbl_Cab.N_req2", 1, -1, CompareMode::Binary, "Tbl_Cab.N_req2 desc"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(cls_Guia::Replace(c.in, c.find, c.with, c.start, c.count, c.mode), c.out) << c.in << " " << c.find;
    EXPECT_THROW(cls_Guia::Replace("abc", "b", "X", 0), std::invalid_argument);
}
