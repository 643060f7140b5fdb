// The names of the fields a host reads are the same on both stores: those the statement spells
// (PostgreSQL would fold every unquoted name to lower case).
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "nimbara/cls_Cliente.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_Parametro.hpp"
#include "nimbara/cls_Ref.hpp"
#include "support/sample_entities.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

namespace {

class FieldNamesTest : public SeededStoreTest {};
INSTANTIATE_TEST_SUITE_P(Stores, FieldNamesTest, kBothStores, store_name);

std::string names(const Recordset& rs)
{
    std::string out;
    for (std::size_t i = 0; i < rs.FieldCount(); ++i) out += (i ? "," : "") + rs.FieldName(i);
    return out;
}

}  // namespace

TEST_P(FieldNamesTest, AreSpelledAsTheStatementSpellsThem)
{
    nimbara::testing::store_client(db, 1);
    auto guia = nimbara::testing::new_guia(db, 1, 2, 1, 7);
    guia->DoSave();
    guia->DoInsertValTemp();
    ASSERT_EQ(guia->LastError(), "");
    cls_Parametro parametro(db);
    parametro.DoSave();  // the defaults, as the settings row

    cls_Cliente cliente(db);
    cls_Contrato contrato(db);
    cls_Ref_Produto produto(db);
    cls_Impressao impressao(db);
    impressao.set_log_path(std::filesystem::temp_directory_path() / "nimbara-field-names.log");
    const std::string line_columns =
        "N_Req,N_Linha,A_Zona_Taxacao,B_Produto,C_Escalao,D_Quantidade,E_Velocidade,F_Formato,G_Pre_Tratamento,"
        "H_Descontos,I_Servicos_Especiais,KM_Vexora,K_Entrega_Sampling,L_TaxEsp_Semana,M_TaxEsp_Quantidade,"
        "N_Ambito_Distrib,LinhaContinuacao,O_Divisao_Remetente,CodigoCampanha,Q_Conteudo,P_RefCliente";
    struct Case {
        const char* what;
        std::function<void(Recordset&)> select;
        std::string names;
    };
    const Case cases[] = {
        {"Guia SelectLista", [&](Recordset& rs) { guia->SelectLista(rs); },
         "Cod_Cliente,Cod_Contrato,Nome,Guia,Data_Req,Observacoes,N_Req,nCompromisso"},
        {"Guia SelectAll", [&](Recordset& rs) { guia->SelectAll(rs); },
         "N_Req,N_Req2,Id_Req_Anual,Id_Cliente,Cod_Cliente,Cod_Contrato,CodigoTerceiro,N_Pag,D_Req,Pagamento,"
         "Credenciado,N_Credencial,Recolhido,Situacao,Ficheiro,Observacoes,nCompromisso"},
        {"line SelectAll", [&](Recordset& rs) { guia->mColLinha.Item(1).SelectAll(rs, 7); }, line_columns},
        {"service SelectAll", [&](Recordset& rs) { guia->mColLinha.Item(1).mColSEspecial.Item(1).SelectAll(rs, 7, 1); },
         "N_Req,N_Linha,CodigoServicoEspecial,Valor"},
        {"client SelectAll", [&](Recordset& rs) { cliente.SelectAll(rs); },
         "Id_Cliente,Cod_Cliente,Nome,iTipoCliente,Morada,Localidade,Cod_Postal,Desig_Postal,NContribuinte,"
         "Observacoes,IAcessoRede"},
        {"contract SelectAll", [&](Recordset& rs) { contrato.SelectAll(rs, "1"); },
         "Id_Cliente,Cod_Cliente,Cod_Contrato,Designacao,JPP_Credenciado,Cod_Credencial,Validacao,Descricao,bActivo,"
         "dDataActividade"},
        {"parameters SelectAll", [&](Recordset& rs) { parametro.SelectAll(rs); },
         "Cod2DFonteSize,Cod2DRatio,Cod2DNColunas,Cod2DNLinhas,Cod2DErroLevel,Cod2DPDFMode,Cod2DTruncated,"
         "Cod2DApplyTilde,GuiaNVias,GuiaMargensTopo,GuiaMargensEsquerda,CodTerceiro"},
        {"reference SelectAll", [&](Recordset& rs) { produto.SelectAll(rs); }, "Codigo,Designacao,Activo,Observacoes"},
        {"reference SelectAllActive", [&](Recordset& rs) { produto.SelectAllActive(rs); },
         "Codigo,Designacao,Activo,Observacoes"},
        {"Param_Parametros", [&](Recordset& rs) { impressao.Param_Parametros(rs); },
         "Cod2DFonteSize,Cod2DRatio,Cod2DNColunas,Cod2DNLinhas,Cod2DErroLevel,Cod2DPDFMode,Cod2DTruncated,"
         "Cod2DApplyTilde,GuiaNVias,GuiaMargensTopo,GuiaMargensEsquerda,CodTerceiro"},
        {"Param_Cabecalho", [&](Recordset& rs) { impressao.Param_Cabecalho(7, rs); },
         "N_Req,CodigoTerceiro,Cod_Cliente,Cod_Contrato,N_Credencial,Nome,NContribuinte,Morada,Cod_Postal,"
         "Desig_Postal,Observacoes,Credenciado,Pagamento,N_Credencial,NCompromisso,Id_Req_Anual,N_Req2,D_Req_Jul"},
        {"Param_Produto of the Guia", [&](Recordset& rs) { impressao.Param_Produto(7, rs, 1); },
         "N_Req,N_Linha,A_Zona_Taxacao,B_Produto,C_Escalao,D_Quantidade,E_Velocidade,F_Formato,G_Pre_Tratamento,"
         "H_Descontos,K_Entrega_Sampling,L_TaxEsp_Semana,M_TaxEsp_Quantidade,N_Ambito_Distrib,O_Divisao_Remetente,"
         "CodigoCampanha,Q_Conteudo,P_RefCliente,Desig_Zona_Taxacao,Desig_Produto,Desig_Velocidade,Desig_Formato,"
         "Desig_Descontos,Desig_Entrega_Sampling,Desig_Ambito_Distrib,Desig_Conteudo"},
        {"Param_Produto of the working table", [&](Recordset& rs) { impressao.Param_Produto(7, rs, 2); },
         "N_Req,A_Zona_Taxacao,B_Produto,E_Velocidade,D_Quantidade,N_Linha,O_Divisao_Remetente,Q_Conteudo,"
         "P_RefCliente,G_PreTratamento"},
        {"Param_ServicosEspeciais", [&](Recordset& rs) {
             std::string codes;
             impressao.Param_ServicosEspeciais(7, 1, codes, &rs, 1);
         },
         "CodigoServicoEspecial,Valor,N_Linha"},
    };
    for (const auto& c : cases) {
        Recordset rs;
        c.select(rs);
        EXPECT_GT(rs.RecordCount(), 0) << c.what;
        EXPECT_EQ(names(rs), c.names) << c.what;
    }
    EXPECT_TRUE(impressao.log_entries().empty()) << impressao.log_entries().front();
}
