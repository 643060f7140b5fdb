// Clients with their contracts: found, shown, created, changed and deleted with what goes with them.
#include <algorithm>
#include <cctype>

#include "client_json.hpp"
#include "db_command.hpp"
#include "handlers.hpp"
#include "handlers_input.hpp"
#include "nimbara/client_store.hpp"

namespace nimbara::serve {
namespace {

using nlohmann::ordered_json;
constexpr std::int64_t kMostNumber = 999'999'999;  // client and contract numbers are nine digits at most

std::string folded(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

std::int32_t client_code(const ApiRequest& request)
{
    return static_cast<std::int32_t>(path_whole(request, "code", 0, kMostNumber));
}

ClientFields stored_client(const ApiRequest& request, std::int32_t code)
{
    auto client = load_client(request.db, code);
    if (!client) throw InputError(404, "no client " + std::to_string(code), "code");
    return std::move(*client);
}

// A refusal of save_client (a contract given twice, a value the columns cannot take) is the input's.
std::int32_t save(const ApiRequest& request, const ClientFields& client)
{
    try {
        return save_client(request.db, client);
    } catch (const std::invalid_argument& e) {
        throw InputError(422, e.what(), place_in_message(std::string(": ") + e.what()));
    } catch (const DatabaseError& e) {
        throw InputError(422, e.what());
    }
}

ordered_json saved(std::int32_t id, const ClientFields& client)
{
    return {{"status", 0}, {"Id_Cliente", id}, {"Cod_Cliente", client.vCod_Cliente}};
}

// The client whose contract has number `code`; a number two clients share must be asked by client.
ClientFields owner_of_contract(const ApiRequest& request, std::int64_t code)
{
    Recordset rs = request.db->open("SELECT Tbl_Cliente.Cod_Cliente FROM Tbl_Contrato JOIN Tbl_Cliente ON "
                                    "Tbl_Cliente.Id_Cliente = Tbl_Contrato.Id_Cliente WHERE Tbl_Contrato.Cod_Contrato = ?",
                                    {code});
    if (rs.RecordCount() == 0) throw InputError(404, "no contract " + std::to_string(code), "id");
    if (rs.RecordCount() > 1)
        throw InputError(409, "contract " + std::to_string(code) + " belongs to more than one client", "id");
    return stored_client(request, static_cast<std::int32_t>(rs[std::size_t{0}].integer()));
}

}  // namespace

ApiResponse list_clients(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"search"});
        const std::string search = folded(query_text(request, "search").value_or(""));
        auto rows = ordered_json::array();
        for (auto& row : cli::client_rows(request.db)) {
            const auto text = [&](const char* key) { return row[key].is_string() ? row[key].get<std::string>() : row[key].dump(); };
            if (search.empty() || folded(text("Cod_Cliente")).find(search) != std::string::npos ||
                folded(text("Nome")).find(search) != std::string::npos)
                rows.push_back(std::move(row));
        }
        return json_response(200, {{"status", 0}, {"clients", rows}});
    });
}

ApiResponse get_client(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        return json_response(200, cli::client_json(stored_client(request, client_code(request))));
    });
}

ApiResponse create_client(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const auto body = json_body(request);
        const std::string cod = cli::client_number(body, "body");
        if (load_client(request.db, std::stoi(cod)))
            throw InputError(409, "client " + cod + " exists already; change it with PUT /clients/" + cod, "/vCod_Cliente");
        ClientFields client;
        cli::read_client_json(body, "body", client);
        return json_response(201, saved(save(request, client), client));
    });
}

ApiResponse update_client(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const std::int32_t code = client_code(request);
        auto body = json_body(request);
        if (!body.contains("vCod_Cliente")) body["vCod_Cliente"] = std::to_string(code);
        if (cli::client_number(body, "body") != std::to_string(code))
            throw InputError(422, "body: /vCod_Cliente: a client's number is not changed; it must be " + std::to_string(code),
                             "/vCod_Cliente");
        // What the body leaves out keeps its stored value.
        ClientFields client = stored_client(request, code);
        cli::read_client_json(body, "body", client);
        return json_response(200, saved(save(request, client), client));
    });
}

ApiResponse delete_client(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"dry_run"});
        const bool dry = dry_run(request);
        const auto deleted = cli::delete_client(request.db, client_code(request), !dry);
        auto response = json_response(200, {{"status", 0}, {"dry_run", dry}, {"deleted", deleted}});
        if (!dry)
            response.audit = AuditEntry{"delete client", "client " + deleted["cod_cliente"].get<std::string>() + " \"" +
                                                             deleted["nome"].get<std::string>() + "\" with " +
                                                             deleted["guias"].dump() + " Guias"};
        return response;
    });
}

