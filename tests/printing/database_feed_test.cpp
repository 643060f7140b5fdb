#include <gtest/gtest.h>

#include <string>

#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_Parametro.hpp"
#include "printing/request_day.hpp"
#include "support/sample_entities.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::StoreTest;

TEST(RequestDay, LastDigitOfTheYearAndTheDayOfTheYear)
{
    struct Case { Timestamp date; const char* code; };
    const Case cases[] = {
        {{2025, 2, 3}, "5034"},  {{2024, 12, 31}, "4366"}, {{2010, 1, 1}, "0001"},
        {{2023, 12, 31}, "3365"}, {{2024, 3, 1}, "4061"},   {{2025, 7, 19, 23, 59, 59}, "5200"},
    };
    for (const auto& c : cases) EXPECT_EQ(printing::D_Req_Jul(c.date), c.code) << c.date.text();
    EXPECT_THROW(printing::D_Req_Jul({2025, 2, 30}), std::invalid_argument);
}

class DatabaseFeed : public StoreTest {
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        create_schema();
        nimbara::testing::store_client(db, 1, "Papelaria D'Ávila");
        auto g = nimbara::testing::new_guia(db, 1, 2, 0, 41);
        g->vNReq = 41;
        g->vDReq = {2025, 2, 3, 10, 30, 0};
        g->vNCompromisso = "PO-7";
        auto& second = g->mColLinha.Item(2);
        // Stored in an order that is not the order of value.
        for (const auto& [code, value] : {std::pair{"12", 300.0f}, {"02", 0.0f}, {"07", 150.0f}, {"04", 0.0f}})
            second.AddSEspecial(code, value);
        g->DoSave();
        printer = std::make_unique<cls_Impressao>(db);
        printer->set_log_path(folder.path() / "print.log");
    }

    nimbara::testing::TempFolder folder;
    std::unique_ptr<cls_Impressao> printer;
};
INSTANTIATE_TEST_SUITE_P(Stores, DatabaseFeed, kBothStores, store_name);

TEST_P(DatabaseFeed, HeaderWithItsClientAndDayCode)
{
    Recordset rs;
    printer->Param_Cabecalho(41, rs);
    ASSERT_EQ(rs.RecordCount(), 1) << ::testing::PrintToString(printer->log_entries());
    EXPECT_EQ(rs.FieldCount(), 18u);
    EXPECT_EQ(rs.FieldName(17), "D_Req_Jul");
    EXPECT_EQ(rs["D_Req_Jul"].text(), "5034");
    EXPECT_EQ(rs["Nome"].text(), "Papelaria D'Ávila");
    EXPECT_EQ(rs[14].text(), "PO-7");

    Recordset untouched;
    printer->Param_Cabecalho(42, untouched);
    EXPECT_EQ(untouched.State(), Recordset::adStateClosed) << "nothing found leaves the argument as it was";
}

TEST_P(DatabaseFeed, LinesFromTheStoredGuiaOrTheCheckCopy)
{
    Recordset lines, copy;
    printer->Param_Produto(41, lines, 1);
    EXPECT_EQ(lines.RecordCount(), 2);
    EXPECT_EQ(lines["B_Produto"].text(), "C01");
    printer->Param_Produto(41, copy, 2);
    EXPECT_EQ(copy.State(), Recordset::adStateClosed) << "no copy was made for a check";
}

TEST_P(DatabaseFeed, ServicesByValueAndTheirCodes)
{
    struct Case { std::int32_t line; std::string before; std::int16_t imprime; std::string codes; std::int64_t rows; };
    const Case cases[] = {
        {2, "", 1, "02,04,07,12", 4},
        {2, "25,", 0, "25,02,04,07,12", 0},
        {1, "kept?", 1, "", 0},
    };
    for (const auto& c : cases) {
        std::string codes = c.before;
        Recordset services;
        printer->Param_ServicosEspeciais(41, c.line, codes, &services, c.imprime);
        EXPECT_EQ(codes, c.codes) << c.line << " " << c.imprime;
        EXPECT_EQ(services.State() == Recordset::adStateOpen ? services.RecordCount() : 0, c.rows);
        if (c.rows > 0) {
            EXPECT_EQ(services["CodigoServicoEspecial"].text(), "02") << "on the first row";
        }
    }
    EXPECT_EQ(printer->rsSe_ssql.State(), Recordset::adStateOpen) << "the last call asked for the rows";
}

TEST_P(DatabaseFeed, SettingsRowAndFailuresOfTheGuardedFeeds)
{
    db->execute("DELETE FROM Tbl_Parametro");
    Recordset settings;
    printer->Param_Parametros(settings);
    EXPECT_EQ(settings.State(), Recordset::adStateClosed) << "an empty table leaves the argument as it was";
    cls_Parametro(db).DoSave();
    printer->Param_Parametros(settings);
    ASSERT_EQ(settings.RecordCount(), 1);
    EXPECT_EQ(settings[8].text(), "1") << "the copies, ninth of the columns";
    EXPECT_EQ(settings["GuiaNVias"].text(), "1");

    db->execute("DROP VIEW Query_ParteVariavel");
    Recordset lines;
    printer->Param_Produto(41, lines, 1);
    EXPECT_EQ(lines.State(), Recordset::adStateClosed);
    ASSERT_EQ(printer->log_entries().size(), 1u);
    EXPECT_EQ(printer->log_entries()[0].rfind("Param_Produto-Erro:", 0), 0u) << printer->log_entries()[0];

    db->execute("DROP TABLE Tbl_Parametro");
    EXPECT_THROW(printer->Param_Parametros(settings), DatabaseError) << "no handler: the caller hears of it";
}
