#include "server.hpp"

#include <algorithm>
#include <charconv>
#include <iostream>

#include "audit.hpp"
#include "import_jobs.hpp"
#include "nimbara/Schema.hpp"
#include "server_state.hpp"
#include "users.hpp"

namespace nimbara::serve {
namespace {

constexpr std::string_view kApiPrefix = "/api/v1";

// Every answer, page or API: nothing from elsewhere, no inline script, no framing by another site,
// no sniffing. The pages frame the Guia's PDF (same origin) and the settings' preview (a blob).
const std::pair<const char*, const char*> kSecurityHeaders[] = {
    {"Content-Security-Policy",
     "default-src 'self'; base-uri 'none'; form-action 'self'; frame-ancestors 'self'; frame-src 'self' blob:; "
     "object-src 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"X-Frame-Options", "SAMEORIGIN"},
};

int hex_value(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// A query's part decoded ("+" is a space); nothing when a "%" is not followed by two hex digits.
std::optional<std::string> query_decoded(std::string_view text)
{
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '+') {
            out += ' ';
        } else if (text[i] == '%') {
            if (i + 2 >= text.size()) return std::nullopt;
            const int high = hex_value(text[i + 1]), low = hex_value(text[i + 2]);
            if (high < 0 || low < 0) return std::nullopt;
            out += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            out += text[i];
        }
    }
    return out;
}

std::optional<std::multimap<std::string, std::string>> parse_query(std::string_view query)
{
    std::multimap<std::string, std::string> out;
    while (!query.empty()) {
        const auto amp = query.find('&');
        const std::string_view part = query.substr(0, amp);
        query = amp == std::string_view::npos ? std::string_view() : query.substr(amp + 1);
        if (part.empty()) continue;
        const auto eq = part.find('=');
        auto key = query_decoded(part.substr(0, eq));
        auto value = query_decoded(eq == std::string_view::npos ? std::string_view() : part.substr(eq + 1));
        if (!key || !value) return std::nullopt;
        out.emplace(std::move(*key), std::move(*value));
    }
    return out;
}

// Matches "/guias/{id}" against "/guias/12", filling the names.
bool match(std::string_view pattern, std::string_view path, std::map<std::string, std::string>& params)
{
    params.clear();
    while (!pattern.empty() || !path.empty()) {
        if (pattern.empty() || path.empty() || pattern[0] != '/' || path[0] != '/') return false;
        pattern.remove_prefix(1);
        path.remove_prefix(1);
        const auto pattern_end = std::min(pattern.find('/'), pattern.size());
        const auto path_end = std::min(path.find('/'), path.size());
        const std::string_view want = pattern.substr(0, pattern_end), got = path.substr(0, path_end);
        if (want.size() > 2 && want.front() == '{' && want.back() == '}') {
            if (got.empty()) return false;
            params.emplace(std::string(want.substr(1, want.size() - 2)), std::string(got));
        } else if (want != got) {
            return false;
        }
        pattern.remove_prefix(pattern_end);
        path.remove_prefix(path_end);
    }
    return true;
}

std::optional<std::string> cookie(const HttpRequest& request, std::string_view name)
{
    for (const auto& [key, value] : request.headers) {
        if (key != "cookie") continue;
        std::string_view rest = value;
        while (!rest.empty()) {
            const auto semi = rest.find(';');
            std::string_view part = rest.substr(0, semi);
            rest = semi == std::string_view::npos ? std::string_view() : rest.substr(semi + 1);
            while (part.starts_with(' ')) part.remove_prefix(1);
            if (part.starts_with(name) && part.size() > name.size() && part[name.size()] == '=')
                return std::string(part.substr(name.size() + 1));
        }
    }
    return std::nullopt;
}

// Compared in a time that does not depend on where they differ.
bool same_token(std::string_view a, std::string_view b)
{
    if (a.size() != b.size() || a.empty()) return false;
    unsigned char diff = 0;
    for (std::size_t i = 0; i < a.size(); ++i) diff |= static_cast<unsigned char>(a[i] ^ b[i]);
    return diff == 0;
}

// A path that climbs out, or carries a backslash or a NUL once decoded, is refused before any lookup.
bool bad_path(std::string_view path)
{
    if (!path.starts_with('/') || path.find('\\') != std::string_view::npos || path.find('\0') != std::string_view::npos)
        return true;
    for (std::size_t at = 0; at != std::string_view::npos;) {
        const auto next = path.find('/', at + 1);
        const std::string_view part = path.substr(at + 1, next == std::string_view::npos ? std::string_view::npos : next - at - 1);
        if (part == ".." || part == ".") return true;
        at = next;
    }
    return false;
}

HttpResponse to_http(const ApiResponse& answer)
{
    HttpResponse out{answer.status, {{"Content-Type", answer.content_type}, {"Cache-Control", "no-store"}}, answer.body};
    out.headers.insert(out.headers.end(), answer.headers.begin(), answer.headers.end());
    return out;
}

constexpr const char* kCookieName = "nimbara_session";

std::size_t body_limit(std::string_view method, std::string_view path)
{
    return method == "POST" && path == "/api/v1/imports" ? kUploadBodyLimit : kJsonBodyLimit;
}

}  // namespace

std::shared_ptr<Database> ConnectionPool::take()
{
    {
        const std::lock_guard lock(mutex_);
        if (!idle_.empty()) {
            auto db = std::move(idle_.back());
            idle_.pop_back();
            return db;
        }
    }
    return OpenGuiaDatabase(conn_);
}

void ConnectionPool::give_back(std::shared_ptr<Database> db)
{
    if (!db || db.use_count() > 1 || db->in_transaction()) return;
    const std::lock_guard lock(mutex_);
    idle_.push_back(std::move(db));
}

Server::State::State(ServerSettings s)
    : settings(std::move(s)),
      pool(settings.conn),
      sessions(settings.session_lifetime, settings.clock),
      logins(settings.login_attempts, settings.login_window, settings.clock),
      assets(served_assets(settings.assets)),
      tls(!settings.tls_cert.empty())
{
}

std::string session_cookie(const std::string& id, bool tls)
{
    return std::string(kCookieName) + "=" + id + "; Path=/; HttpOnly; SameSite=Strict" + (tls ? "; Secure" : "");
}

std::string expired_session_cookie(bool tls) { return session_cookie("", tls) + "; Max-Age=0"; }

ListenAddress parse_listen_address(std::string_view text)
{
    const auto refuse = [&](const std::string& why) {
        return ServerError("--listen " + std::string(text) + ": " + why + " (ADDR:PORT, e.g. 127.0.0.1:8080 or [::1]:8080)");
    };
    ListenAddress out;
    std::string_view port;
    if (text.starts_with('[')) {
        const auto close = text.find("]:");
        if (close == std::string_view::npos) throw refuse("an IPv6 address needs [ADDR]:PORT");
        out.host = std::string(text.substr(1, close - 1));
        port = text.substr(close + 2);
    } else {
        const auto colon = text.rfind(':');
        if (colon == std::string_view::npos || colon == 0) throw refuse("no address and port");
        out.host = std::string(text.substr(0, colon));
        if (out.host.find(':') != std::string::npos) throw refuse("an IPv6 address goes in brackets");
        port = text.substr(colon + 1);
    }
    if (out.host.empty()) throw refuse("no address");
    const auto [end, error] = std::from_chars(port.data(), port.data() + port.size(), out.port);
    if (port.empty() || error != std::errc() || end != port.data() + port.size() || out.port < 0 || out.port > 65535)
        throw refuse("the port is not a number from 0 to 65535");
    return out;
}

bool is_loopback(std::string_view host) { return host == "127.0.0.1" || host == "::1" || host == "localhost"; }

Server::Server(ServerSettings settings) : state_(std::make_unique<State>(std::move(settings)))
{
    const auto& s = state_->settings;
    {
        PooledConnection db(state_->pool);
        EnsureAccessTables(*db.get());
        state_->login_required = users_exist(*db.get());
    }
    // A background import opens a connection of its own to the same database.
    import_jobs().set_opener([conn = s.conn] { return OpenGuiaDatabase(conn); });
    if (!is_loopback(s.listen.host) && !state_->login_required)
        throw ServerError("will not listen on " + s.listen.host +
                          " without users: anyone who reaches it could change the database; add one with "
                          "nimbara users add NAME --role admin, or listen on 127.0.0.1");
    if (!s.tls_cert.empty() && !HttpServer::supports_tls())
        throw ServerError("this build cannot serve TLS; put a reverse proxy in front (see the README)");
    HttpSettings http;
    http.address = s.listen.host == "localhost" ? "127.0.0.1" : s.listen.host;
    if (http.address.find(':') != std::string::npos && !HttpServer::supports_ipv6())
        throw ServerError("--listen " + s.listen.host + ": this build cannot listen on IPv6 addresses; use 127.0.0.1");
    http.port = s.listen.port;
    http.threads = s.threads;
    http.tls_cert = s.tls_cert;
    http.tls_key = s.tls_key;
    try {
        http_ = std::make_unique<HttpServer>(
            http,
            body_limit,
            [this](const HttpRequest& request) { return handle(request); });
    } catch (const HttpServerError& e) {
        throw ServerError(e.what());
    }
}

Server::~Server() = default;

int Server::port() const { return http_->port(); }

std::string Server::url() const
{
    const std::string& host = state_->settings.listen.host;
    return std::string(state_->tls ? "https" : "http") + "://" +
           (host.find(':') != std::string::npos ? "[" + host + "]" : host) + ":" + std::to_string(port()) + "/";
}

namespace {

ApiResponse run_api(Server::State& state, const HttpRequest& http)
{
    std::string_view path = std::string_view(http.path).substr(kApiPrefix.size());
    if (path.empty()) path = "/";
    auto query = parse_query(http.query);
    if (!query) return api_error(400, "the query is not well encoded");

    ApiCall call{http, std::nullopt, {}, {}};
    call.request.method = http.method;
    call.request.path = std::string(path);
    call.request.query = std::move(*query);

    // The route: the server's own first, then the domain's.
    const OwnRoute* own = nullptr;
    const Route* domain = nullptr;
    bool path_known = false;
    for (const auto& route : own_routes())
        if (match(route.pattern, path, call.request.params)) {
            path_known = true;
            if (http.method == route.method) { own = &route; break; }
        }
    if (!own)
        for (const auto& route : state.settings.routes)
            if (match(route.pattern, path, call.request.params)) {
                path_known = true;
                if (http.method == route.method) { domain = &route; break; }
            }
    if (!own && !domain) return path_known ? api_error(405, "method not allowed") : api_error(404, "no such endpoint");
    const Role least = own ? own->least : domain->least;
    const bool writes = own ? own->writes : domain->writes;
    const bool open = own && own->open;

    if (const auto id = cookie(http, kCookieName)) call.session = state.sessions.find(*id);
    const bool login_required = state.login_required;
    // A session opened before users existed carries no name: it counts only while no login is asked.
    std::optional<Caller> caller;
    if (call.session && call.session->caller && (!login_required || !call.session->caller->user.empty()))
        caller = call.session->caller;
    if (!caller && !login_required) caller = Caller{};
    if (!caller && !open) return api_error(401, "log in first");
    if (writes) {
        const auto token = http.header("x-csrf-token");
        if (!call.session || !token || !same_token(*token, call.session->csrf_token))
            return api_error(403, "the CSRF token is missing or wrong: read it from /api/v1/session");
    }
    if (caller && least == Role::admin && caller->role != Role::admin) return api_error(403, "only an admin may do this");
    if (caller) call.request.caller = *caller;
    call.request.body = http.body;
    if (const auto type = http.header("content-type")) call.request.content_type = std::string(*type);

    PooledConnection lease(state.pool);
    call.request.db = lease.get();
    ApiResponse answer = own ? own->handler(state, call) : domain->handler(call.request);
    if (answer.audit && answer.status < 400)
        write_audit(*call.request.db, call.request.caller.user, answer.audit->action, answer.audit->what);
    // Let go before the lease ends, or the pool would take the request's copy for a job's and drop
    // the connection, opening a new one for every request.
    call.request.db.reset();
    answer.headers.insert(answer.headers.end(), call.set_headers.begin(), call.set_headers.end());
    return answer;
}

}  // namespace

HttpResponse Server::handle(const HttpRequest& request)
{
    HttpResponse response;
    const bool api = request.path == kApiPrefix || request.path.starts_with(std::string(kApiPrefix) + "/");
    if (request.body_too_large) {
        const std::size_t limit = body_limit(request.method, request.path);
        response = to_http(api_error(413, "the request body is larger than " + std::to_string(limit >> 20) + " MiB"));
    } else if (bad_path(request.path)) {
        response = api ? to_http(api_error(400, "the path is not allowed")) : HttpResponse{400, {{"Content-Type", "text/plain"}}, "bad path\n"};
    } else if (api) {
        try {
            response = to_http(run_api(*state_, request));
        } catch (const DatabaseError& e) {
            std::cerr << "nimbara serve: " << request.method << " " << request.path << ": " << e.what() << "\n";
            response = to_http(api_error(503, std::string("the database failed: ") + e.what()));
        }
    } else if (request.path.starts_with("/api/")) {
        response = to_http(api_error(404, "no such API version"));
    } else {
        response = answer_asset(state_->assets, request);
    }
    for (const auto& [name, value] : kSecurityHeaders) response.headers.emplace_back(name, value);
    return response;
}

}  // namespace nimbara::serve
