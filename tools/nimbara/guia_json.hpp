#pragma once
// What `db save`, `db delete` and `db check` answer about a stored Guia, as JSON; the web API
// answers the same documents.
#include <nlohmann/json.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "nimbara/Database.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/guia_store.hpp"
#include "nimbara/stored_guia_check.hpp"

namespace nimbara::cli {

// What would keep stored Guia `n_req` from printing by the database edition; empty when it prints.
std::vector<PrintProblem> stored_print_problems(const std::shared_ptr<Database>& db, std::int32_t n_req);

// [{"place", "what"}...]
nlohmann::ordered_json print_problems_json(const std::vector<PrintProblem>& problems);

// {"input", "status": 0, "N_Req", "N_Req2", "Id_Req_Anual", "not_printable"}
nlohmann::ordered_json saved_guia_json(const std::string& input, const SavedGuia& saved,
                                       const std::vector<PrintProblem>& problems);

// Deletes Guia `n_req` with its lines and services, or, without `commit`, only counts what would go:
// {"n_req", "cod_cliente", "nome", "lines", "services"}. Throws NotFoundError when there is none.
nlohmann::ordered_json delete_guia(const std::shared_ptr<Database>& db, std::int32_t n_req, bool commit);

// {"N_Req", "status", "lines": [{"N_Linha", "passed", "number", "description"}...], "guia": {...}};
// status 0 when everything passed, else 1.
nlohmann::ordered_json stored_verdict_json(std::int32_t n_req, const StoredGuiaVerdict& verdict);

}  // namespace nimbara::cli
