#pragma once
// A client (a row of Tbl_Cliente) with its contracts (rows of Tbl_Contrato).
//
// Writes run in transactions and bind their values. The operations that answer 0 still do and
// keep going as before; LastError() tells what the last write failed on (empty when it succeeded).
// A client or contract without a connection (the ini file named none, or its store could not be
// opened) raises ConnectionError (nimbara/Database.hpp) from its writes instead, as a missing
// connection always reached the host.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "nimbara/Collection.hpp"
#include "nimbara/Database.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

class NIMBARA_API cls_Contrato {
public:
    // With the connection of the ini file, or with the host's own.
    cls_Contrato();
    explicit cls_Contrato(std::shared_ptr<Database> db);

    std::int32_t iId_Cliente = 0;
    std::string vCodCliente = "0";
    std::string vCodContrato = "0";
    std::string vDesignacao;
    bool vJppCredenciado = false;
    std::string vCodCredencial = "0";
    std::string vValidacao;
    std::string vDescricao;
    bool bActivo = true;
    Timestamp dDataActividade;  // today, without a time part
    bool vIsNew = true;
    bool vToDelete = false;

    std::shared_ptr<Database> myConn;

    // The factory barcode settings of TAB_CONFIG, by column position; without the row, `Msg`
    // receives the old message and the outputs stay as they are.
    void Config_Defaults(std::int16_t& Config_col, std::int16_t& Config_lin, std::int16_t& Config_error,
                         std::string& Config_PDF, std::int16_t& Config_ratio, std::int16_t& Config_font,
                         std::string& Config_trunc, std::string& Config_tilde, std::string* Msg = nullptr);

    // Inserts (always active, dated today, whatever bActivo and dDataActividade say) or updates by vIsNew.
    std::int16_t DoSave();
    void DoDelete();
    // The contracts of a client; the argument is the client's internal id.
    void SelectAll(Recordset& rs, const std::string& CodCLiente);
    // The active contracts of this object's own client; the argument is not used.
    void SelectContratoActivo(Recordset& rs, const std::string& CodCLiente);

    const std::string& LastError() const { return last_error_; }

private:
    friend class cls_Cliente;
    void insert();
    void update();
    void remove();
    std::string last_error_;
};

class NIMBARA_API cls_Cliente {
public:
    cls_Cliente();
    explicit cls_Cliente(std::shared_ptr<Database> db);

    std::int32_t iId_Cliente = 0;
    std::string vCod_Cliente = "0";
    std::string vNome;
    std::int16_t iTipoCliente = 0;
    std::string vMorada;
    std::string vLocalidade;
    std::string vCodPostal;
    std::string vDesigPostal;
    std::string vNIF = "0";
    std::string vObservacoes;
    std::int16_t iAcessoRede = 0;
    bool vIsNew = true;
    Collection<cls_Contrato> mColContrato;
    Recordset rsbuscacliente;

    std::shared_ptr<Database> myConn;

    // The client and its contracts (deleted, inserted or updated by their flags), in one transaction.
    std::int16_t DoSave();
    // DoSave, and for a new client the next Id_Cliente (the highest plus one) taken inside the same
    // transaction under the store's numbering lock, given to its contracts too. True on success; on
    // failure nothing is stored, iId_Cliente is as before and LastError() says why.
    bool DoSaveNumerado();
    // The old simple deletion, which names a column the table lacks: it fails, and now leaves the
    // contracts too. DeleteRegs is the deletion that works.
    void DoDelete();
    // The old filter, kept: the internal id is compared with the column of the old client number.
    void Delete_ContratosGuias(const std::string& Cod_Contrato, const std::string& id_Cliente);
    // The client with its Guias (their lines and services) and contracts, in one transaction.
    void DeleteRegs(const std::string& id_Cliente);

    // Every client; leaves `rs` alone when no connection string was read (gConnString empty) and no
    // connection was handed in.
    void SelectAll(Recordset& rs);
    // Loads by internal id or client number; an unknown one leaves the values but flags the object
    // stored. Either way the contracts are added to mColContrato (which is not emptied first).
    void SelectMe(std::int32_t id_Cliente);
    void SelectMeByCod_Cliente(std::int32_t Cod_Cliente);
    // Whether a client number exists; a number that is no number throws std::invalid_argument.
    bool Busca_Cliente(std::string& num);

    void AddContrato(std::int32_t id_Cliente, const std::string& Cod_Contrato, const std::string& Designacao, bool JPP,
                     const std::string& Cod_Credencial, const std::string& validacao, const std::string& descricao,
                     bool bActivo, Timestamp dDataActividade, bool IsNew = true);
    // Replaces item `indx_Lst` by an edited contract, stored (not new), at the end of the list.
    void UpdateListContrato(std::int32_t indx_Lst, const std::string& Cod_Contrato, const std::string& Designacao,
                            bool JPP, const std::string& Cod_Credencial, const std::string& validacao,
                            const std::string& descricao, bool bActivo, Timestamp dDataActividade,
                            bool IsNew = true);
    void RemoveContrato(std::int16_t ColIndex);
    void FillColContrato();
    // The lowest active contract number; a client without one throws, as the null could not be text.
    std::string SelectContrato_Criteria(Recordset& rs, std::int32_t id_Cliente);
    // The highest Id_Cliente, 0 when there is none; the host adds one for a new client.
    std::int32_t SelectMax();

    const std::string& LastError() const { return last_error_; }

private:
    void load(const char* column, std::int32_t value);
    void save();
    std::string last_error_;
};

}  // namespace nimbara
