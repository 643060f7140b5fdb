#include <gtest/gtest.h>

#include <string>

#include "nimbara/cls_Cliente.hpp"
#include "nimbara/guia_store.hpp"
#include "support/test_database.hpp"

namespace nimbara {
namespace {

using namespace nimbara::testing;

class GuiaStoreTest : public SeededStoreTest {
protected:
    void SetUp() override
    {
        SeededStoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        cls_Cliente c(db);
        c.iId_Cliente = 4, c.vCod_Cliente = "456", c.vNome = "Zé d'Almeida, Lda", c.vNIF = "501234567";
        c.vMorada = "Rua Direita, 3", c.vCodPostal = "1000-001", c.vDesigPostal = "LISBOA", c.iAcessoRede = 1;
        c.AddContrato(4, "300042", "Contrato", true, "CRED7", "", "", true, Timestamp::now());
        c.DoSave();
        ASSERT_EQ(c.LastError(), "");
    }

    // A file whose every key the mapping reads carries a value of its own.
    static GuiaFile sample()
    {
        GuiaFile f;
        auto& h = f.cabecalho;
        h.cb_N_Req = "999", h.cb_IDReqAnual = "999", h.cb_NDoc = "1999/9", h.cb_Nome = "ignored";
        h.cb_CodCliente = "456", h.cb_CodContrato = "300042", h.cb_CodTerceiro = "T-9", h.cb_Obs = "Frágil";
        h.cb_NCredencial = "2006/0672", h.cb_NCompromisso = "OC-17", h.cb_JppCredenciado = "1", h.cb_Pagamento = "2";
        h.cb_DataRequisicao = "2026-02-03";
        f.parametros.vGuiaNVias = "7";  // not read: the settings are the database's
        GuiaProduto p;
        p.N_Linha = "2", p.A_Zona_Taxacao = "01", p.B_Produto = "C01", p.E_Velocidade = "1", p.D_Quantidade = "300";
        p.Escalao = "50", p.Formato = "02", p.PreTratamento = "1", p.Desconto = "3", p.CodAmbitoDist = "4";
        p.Entrega_Sampling = "5", p.TaxEsp_Semana = "6", p.TaxEsp_Quantidade = "7", p.DivisaoRemetente = "Norte";
        p.CodigoCampanha = "CAMP", p.caracte = "12 Revistas", p.refClie = "REF-1", p.ListaServesp = "99";
        f.produtos.push_back(p);
        f.servicos.push_back({"2", "06", "325"});
        return f;
    }

