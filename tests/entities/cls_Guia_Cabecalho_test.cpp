#include <gtest/gtest.h>

#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "support/sample_entities.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::new_guia;
using nimbara::testing::store_client;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

class GuiaTest : public SeededStoreTest {
protected:
    void SetUp() override
    {
        SeededStoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        for (int id = 1; id <= 2; ++id) store_client(db, id);
    }
};
INSTANTIATE_TEST_SUITE_P(Stores, GuiaTest, kBothStores, store_name);

TEST_P(GuiaTest, ComesBackAsItWasSaved)
{
    auto g = new_guia(db, 1, 2, 2, 41);
    g->vDReq = Timestamp{2024, 3, 5, 14, 30, 0};  // a day up to 12 stays the day
    g->vObservacoes = "Entregar à D'Almeida; 'urgente'";
    g->vCredenciado = true;
    g->mColLinha.Item(2).vRefCli = "Ref ção";
    g->DoSave();
    ASSERT_EQ(g->LastError(), "");

    cls_Guia_Cabecalho back(db);
    back.SelectMe(41);
    EXPECT_EQ(back.vObservacoes, g->vObservacoes);
    EXPECT_EQ(back.vDReq, g->vDReq);
    EXPECT_TRUE(back.vCredenciado);
    EXPECT_EQ(back.vCodTerceiro, "") << "not written by the insert: null, read as the empty text";
    ASSERT_EQ(back.mColLinha.Count(), 2u);
    const cls_Guia_Linha& line = back.mColLinha.Item(2);
    EXPECT_EQ(line.vD_Quantidade, 200);
    EXPECT_EQ(line.vConteudo, "12") << "the content code at the head of the text";
    EXPECT_EQ(line.vRefCli, "Ref ção");
    ASSERT_EQ(line.mColSEspecial.Count(), 2u);
    EXPECT_EQ(line.mColSEspecial.Item(2).vValor, "300");
    EXPECT_FALSE(line.vIsNew);

    back.FillColLinha();
    EXPECT_EQ(back.mColLinha.Count(), 4u) << "a second fill doubles the lines";
    Recordset rs;
    EXPECT_THROW(back.mColLinha.Item(1).SelectMe(rs, 41, 1), DatabaseError);
    EXPECT_THROW(cls_Guia_Cabecalho(db).SelectMe(999), DatabaseError);
}

TEST_P(GuiaTest, ASaveIsWholeOrNothing)
{
    auto g = new_guia(db, 1, 2, 1, 7);
    g->DoSave();
    ASSERT_EQ(g->LastError(), "");
    EXPECT_TRUE(g->vIsNew) << "a save does not clear the flag";
    g->vObservacoes = "changed";
    g->DoSave();
    EXPECT_NE(g->LastError(), "") << "a second insert fails on the key";
    EXPECT_EQ(count("Tbl_Cab WHERE Observacoes = 'changed'"), 0);

    auto bad = new_guia(db, 2, 2, 1, 8);
    bad->mColLinha.Item(2).AddSEspecial("01", 5);  // the same service twice on a line
    EXPECT_EQ(bad->DoSave(), 0);
    EXPECT_NE(bad->LastError(), "");
    EXPECT_EQ(count("Tbl_Cab WHERE N_Req = 8"), 0) << "the header goes with its failed service";
    EXPECT_EQ(count("Tbl_Linha WHERE N_Req = 8"), 0);
}

TEST_P(GuiaTest, FlagsWalkTheLinesAndServices)
{
    auto g = new_guia(db, 1, 3, 2, 5);
    g->DoSave();
    cls_Guia_Cabecalho stored(db);
    stored.SelectMe(5);
    struct Case { const char* what; std::function<void(cls_Guia_Cabecalho&)> change; std::int64_t lines, services; };
    const Case cases[] = {
        {"unchanged", [](cls_Guia_Cabecalho&) {}, 3, 6},
        {"one service withdrawn: that one only", [](cls_Guia_Cabecalho& h) { h.mColLinha.Item(1).RemoveSEspecial(1); }, 3, 5},
        {"a stored line withdrawn, with its services",
         [](cls_Guia_Cabecalho& h) {
             h.RemoveLinha(2);
             EXPECT_EQ(h.mColLinha.Count(), 3u) << "kept until the save";
         },
         2, 3},
        {"a new line, then withdrawn before saving",
         [](cls_Guia_Cabecalho& h) {
             std::string d = "x";
             h.AddLinha(9, "01", "C01", 1, 1, "0", "01", "1", "0", "0", 0, 0, "0", d, "", "", "");
             h.RemoveLinha(static_cast<std::int16_t>(h.mColLinha.Count()));
         },
         2, 3},
        {"a new service on a stored line", [](cls_Guia_Cabecalho& h) { h.mColLinha.Item(2).AddSEspecial("07", 175); }, 2, 4},
    };
    for (const auto& c : cases) {
        cls_Guia_Cabecalho h(db);
        h.SelectMe(5);
        c.change(h);
        h.DoSave();
        EXPECT_EQ(h.LastError(), "") << c.what;
        EXPECT_EQ(count("Tbl_Linha WHERE N_Req = 5"), c.lines) << c.what;
        EXPECT_EQ(count("Tbl_Linha_ServicoEspecial WHERE N_Req = 5"), c.services) << c.what;
    }
    EXPECT_EQ(count("Tbl_Linha_ServicoEspecial WHERE Valor = '175'"), 1);

    // A new line over a stored one replaces its row and keeps its services.
    cls_Guia_Linha over(db);
    over.vNReq = 5;
    over.vNLinha = 3;
    over.vB_Produto = "C02";
    over.DoSave();
    EXPECT_EQ(count("Tbl_Linha WHERE N_Req = 5 AND N_Linha = 3 AND B_Produto = 'C02'"), 1);
    EXPECT_EQ(count("Tbl_Linha_ServicoEspecial WHERE N_Req = 5 AND N_Linha = 3"), 3);

    stored.DoDelete();
    EXPECT_EQ(stored.LastError(), "");
    EXPECT_EQ(count("Tbl_Linha_ServicoEspecial WHERE N_Req = 5") + count("Tbl_Linha WHERE N_Req = 5") +
                  count("Tbl_Cab WHERE N_Req = 5"),
              0);
}

