#pragma once
// A client with its contracts as JSON: the client file `db client save` reads and `db client show`
// writes, which the web API takes and answers too; and the cascade of a client's deletion.
#include <nlohmann/json.hpp>

#include <cstdint>
#include <memory>
#include <string>

#include "nimbara/Database.hpp"
#include "nimbara/client_store.hpp"

namespace nimbara::cli {

nlohmann::ordered_json contract_json(const ContractFields& contract);
nlohmann::ordered_json client_json(const ClientFields& client);

// Every client as `db client list --json` lists them: [{"Id_Cliente", "Cod_Cliente", "Nome", ...}...].
nlohmann::ordered_json client_rows(const std::shared_ptr<Database>& db);

// The client number of a client file's object, checked to be a whole number; `source` names the
// input in messages. Throws FieldError.
std::string client_number(const nlohmann::ordered_json& root, const std::string& source);

// Reads a client file's object onto `into`: a key left out keeps `into`'s value; the contracts
// become those given. An unknown key, a value of the wrong type or a number out of range is refused
// with FieldError naming its place.
void read_client_json(const nlohmann::ordered_json& root, const std::string& source, ClientFields& into);

// One contract object (`place` is its JSON pointer, "" for a whole document); vCodContrato is required.
ContractFields read_contract_json(const nlohmann::ordered_json& object, const std::string& source,
                                  const std::string& place);

// Deletes client `cod` with its contracts and Guias, or, without `commit`, only counts what would go;
// answers {"cod_cliente", "nome", "contracts", "guias", "n_req", "lines", "services"}. Throws
// NotFoundError when there is no such client, CommandError when the store refuses.
nlohmann::ordered_json delete_client(const std::shared_ptr<Database>& db, std::int32_t cod, bool commit);

}  // namespace nimbara::cli
