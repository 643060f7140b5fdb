#include "nimbara/cls_Ref.hpp"

#include "entities/connection.hpp"
#include "entities/schema_tables.hpp"

namespace nimbara {

RefList::RefList(std::string_view table, bool has_activo, std::shared_ptr<Database> db)
    : myConn(std::move(db)), table_(table), has_activo_(has_activo)
{
}

void RefList::SelectMe(const std::string& Codigo)
{
    Recordset rs = entities::require(myConn).open("SELECT * FROM " + std::string(table_) + " WHERE Codigo = ?", {Codigo});
    // Read everything before assigning, so that a missing row leaves the object as it was.
    std::string codigo = rs["Codigo"].text();
    std::string designacao = rs["Designacao"].text();
    bool activo = vActivo;
    std::string observacoes = vObservacoes;
    if (has_activo_) {
        activo = rs["Activo"].yes_no();
        observacoes = rs["Observacoes"].text();
    }
    vCodigo = std::move(codigo);
    vDesignacao = std::move(designacao);
    vActivo = activo;
    vObservacoes = std::move(observacoes);
}

void RefList::SelectAll(Recordset& rstab)
{
    rstab = entities::require(myConn).open("SELECT " + entities::spelled_columns(table_) + " FROM " + std::string(table_) +
                                           " ORDER BY Codigo");
}

void RefList::SelectAllActive(Recordset& rstab)
{
    if (!has_activo_) return SelectAll(rstab);
    rstab = entities::require(myConn).open("SELECT " + entities::spelled_columns(table_) + " FROM " + std::string(table_) +
                                               " WHERE Activo = ? ORDER BY Codigo",
                                           {true});
}

Recordset cls_Ref_ZTaxacao::SelectAllActive2(std::string& /*Produto*/)
{
    // The product is taken and not used: the zones of a product come from the rule documents.
    Recordset rs;
    SelectAllActive(rs);
    return rs;
}

cls_Ref_ADistribuicao::cls_Ref_ADistribuicao() : RefList("tbl_N_AmbitoDistribuicao", true, entities::connection_from_ini()) {}
cls_Ref_ADistribuicao::cls_Ref_ADistribuicao(std::shared_ptr<Database> db) : RefList("tbl_N_AmbitoDistribuicao", true, std::move(db)) {}

cls_Ref_Conteudos::cls_Ref_Conteudos() : RefList("Tbl_Q_Conteudo", true, entities::connection_from_ini()) {}
cls_Ref_Conteudos::cls_Ref_Conteudos(std::shared_ptr<Database> db) : RefList("Tbl_Q_Conteudo", true, std::move(db)) {}

cls_Ref_Descontos::cls_Ref_Descontos() : RefList("tbl_H_Descontos", true, entities::connection_from_ini()) {}
cls_Ref_Descontos::cls_Ref_Descontos(std::shared_ptr<Database> db) : RefList("tbl_H_Descontos", true, std::move(db)) {}

cls_Ref_ESampling::cls_Ref_ESampling() : RefList("tbl_K_EntregaSampling", true, entities::connection_from_ini()) {}
cls_Ref_ESampling::cls_Ref_ESampling(std::shared_ptr<Database> db) : RefList("tbl_K_EntregaSampling", true, std::move(db)) {}

cls_Ref_Formato::cls_Ref_Formato() : RefList("tbl_F_Formato", true, entities::connection_from_ini()) {}
cls_Ref_Formato::cls_Ref_Formato(std::shared_ptr<Database> db) : RefList("tbl_F_Formato", true, std::move(db)) {}

cls_Ref_PreTratamento::cls_Ref_PreTratamento() : RefList("Tbl_PreTratamento", true, entities::connection_from_ini()) {}
cls_Ref_PreTratamento::cls_Ref_PreTratamento(std::shared_ptr<Database> db) : RefList("Tbl_PreTratamento", true, std::move(db)) {}

cls_Ref_Produto::cls_Ref_Produto() : RefList("tbl_B_Produto", true, entities::connection_from_ini()) {}
cls_Ref_Produto::cls_Ref_Produto(std::shared_ptr<Database> db) : RefList("tbl_B_Produto", true, std::move(db)) {}

cls_Ref_RefCliente::cls_Ref_RefCliente() : RefList("Tbl_P_RefCliente", false, entities::connection_from_ini()) {}
cls_Ref_RefCliente::cls_Ref_RefCliente(std::shared_ptr<Database> db) : RefList("Tbl_P_RefCliente", false, std::move(db)) {}

cls_Ref_SEspeciais::cls_Ref_SEspeciais() : RefList("tbl_I_ServicosEspeciais", true, entities::connection_from_ini()) {}
cls_Ref_SEspeciais::cls_Ref_SEspeciais(std::shared_ptr<Database> db) : RefList("tbl_I_ServicosEspeciais", true, std::move(db)) {}

cls_Ref_Velocidade::cls_Ref_Velocidade() : RefList("tbl_E_Velocidade", true, entities::connection_from_ini()) {}
cls_Ref_Velocidade::cls_Ref_Velocidade(std::shared_ptr<Database> db) : RefList("tbl_E_Velocidade", true, std::move(db)) {}

cls_Ref_ZTaxacao::cls_Ref_ZTaxacao() : RefList("tbl_A_ZonaTaxacao", true, entities::connection_from_ini()) {}
cls_Ref_ZTaxacao::cls_Ref_ZTaxacao(std::shared_ptr<Database> db) : RefList("tbl_A_ZonaTaxacao", true, std::move(db)) {}

}  // namespace nimbara
