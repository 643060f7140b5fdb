#include <gtest/gtest.h>

#include "nimbara/cls_Cliente.hpp"
#include "support/sample_entities.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

class ClienteTest : public SeededStoreTest {};
INSTANTIATE_TEST_SUITE_P(Stores, ClienteTest, kBothStores, store_name);

TEST_P(ClienteTest, SavesAndLoadsAsGivenWithItsContracts)
{
    cls_Cliente c(db);
    c.iId_Cliente = c.SelectMax() + 1;
    c.vCod_Cliente = "456";
    c.vNome = "Sant'Ana & Filhos, Lda — Açores";
    c.vNIF = "";
    c.vObservacoes = "  it's here  ";
    c.iAcessoRede = 1;
    c.AddContrato(1, "7", "Contrato d'Ouro", true, "A1", "v", "d", false, Timestamp{2001, 1, 2});
    c.AddContrato(1, "3", "Outro", false, "0", "", "", true, Timestamp{2001, 1, 2});
    c.DoSave();
    ASSERT_EQ(c.LastError(), "");

    cls_Cliente back(db);
    back.SelectMeByCod_Cliente(456);
    EXPECT_FALSE(back.vIsNew);
    EXPECT_EQ(back.vNome, c.vNome);
    EXPECT_EQ(back.vNIF, "0") << "an empty tax number is stored as 0 by the insert";
    EXPECT_EQ(back.vObservacoes, "  it's here  ");
    ASSERT_EQ(back.mColContrato.Count(), 2u);
    const cls_Contrato& ouro = back.mColContrato.Item(2);
    EXPECT_EQ(ouro.vDesignacao, "Contrato d'Ouro");
    EXPECT_TRUE(ouro.bActivo) << "a new contract is stored active";
    Timestamp today = Timestamp::now();
    today.hour = today.minute = today.second = 0;
    EXPECT_EQ(ouro.dDataActividade, today) << "and dated today";

    back.vNIF = "";
    back.mColContrato.Item(2).bActivo = false;
    back.DoSave();
    cls_Cliente again(db);
    again.SelectMe(1);
    EXPECT_EQ(again.vNIF, "") << "the update stores it empty";
    EXPECT_EQ(again.vObservacoes, "it's here") << "the update trims the remarks";
    EXPECT_FALSE(again.mColContrato.Item(2).bActivo);
    Recordset rs;
    EXPECT_EQ(again.SelectContrato_Criteria(rs, 1), "3");
}

TEST_P(ClienteTest, CollectionFlagsDecideWhatTheSaveDoes)
{
    nimbara::testing::store_client(db, 1);
    cls_Cliente c(db);
    c.SelectMe(1);
    c.AddContrato(1, "2", "Dois", false, "0", "", "", true, Timestamp::now());
    c.AddContrato(1, "3", "Tres", false, "0", "", "", true, Timestamp::now());
    c.RemoveContrato(3);  // new: gone from the list
    ASSERT_EQ(c.mColContrato.Count(), 2u);
    c.RemoveContrato(1);  // stored: kept until the save
    ASSERT_EQ(c.mColContrato.Count(), 2u);
    EXPECT_TRUE(c.mColContrato.Item(1).vToDelete);
    c.DoSave();
    ASSERT_EQ(c.LastError(), "");
    EXPECT_EQ(count("Tbl_Contrato"), 1);
    EXPECT_EQ(db->open("SELECT Cod_Contrato FROM Tbl_Contrato")["Cod_Contrato"].integer(), 2);

    cls_Cliente three(db);
    for (const char* n : {"1", "2", "3"}) three.AddContrato(1, n, n, false, "0", "", "", true, Timestamp::now());
    three.UpdateListContrato(1, "01", "Um", false, "0", "", "", true, Timestamp::now());
    EXPECT_EQ(three.mColContrato.Item(3).vCodContrato, "1") << "the edited item goes last, its number normalised";
    EXPECT_FALSE(three.mColContrato.Item(3).vIsNew);
}

TEST_P(ClienteTest, DeletionsAsTheyStand)
{
    nimbara::testing::store_client(db, 1);
    nimbara::testing::store_client(db, 2);
    auto guia = nimbara::testing::new_guia(db, 1);
    ASSERT_TRUE(guia->DoSaveNumerada()) << guia->LastError();
    ASSERT_TRUE(nimbara::testing::new_guia(db, 2)->DoSaveNumerada());

    cls_Cliente simple(db);
    simple.SelectMe(1);
    simple.DoDelete();
    EXPECT_NE(simple.LastError(), "") << "the old statement fails";
    EXPECT_EQ(count("Tbl_Contrato WHERE Id_Cliente = 1"), 1) << "and now leaves the contracts";

    simple.Delete_ContratosGuias("1", "1");
    EXPECT_EQ(count("Tbl_Contrato WHERE Id_Cliente = 1"), 1) << "the old filter matches no client number";

    simple.DeleteRegs("1");
    EXPECT_EQ(simple.LastError(), "");
    EXPECT_EQ(count("Tbl_Cliente"), 1);
    EXPECT_EQ(count("Tbl_Contrato"), 1);
    EXPECT_EQ(count("Tbl_Cab"), 1);
    EXPECT_EQ(count("Tbl_Linha"), 2);
    EXPECT_EQ(count("Tbl_Linha_ServicoEspecial"), 2) << "only the other client's Guia is left";
}

TEST_P(ClienteTest, SearchesAndFactorySettings)
{
    nimbara::testing::store_client(db, 1);
    cls_Cliente c(db);
    c.vIsNew = false;
    std::string known = "1001", unknown = "77", word = "abc";
    EXPECT_TRUE(c.Busca_Cliente(known));
    EXPECT_FALSE(c.vIsNew);
    EXPECT_FALSE(c.Busca_Cliente(unknown));
    EXPECT_TRUE(c.vIsNew);
    EXPECT_THROW(c.Busca_Cliente(word), std::invalid_argument);

    cls_Contrato contrato(db);
    std::int16_t col = -1, lin = -1, error = -1, ratio = -1, font = -1;
    std::string pdf, trunc, tilde, msg;
    contrato.Config_Defaults(col, lin, error, pdf, ratio, font, trunc, tilde, &msg);
    EXPECT_EQ(std::vector<int>({col, lin, error, ratio, font}), std::vector<int>({16, 0, 2, 1, 3}));
    EXPECT_EQ(pdf + trunc + tilde, "000");
    EXPECT_EQ(msg, "");
    db->execute("DELETE FROM TAB_CONFIG");
    col = -1;
    contrato.Config_Defaults(col, lin, error, pdf, ratio, font, trunc, tilde, &msg);
    EXPECT_EQ(msg, "Não foi possivel restabelecer os valores por default.");
    EXPECT_EQ(col, -1);
}
