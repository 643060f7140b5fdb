// The server's own endpoints: the session and its CSRF token, login and logout, users, the audit
// and the API's description.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <variant>

#include "audit.hpp"
#include "server_state.hpp"
#include "users.hpp"

namespace nimbara::serve {
namespace {

using nlohmann::json;

ApiResponse json_answer(int status, const json& body) { return {status, "application/json", body.dump(), {}, std::nullopt}; }

// The body as an object of exactly these string fields; an error answer naming the field otherwise.
std::variant<std::map<std::string, std::string>, ApiResponse> string_fields(const std::string& body,
                                                                             std::initializer_list<const char*> names)
{
    const json parsed = json::parse(body, nullptr, false);
    if (parsed.is_discarded() || !parsed.is_object()) return api_error(400, "the body is not a JSON object");
    std::map<std::string, std::string> out;
    for (const auto& [key, value] : parsed.items()) {
        if (std::find_if(names.begin(), names.end(), [&](const char* n) { return key == n; }) == names.end())
            return api_error(400, "unknown field \"" + key + "\"", key);
        if (!value.is_string()) return api_error(400, "\"" + key + "\" is not a text", key);
        out[key] = value.get<std::string>();
    }
    for (const char* name : names)
        if (!out.contains(name)) return api_error(400, std::string("\"") + name + "\" is missing", name);
    return out;
}

ApiResponse get_session(Server::State& state, ApiCall& call)
{
    const bool required = state.login_required;
    Session session;
    const bool named = call.session && call.session->caller && !call.session->caller->user.empty();
    if (call.session && (named || !required)) {
        session = *call.session;
    } else {
        session = state.sessions.open(required ? std::nullopt : std::optional<Caller>(Caller{}));
        call.set_headers.emplace_back("Set-Cookie", session_cookie(session.id, state.tls));
    }
    const std::optional<Caller> caller = session.caller && (named || !required) ? session.caller : std::nullopt;
    return json_answer(200, {{"user", caller ? caller->user : ""},
                             {"role", caller ? std::string(role_name(caller->role)) : ""},
                             {"login_required", required},
                             {"csrf_token", session.csrf_token}});
}

ApiResponse post_login(Server::State& state, ApiCall& call)
{
    auto fields = string_fields(call.request.body, {"name", "password"});
    if (auto* refused = std::get_if<ApiResponse>(&fields)) return *refused;
    const auto& f = std::get<0>(fields);
    const std::string& name = f.at("name");
    const std::string& address = call.http.remote_address;
    if (const auto wait = state.logins.wait(name, address)) {
        ApiResponse refused = api_error(429, "too many failed logins; try again in " + std::to_string(wait->count()) + " s");
        refused.headers.emplace_back("Retry-After", std::to_string(wait->count()));
        return refused;
    }
    const auto user = check_password(*call.request.db, name, f.at("password"));
    if (!user) {
        state.logins.failed(name, address);
        return api_error(401, "wrong name or password");
    }
    state.logins.succeeded(name);
    // A new id at login, so that an id planted before it is worth nothing after.
    if (call.session) state.sessions.close(call.session->id);
    const Session session = state.sessions.open(Caller{user->name, user->role});
    call.set_headers.emplace_back("Set-Cookie", session_cookie(session.id, state.tls));
    return json_answer(200, {{"user", user->name},
                             {"role", role_name(user->role)},
                             {"login_required", bool(state.login_required)},
                             {"csrf_token", session.csrf_token}});
}

ApiResponse post_logout(Server::State& state, ApiCall& call)
{
    if (call.session) state.sessions.close(call.session->id);
    call.set_headers.emplace_back("Set-Cookie", expired_session_cookie(state.tls));
    return json_answer(200, json::object());
}

ApiResponse get_users(Server::State&, ApiCall& call)
{
    json out = json::array();
    for (const auto& user : list_users(*call.request.db)) out.push_back({{"name", user.name}, {"role", role_name(user.role)}});
    return json_answer(200, out);
}

ApiResponse post_users(Server::State& state, ApiCall& call)
{
    auto fields = string_fields(call.request.body, {"name", "password", "role"});
    if (auto* refused = std::get_if<ApiResponse>(&fields)) return *refused;
    const auto& f = std::get<0>(fields);
    const auto role = role_of(f.at("role"));
    if (!role) return api_error(422, "the role is clerk or admin", "role");
    try {
        add_user(*call.request.db, f.at("name"), f.at("password"), *role);
    } catch (const UserError& e) {
        const std::string what = e.what();
        if (what.find("exists already") != std::string::npos) return api_error(409, what, "name");
        return api_error(422, what, what.starts_with("the password") ? "password" : "name");
    }
    state.login_required = true;
    ApiResponse answer = json_answer(201, {{"name", f.at("name")}, {"role", f.at("role")}});
    answer.audit = AuditEntry{"add user", "user " + f.at("name") + " (" + f.at("role") + ")"};
    return answer;
}

ApiResponse delete_user(Server::State& state, ApiCall& call)
{
    const std::string& name = call.request.params.at("name");
    if (name == call.request.caller.user) return api_error(409, "you cannot remove yourself", "name");
    if (!remove_user(*call.request.db, name)) return api_error(404, "no user \"" + name + "\"", "name");
    state.sessions.close_user(name);
    state.login_required = users_exist(*call.request.db);
    ApiResponse answer = json_answer(200, {{"removed", name}});
    answer.audit = AuditEntry{"remove user", "user " + name};
    return answer;
}

ApiResponse get_audit(Server::State&, ApiCall& call)
{
    int limit = 100;
    if (const auto it = call.request.query.find("limit"); it != call.request.query.end()) {
        const std::string& text = it->second;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), limit);
        if (text.empty() || error != std::errc() || end != text.data() + text.size() || limit < 1 || limit > 10000)
            return api_error(400, "limit is a number from 1 to 10000", "limit");
    }
    json out = json::array();
    for (const auto& row : read_audit(*call.request.db, limit))
        out.push_back({{"at", row.at}, {"user", row.user}, {"action", row.action}, {"what", row.what}});
    return json_answer(200, out);
}

ApiResponse get_openapi(Server::State& state, ApiCall&)
{
    if (state.settings.openapi.empty()) return api_error(404, "no API description in this build");
    return {200, "application/json", std::string(state.settings.openapi), {}, std::nullopt};
}

constexpr OwnRoute kRoutes[] = {
    {"GET", "/session", Role::clerk, false, true, get_session},
    {"POST", "/login", Role::clerk, true, true, post_login},
    {"POST", "/logout", Role::clerk, true, true, post_logout},
    {"GET", "/users", Role::admin, false, false, get_users},
    {"POST", "/users", Role::admin, true, false, post_users},
    {"DELETE", "/users/{name}", Role::admin, true, false, delete_user},
    {"GET", "/audit", Role::admin, false, false, get_audit},
    {"GET", "/openapi.json", Role::clerk, false, true, get_openapi},
};

}  // namespace

std::span<const OwnRoute> own_routes() { return kRoutes; }

}  // namespace nimbara::serve
