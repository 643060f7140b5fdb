#pragma once
// A client with its contracts as a host hands it over and gets it back: created or updated by its
// client number in one transaction, for every front end that has no entity objects of its own (the C
// interface among them).
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "nimbara/Database.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

struct ContractFields {
    std::string vCodContrato;
    std::string vDesignacao;
    bool vJppCredenciado = false;
    std::string vCodCredencial = "0";
    std::string vValidacao;
    std::string vDescricao;
    bool bActivo = true;
    friend bool operator==(const ContractFields&, const ContractFields&) = default;
};

struct ClientFields {
    std::string vCod_Cliente;
    std::string vNome;
    std::int16_t iTipoCliente = 0;
    std::string vMorada;
    std::string vLocalidade;
    std::string vCodPostal;
    std::string vDesigPostal;
    std::string vNIF = "0";
    std::string vObservacoes;
    std::int16_t iAcessoRede = 0;
    std::vector<ContractFields> contratos;
    friend bool operator==(const ClientFields&, const ClientFields&) = default;
};

// Creates the client of that number, or updates the one stored: a contract it has already is
// updated in place, others are added. All of it or nothing is stored. A client or contract number
// that is no whole number, or a contract given twice, is refused with std::invalid_argument naming
// it (/contratos/1/vCodContrato); a refusal of the store (a value the columns cannot take among them)
// is a DatabaseError. Answers the client's Id_Cliente.
NIMBARA_API std::int32_t save_client(const std::shared_ptr<Database>& db, const ClientFields& client);

// The stored client of that number with its contracts; nothing when there is none.
NIMBARA_API std::optional<ClientFields> load_client(const std::shared_ptr<Database>& db, std::int32_t cod_cliente);

}  // namespace nimbara
