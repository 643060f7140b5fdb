#pragma once
// What the parts of the server share: the database connections, the sessions, the login limiter and
// whether a login is required.
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "server.hpp"
#include "session.hpp"

namespace nimbara::serve {

// Connections to the database, one per request being served at once: a serving thread takes one and
// gives it back, so no connection is opened per request and none is shared by two threads.
class ConnectionPool {
public:
    explicit ConnectionPool(std::string conn) : conn_(std::move(conn)) {}
    std::shared_ptr<Database> take();
    // A connection a handler still holds elsewhere (a background job) is not reused.
    void give_back(std::shared_ptr<Database> db);

private:
    std::string conn_;
    std::mutex mutex_;
    std::vector<std::shared_ptr<Database>> idle_;
};

class PooledConnection {
public:
    explicit PooledConnection(ConnectionPool& pool) : pool_(pool), db_(pool.take()) {}
    ~PooledConnection() { pool_.give_back(std::move(db_)); }
    PooledConnection(const PooledConnection&) = delete;
    PooledConnection& operator=(const PooledConnection&) = delete;
    const std::shared_ptr<Database>& get() const { return db_; }

private:
    ConnectionPool& pool_;
    std::shared_ptr<Database> db_;
};

// An asset answered from the table, with its validator made once.
struct ServedAsset {
    const Asset* asset;
    std::string etag;
    bool immutable;
};

struct Server::State {
    ServerSettings settings;
    ConnectionPool pool;
    SessionStore sessions;
    LoginLimiter logins;
    std::atomic<bool> login_required{false};
    std::vector<ServedAsset> assets;
    bool tls = false;

    explicit State(ServerSettings s);
};

// The request as the API's rules see it, beside the HTTP request it came from.
struct ApiCall {
    const HttpRequest& http;
    std::optional<Session> session;
    ApiRequest request;
    std::vector<std::pair<std::string, std::string>> set_headers;  // cookies set by the answer
};

// The server's own endpoints (session, login, logout, users, audit, openapi.json).
struct OwnRoute {
    const char* method;
    const char* pattern;
    Role least;
    bool writes;
    bool open;  // answered without a login
    ApiResponse (*handler)(Server::State&, ApiCall&);
};
std::span<const OwnRoute> own_routes();

// The cookie that carries a session: HttpOnly, SameSite=Strict, Secure under TLS.
std::string session_cookie(const std::string& id, bool tls);
std::string expired_session_cookie(bool tls);

// The static part: the pages of the asset table.
std::vector<ServedAsset> served_assets(std::span<const Asset> assets);
HttpResponse answer_asset(const std::vector<ServedAsset>& assets, const HttpRequest& request);

}  // namespace nimbara::serve
