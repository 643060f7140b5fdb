#pragma once
// A Guia on the database: its header (a row of Tbl_Cab), its lines (rows of Tbl_Linha) and each
// line's special services (rows of Tbl_Linha_ServicoEspecial).
//
// A save of a header with its lines and services, and a deletion of a Guia, are each one
// transaction: a failure leaves the database as it was. The operations that answer 0 still do,
// and LastError() tells what failed (empty after a success). An object without a connection (the
// ini file named none, or its store could not be opened) is the exception: its writes (DoSave,
// DoSaveNumerada, DoSaveCol, DoDelete, DoInsertValTemp, DoRemoveValTemp) raise ConnectionError
// (nimbara/Database.hpp), as a missing connection always reached the host. Values are bound, so an
// apostrophe is data and a date is a date.
#include <cstdint>
#include <memory>
#include <string>

#include "nimbara/Collection.hpp"
#include "nimbara/Database.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

class NIMBARA_API cls_Guia_SEspecial {
public:
    cls_Guia_SEspecial();
    explicit cls_Guia_SEspecial(std::shared_ptr<Database> db);

    std::int32_t vNReq = 0;
    std::int16_t vNLinha = 0;
    std::string vCodigoServicoEspecial = "0";
    std::string vValor = "0";
    bool vToDelete = false;
    bool vIsNew = true;

    std::shared_ptr<Database> myConn;

    std::int16_t DoSave();
    // Removes this service of the line, and no other.
    void DoDelete();
    void SelectAll(Recordset& rs, std::int32_t NReq, std::int16_t NLinha);

    const std::string& LastError() const { return last_error_; }

private:
    friend class cls_Guia_Linha;
    friend class cls_Guia_Cabecalho;
    void save();
    void remove();
    std::string last_error_;
};

class NIMBARA_API cls_Guia_Linha {
public:
    cls_Guia_Linha();
    explicit cls_Guia_Linha(std::shared_ptr<Database> db);

    std::int32_t vNReq = 0;
    std::int16_t vNLinha = 0;
    std::string vA_Zona_Taxacao = "0";
    std::string vB_Produto = "0";
    std::int32_t vC_Escalao = 0;
    std::int32_t vD_Quantidade = 0;
    std::string vE_Velocidade = "0";
    std::string vF_Formato = "0";
    std::int16_t vG_Pre_Tratamento = 0;
    std::string vH_Descontos = "0";
    std::string vK_Entrega_Sampling = "0";
    std::int16_t vL_TaxEsp_Semana = 0;
    std::int16_t vM_TaxaEsp_Quantidade = 0;
    std::string vN_Ambito_Distrib = "0";
    std::string vO_Divisao_Remetente = "0";
    std::string vCodigo_Campanha;
    std::string vConteudo;  // the content code at its head, a description may follow
    std::string vRefCli;
    bool vToDelete = false;
    bool vIsNew = true;
    Collection<cls_Guia_SEspecial> mColSEspecial;

    std::shared_ptr<Database> myConn;

    // Inserts (replacing a stored row of the same number, whose services stay) or updates by
    // vIsNew, then the services by their flags; one transaction.
    std::int16_t DoSave();
    // The line's row only; its services stay (the header's walk deletes them first).
    void DoDelete();
    void SelectAll(Recordset& rs, std::int32_t NReq);
    // Kept as the old component had it: it reads the wrong table with a malformed condition, so it
    // always throws DatabaseError. Loading goes through the header's FillColLinha.
    void SelectMe(Recordset& rs, std::int32_t NReq, std::int16_t NLinha);
    // Makes this line a copy of another, services included, except those both new and withdrawn.
    void CopyObject(const cls_Guia_Linha& ObjLinha);
    void AddSEspecial(const std::string& Cod_Servico_Especial, float Valor, bool IsNew = true, bool ToDelete = false);
    void RemoveSEspecial(std::int16_t ColIndex);
    // Adds the stored services of this line (the collection is not emptied first).
    void FillColSEspecial();

    // The content code as stored: the number of the first two characters of vConteudo, as text.
    std::string ContentCode() const;