ApiResponse list_contracts(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        auto rows = ordered_json::array();
        for (const auto& k : stored_client(request, client_code(request)).contratos) rows.push_back(cli::contract_json(k));
        return json_response(200, rows);
    });
}

ApiResponse create_contract(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        ClientFields client = stored_client(request, client_code(request));
        const ContractFields contract = cli::read_contract_json(json_body(request), "body", "");
        for (const auto& k : client.contratos)
            if (std::stol(k.vCodContrato) == std::stol(contract.vCodContrato))
                throw InputError(409, "client " + client.vCod_Cliente + " has contract " + k.vCodContrato + " already",
                                 "/vCodContrato");
        client.contratos = {contract};
        save(request, client);
        return json_response(201, cli::contract_json(contract));
    });
}

ApiResponse update_contract(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const std::int64_t code = path_whole(request, "id", 0, kMostNumber);
        auto body = json_body(request);
        if (!body.contains("vCodContrato")) body["vCodContrato"] = std::to_string(code);
        ClientFields client = owner_of_contract(request, code);
        const auto stored = std::find_if(client.contratos.begin(), client.contratos.end(),
                                         [&](const ContractFields& k) { return std::stoll(k.vCodContrato) == code; });
        // What the body leaves out keeps its stored value.
        ordered_json merged = cli::contract_json(*stored);
        merged.update(body);
        const ContractFields contract = cli::read_contract_json(merged, "body", "");
        if (std::stoll(contract.vCodContrato) != code)
            throw InputError(422, "body: /vCodContrato: a contract's number is not changed; it must be " +
                                      std::to_string(code),
                             "/vCodContrato");
        client.contratos = {contract};
        save(request, client);
        return json_response(200, cli::contract_json(contract));
    });
}

// The contract with its Guias, their lines and services, in one transaction; counted first.
ApiResponse delete_contract(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"dry_run"});
        const bool dry = dry_run(request);
        const std::int64_t code = path_whole(request, "id", 0, kMostNumber);
        Database& db = *request.db;
        Transaction t(db);
        const ClientFields client = owner_of_contract(request, code);
        const std::int64_t id =
            db.open("SELECT Id_Cliente FROM Tbl_Cliente WHERE Cod_Cliente = ?", {std::int64_t{std::stoll(client.vCod_Cliente)}})
                [std::size_t{0}]
                    .integer();
        const std::vector<FieldValue> key = {id, code};
        constexpr const char* kOfContract =
            " WHERE N_Req IN (SELECT N_Req FROM Tbl_Cab WHERE Id_Cliente = ? AND Cod_Contrato = ?)";
        const auto count = [&](const std::string& sql) { return db.open(sql, key)[std::size_t{0}].integer(); };
        std::vector<std::int64_t> guias;
        for (Recordset rs = db.open("SELECT N_Req FROM Tbl_Cab WHERE Id_Cliente = ? AND Cod_Contrato = ? ORDER BY N_Req", key);
             !rs.IsEOF(); rs.MoveNext())
            guias.push_back(rs[std::size_t{0}].integer());
        const ordered_json deleted = {{"cod_contrato", std::to_string(code)},
                                      {"cod_cliente", client.vCod_Cliente},
                                      {"guias", guias.size()},
                                      {"n_req", guias},
                                      {"lines", count(std::string("SELECT COUNT(*) FROM Tbl_Linha") + kOfContract)},
                                      {"services", count(std::string("SELECT COUNT(*) FROM Tbl_Linha_ServicoEspecial") +
                                                         kOfContract)}};
        if (!dry) {
            db.execute(std::string("DELETE FROM Tbl_Linha_ServicoEspecial") + kOfContract, key);
            db.execute(std::string("DELETE FROM Tbl_Linha") + kOfContract, key);
            db.execute("DELETE FROM Tbl_Cab WHERE Id_Cliente = ? AND Cod_Contrato = ?", key);
            db.execute("DELETE FROM Tbl_Contrato WHERE Id_Cliente = ? AND Cod_Contrato = ?", key);
            t.commit();
        }
        auto response = json_response(200, {{"status", 0}, {"dry_run", dry}, {"deleted", deleted}});
        if (!dry)
            response.audit = AuditEntry{"delete contract", "contract " + std::to_string(code) + " of client " +
                                                               client.vCod_Cliente + " with " +
                                                               std::to_string(guias.size()) + " Guias"};
        return response;
    });
}

}  // namespace nimbara::serve