    std::string stored(const std::string& sql) { return db->open(sql)[std::size_t{0}].text(); }
};
INSTANTIATE_TEST_SUITE_P(Stores, GuiaStoreTest, kBothStores, store_name);

TEST_P(GuiaStoreTest, EveryKeyGoesToItsColumnAndComesBack)
{
    const auto settings_rows = count("Tbl_Parametro");
    const SavedGuia saved = save_guia_file(db, sample(), "sample.json");
    EXPECT_EQ(saved.N_Req, 1);
    EXPECT_EQ(saved.N_Req2, 1);
    EXPECT_EQ(saved.Id_Req_Anual, 1);

    struct Stored {
        const char* column;
        const char* value;
    };
    const Stored cab[] = {
        {"N_Req", "1"},          {"Id_Cliente", "4"},      {"Cod_Cliente", "456"},       {"Cod_Contrato", "300042"},
        {"CodigoTerceiro", "T-9"}, {"Observacoes", "Frágil"}, {"N_Credencial", "2006/0672"}, {"nCompromisso", "OC-17"},
        {"Pagamento", "2"},
    };
    for (const auto& s : cab) EXPECT_EQ(stored(std::string("SELECT ") + s.column + " FROM Tbl_Cab"), s.value) << s.column;
    EXPECT_TRUE(db->open("SELECT Credenciado FROM Tbl_Cab")[std::size_t{0}].yes_no());
    EXPECT_EQ(db->open("SELECT D_Req FROM Tbl_Cab")[std::size_t{0}].date(), (Timestamp{2026, 2, 3, 0, 0, 0}));
    const Stored line[] = {
        {"N_Linha", "2"},          {"A_Zona_Taxacao", "01"},  {"B_Produto", "C01"},         {"E_Velocidade", "1"},
        {"D_Quantidade", "300"},   {"C_Escalao", "50"},       {"F_Formato", "02"},          {"G_Pre_Tratamento", "1"},
        {"H_Descontos", "3"},      {"N_Ambito_Distrib", "4"}, {"K_Entrega_Sampling", "5"},  {"L_TaxEsp_Semana", "6"},
        {"M_TaxEsp_Quantidade", "7"}, {"O_Divisao_Remetente", "Norte"}, {"CodigoCampanha", "CAMP"},
        {"Q_Conteudo", "12"},      {"P_RefCliente", "REF-1"},
    };
    for (const auto& s : line) EXPECT_EQ(stored(std::string("SELECT ") + s.column + " FROM Tbl_Linha"), s.value) << s.column;
    EXPECT_EQ(stored("SELECT CodigoServicoEspecial FROM Tbl_Linha_ServicoEspecial"), "06");
    EXPECT_EQ(stored("SELECT Valor FROM Tbl_Linha_ServicoEspecial"), "325");
    EXPECT_EQ(count("Tbl_Parametro"), settings_rows) << "the file's settings are not stored";

    const GuiaFile shown = load_guia_file(db, saved.N_Req);
    const auto& h = shown.cabecalho;
    struct Shown {
        const std::string& field;
        const char* value;
    };
    const Shown fields[] = {
        {h.cb_N_Req, "1"},          {h.cb_IDReqAnual, "1"},         {h.cb_NDoc, "2026/1"},
        {h.cb_CodCliente, "456"},   {h.cb_CodContrato, "300042"},   {h.cb_CodCredencial, "CRED7"},
        {h.cb_Nome, "Zé d'Almeida, Lda"}, {h.cb_NContribuinte, "501234567"}, {h.cb_Morada, "Rua Direita, 3"},
        {h.cb_CodPostal, "1000-001"}, {h.cb_DesigPostal, "LISBOA"},   {h.cb_TipoAcesso, "1"},
        {h.cb_CodTerceiro, "T-9"},  {h.cb_Obs, "Frágil"},           {h.cb_NCredencial, "2006/0672"},
        {h.cb_NCompromisso, "OC-17"}, {h.cb_JppCredenciado, "1"},   {h.cb_Pagamento, "2"},
        {h.cb_DataRequisicao, "2026-02-03"}, {h.cb_Drqjul, "6034"},
        {shown.produtos.at(0).ListaServesp, "06"}, {shown.produtos.at(0).Vexora, "0"},
        {shown.produtos.at(0).N_Req, "1"}, {shown.produtos.at(0).caracte, "12"},
        {shown.servicos.at(0).Valor, "325"},
    };
    for (const auto& f : fields) EXPECT_EQ(f.field, f.value);

    // Saved again, the same content under new numbers.
    const SavedGuia again = save_guia_file(db, shown, "shown.json");
    EXPECT_EQ(again.N_Req, 2);
    GuiaFile second = load_guia_file(db, again.N_Req);
    EXPECT_EQ(second.produtos.size(), 1u);
    second.cabecalho.cb_N_Req = h.cb_N_Req, second.cabecalho.cb_IDReqAnual = h.cb_IDReqAnual;
    second.cabecalho.cb_NDoc = h.cb_NDoc;
    for (auto& p : second.produtos) p.N_Req = "1";
    EXPECT_EQ(second, shown);
}

TEST_P(GuiaStoreTest, AFaultyFileIsNamedAtItsPlaceAndStoresNothing)
{
    struct Case {
        const char* name;
        void (*change)(GuiaFile&);
        const char* message;
    };
    const Case cases[] = {
        {"unknown client", [](GuiaFile& f) { f.cabecalho.cb_CodCliente = "457"; },
         "f.json: /cabecalho/cb_CodCliente: no client 457"},
        {"unknown contract", [](GuiaFile& f) { f.cabecalho.cb_CodContrato = "1"; },
         "/cabecalho/cb_CodContrato: client 456 has no contract 1"},
        {"31 February", [](GuiaFile& f) { f.cabecalho.cb_DataRequisicao = "2026-02-31"; },
         "/cabecalho/cb_DataRequisicao: not a date"},
        {"year 0", [](GuiaFile& f) { f.cabecalho.cb_DataRequisicao = "0000-03-01"; },
         "/cabecalho/cb_DataRequisicao: the year 0 is outside"},
        {"a remark with a NUL", [](GuiaFile& f) { f.cabecalho.cb_Obs = std::string("a\0b", 3); },
         "/cabecalho/cb_Obs: text with a NUL character"},
        {"a product code of 1000 characters", [](GuiaFile& f) { f.produtos[0].B_Produto = std::string(1000, 'C'); },
         "/produtos/0/B_Produto: 1000 characters, where the column holds at most 10"},
        {"a quantity near 2^64", [](GuiaFile& f) { f.produtos[0].D_Quantidade = "18446744073709551615"; },
         "/produtos/0/D_Quantidade: \"18446744073709551615\" is no whole number"},
        {"an amount that is no digits", [](GuiaFile& f) { f.servicos[0].Valor = "-5"; },
         "/servicos/0/Valor: \"-5\" is no amount"},
        {"a service of no line", [](GuiaFile& f) { f.servicos[0].N_Linha = "3"; },
         "/servicos/0/N_Linha: no product line 3"},
    };
    for (const auto& c : cases) {
        GuiaFile f = sample();
        c.change(f);
        try {
            save_guia_file(db, f, "f.json");
            ADD_FAILURE() << c.name << " was stored";
        } catch (const GuiaFileError& e) {
            EXPECT_NE(std::string(e.what()).find(c.message), std::string::npos) << c.name << ": " << e.what();
        }
        EXPECT_EQ(count("Tbl_Cab") + count("Tbl_Linha") + count("Tbl_Linha_ServicoEspecial"), 0) << c.name;
    }
    EXPECT_THROW(load_guia_file(db, 1), GuiaNotStoredError);
}

TEST_P(GuiaStoreTest, AValueStoredBeforeTheGateIsNamedWhenWrittenOut)
{
    save_guia_file(db, sample(), "sample.json");
    if (GetParam() == Store::PostgreSQL) GTEST_SKIP() << "the server never held text that is not UTF-8";
    db->execute("UPDATE Tbl_Cab SET Observacoes = ?", {"Fr\xE1gil"});
    try {
        write_guia_file(load_guia_file(db, 1));
        ADD_FAILURE() << "text that is not UTF-8 was written into a Guia file";
    } catch (const GuiaFileError& e) {
        EXPECT_NE(std::string(e.what()).find("/cabecalho/cb_Obs: not UTF-8 text (byte 3)"), std::string::npos)
            << e.what();
    }
}

}  // namespace
}  // namespace nimbara