TEST_P(GuiaTest, CopyingALineDropsOnlyWithdrawnNewServices)
{
    cls_Guia_Linha source(db);
    source.vNLinha = 4;
    source.vConteudo = "7";
    source.AddSEspecial("01", 10, false);
    source.AddSEspecial("02", 20, true, true);   // new and withdrawn: dropped
    source.AddSEspecial("03", 30, false, true);  // stored and withdrawn: kept, to be deleted
    cls_Guia_Linha copy(db);
    copy.AddSEspecial("09", 1);
    copy.CopyObject(source);
    ASSERT_EQ(copy.mColSEspecial.Count(), 2u);
    EXPECT_EQ(copy.mColSEspecial.Item(2).vCodigoServicoEspecial, "03");
    EXPECT_TRUE(copy.mColSEspecial.Item(2).vToDelete);
    EXPECT_EQ(copy.vNLinha, 4);

    struct Content { const char* text; const char* code; };
    for (const Content c : {Content{"12 Revistas", "12"}, {"7", "7"}, {"  ", "0"}, {"", "0"}, {"ab", "0"}}) {
        copy.vConteudo = c.text;
        EXPECT_EQ(copy.ContentCode(), c.code) << c.text;
    }
}

TEST_P(GuiaTest, WorkingCopyForValidation)
{
    auto g = new_guia(db, 1, 3, 1, 3);
    g->mColLinha.Item(2).vB_Produto = "0";  // untouched lines are left out
    g->DoInsertValTemp();
    ASSERT_EQ(g->LastError(), "");
    auto other = new_guia(db, 2, 1, 1, 4);
    other->DoInsertValTemp();
    EXPECT_EQ(count("Tbl_Temp_Val_Guia WHERE N_Req = 3"), 2);
    EXPECT_EQ(count("Tbl_Temp_Val_Guia WHERE Q_Conteudo = '12' AND G_PreTratamento = 1"), 3);
    g->DoRemoveValTemp();
    EXPECT_EQ(count("Tbl_Temp_Val_Guia"), 0) << "emptied for every Guia";
}

TEST_P(GuiaTest, NumbersRunPerClientAndYear)
{
    cls_Guia_Cabecalho probe(db);
    EXPECT_EQ(probe.SelectMax() + probe.SelectMax_PorCliente("1001") + probe.SelectMax_NReqAnual_PorCliente("1001"), 0);

    const int this_year = Timestamp::now().year;
    struct Case { int client; int year; std::int32_t n_req, n_req2, anual; };
    const Case cases[] = {
        {1, this_year, 1, 1, 1}, {1, this_year, 2, 2, 2}, {2, this_year, 3, 1, 1},
        {1, this_year - 1, 4, 3, 1}, {2, this_year - 1, 5, 2, 1}, {1, this_year, 6, 4, 3},
    };
    for (const auto& c : cases) {
        auto g = new_guia(db, c.client);
        g->vDReq = Timestamp{c.year, 6, 1};
        ASSERT_TRUE(g->DoSaveNumerada()) << g->LastError();
        EXPECT_EQ(std::vector<std::int32_t>({g->vNReq, g->vNReq2, g->vNIDReqAnual}),
                  std::vector<std::int32_t>({c.n_req, c.n_req2, c.anual}));
        EXPECT_EQ(g->mColLinha.Item(2).mColSEspecial.Item(1).vNReq, c.n_req);
        EXPECT_FALSE(g->vIsNew);
    }
    EXPECT_EQ(probe.SelectMax(), 6);
    EXPECT_EQ(probe.SelectMax_PorCliente("1001"), 4);
    EXPECT_EQ(probe.SelectMax_NReqAnual_PorCliente("1001"), 3) << "by the year of the host's clock";
    EXPECT_EQ(count("Tbl_Linha_ServicoEspecial"), 12);

    Recordset lista;
    probe.SelectLista(lista);
    ASSERT_EQ(lista.RecordCount(), 6);
    EXPECT_EQ(lista["Data_Req"].text(), "01-06-" + std::to_string(this_year));
    EXPECT_EQ(lista["Guia"].integer(), 1);

    auto failing = new_guia(db, 1);
    failing->vCodContrato = "not a number";
    EXPECT_FALSE(failing->DoSaveNumerada());
    EXPECT_EQ(failing->vNReq, 0) << "a failed save keeps the numbers it had";
    EXPECT_EQ(probe.SelectMax(), 6);
}