    const std::string& LastError() const { return last_error_; }

private:
    friend class cls_Guia_Cabecalho;
    // `fresh_number`: no stored row can have this line's number, so the insert replaces nothing.
    void save(bool fresh_number = false);
    void remove();
    std::string last_error_;
};

class NIMBARA_API cls_Guia_Cabecalho {
public:
    cls_Guia_Cabecalho();
    explicit cls_Guia_Cabecalho(std::shared_ptr<Database> db);

    std::int32_t vNReq = 0;
    std::int32_t vNReq2 = 0;
    std::int32_t vNIDReqAnual = 0;
    std::int32_t iId_Cliente = 0;
    std::string vCodCliente = "0";
    std::string vCodContrato = "0";
    std::string vCodTerceiro = "0";
    Timestamp vDReq;  // the current date and time
    std::int16_t vPagamento = 0;
    bool vCredenciado = false;
    std::string vNCredencial = "0";
    bool vRecolhido = false;
    std::string vSituacao;
    std::string vFicheiro;
    std::string vObservacoes;
    std::string vNCompromisso;
    bool vIsNew = true;
    Collection<cls_Guia_Linha> mColLinha;

    std::shared_ptr<Database> myConn;

    // Inserts or updates the header by vIsNew, then the lines by their flags, in one transaction.
    // Does not clear vIsNew. Always 0.
    std::int16_t DoSave();

    // Saves this header, as a new Guia, with fresh numbers: inside its own transaction, under the
    // store's numbering lock, it takes vNReq (the highest N_Req plus one), vNReq2 (per client, by
    // iId_Cliente) and vNIDReqAnual (per client and calendar year of vDReq), and stores the header
    // (vCodTerceiro included) with its lines and services. Stations saving at once never share a number and never lose a
    // Guia. True on success; on failure nothing is stored, the numbers are as before, and
    // LastError() says why. The SelectMax family stays for hosts that number by themselves.
    bool DoSaveNumerada();

    // The Guia with its lines and their services, in one transaction.
    void DoDelete();

    std::int32_t SelectMax();
    std::int32_t SelectMax_PorCliente(const std::string& clienteNr);
    // Within the year of the host's clock.
    std::int32_t SelectMax_NReqAnual_PorCliente(const std::string& clienteNr);
    void SelectAll(Recordset& rs);
    void SelectLista(Recordset& rs);
    // Loads the header and adds its lines; an unknown number throws DatabaseError and changes nothing.
    void SelectMe(std::int32_t NReq);

    cls_Guia_Linha& AddLinha(std::int16_t N_Linha, const std::string& A_Zona_Taxacao, const std::string& B_Produto,
                             std::int32_t C_Escalao, std::int32_t D_Quantidade, const std::string& E_Velocidade,
                             const std::string& F_Formato, const std::string& G_Pre_Tratamento,
                             const std::string& H_Descontos, const std::string& K_Entrega_Sampling,
                             std::int16_t L_TaxEsp_Semana, std::int16_t M_TaxEsp_Quantidade,
                             const std::string& N_Ambito_Distrib, std::string& O_Divisao_Remetente,
                             const std::string& Codigo_Campanha, const std::string& conteudo,
                             const std::string& reclie, bool IsNew = true);
    void RemoveLinha(std::int16_t ColIndex);
    // Adds the stored lines (the collection is not emptied first: twice doubles them).
    void FillColLinha();
    void DoSaveCol();
    // Copies the lines to Tbl_Temp_Val_Guia for the database validator, in one transaction. The
    // table is the connection's own (a temporary one), so other stations never see these rows.
    void DoInsertValTemp();
    // Empties the connection's Tbl_Temp_Val_Guia, for every Guia it holds.
    void DoRemoveValTemp();

    const std::string& LastError() const { return last_error_; }

private:
    void insert(bool with_third_party = false);
    void update();
    // `fresh_number`: the Guia's number was just taken, so no stored line can be in the way.
    void save_lines(bool fresh_number = false);
    std::int32_t max_of(const std::string& sql, std::initializer_list<FieldValue> values);
    std::string last_error_;
};

}  // namespace nimbara
