#pragma once
// What a handler of the web API sees and answers: the server turns HTTP requests into these and
// these back into responses, so that handlers know nothing of the HTTP library.
#include <nlohmann/json.hpp>

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "nimbara/Database.hpp"

namespace nimbara::serve {

enum class Role { clerk, admin };

// Who calls: with no users (bound to 127.0.0.1) every caller is an unnamed admin.
struct Caller {
    std::string user;
    Role role = Role::admin;
};

struct ApiRequest {
    std::string method;                           // GET, POST, PUT, DELETE
    std::string path;                             // below /api/v1, e.g. "/guias/12"
    std::map<std::string, std::string> params;    // the route's {names}, e.g. {"id", "12"}
    std::multimap<std::string, std::string> query;
    std::string body;                             // JSON text, or an upload's bytes
    std::string content_type;
    Caller caller;
    std::shared_ptr<Database> db;                 // the serving thread's own connection
};

// A write that the audit table keeps (deletes, imports, settings changes).
struct AuditEntry {
    std::string action;  // "delete guia", "import", "settings", ...
    std::string what;    // what it touched, in words: "Guia 2026/17 of client 1234"
};

struct ApiResponse {
    int status = 200;
    std::string content_type = "application/json";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers;  // e.g. Content-Disposition
    std::optional<AuditEntry> audit;  // written by the server, with the caller and the time, when status < 400
};

// An error answer: {"status": S, "error": message, "field": field}, "field" only when one is named.
inline ApiResponse api_error(int status, const std::string& message, const std::string& field = {}) {
    nlohmann::json body{{"status", status}, {"error", message}};
    if (!field.empty()) body["field"] = field;
    return {status, "application/json", body.dump(), {}, std::nullopt};
}

using Handler = ApiResponse (*)(const ApiRequest&);

struct Route {
    const char* method;
    const char* pattern;  // "/guias/{id}"
    Role least;           // the least role allowed
    bool writes;          // a write: needs the CSRF token
    Handler handler;
};

// The domain endpoints (routes.cpp); the server adds its own (session, login, users, audit).
std::span<const Route> api_routes();

}  // namespace nimbara::serve
