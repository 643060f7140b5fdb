#pragma once
// The web server of `nimbara serve`: the API under /api/v1 (its own session, login, users and audit
// endpoints beside the domain routes it is given), the embedded pages, and the rules every answer
// follows (sessions, CSRF tokens, roles, limits, security headers).
#include <chrono>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "api.hpp"
#include "assets.hpp"
#include "http_server.hpp"
#include "session.hpp"

namespace nimbara::serve {

// The server refuses to start; the text says why and what to do.
class ServerError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Where --listen asks to listen.
struct ListenAddress {
    std::string host;  // as given, without the brackets of an IPv6 address
    int port = 8080;
};

// "ADDR:PORT", "[IPV6]:PORT"; throws ServerError naming the text when it is neither or the port is
// not 0 to 65535.
ListenAddress parse_listen_address(std::string_view text);
// 127.0.0.1, ::1 and localhost: the addresses only this machine reaches.
bool is_loopback(std::string_view host);

// The bodies allowed: JSON of the API, and an old database file sent to /imports.
inline constexpr std::size_t kJsonBodyLimit = std::size_t{1} << 20;
inline constexpr std::size_t kUploadBodyLimit = std::size_t{64} << 20;

struct ServerSettings {
    std::string conn;  // the database's connection string
    ListenAddress listen{"127.0.0.1", 8080};
    std::string tls_cert, tls_key;
    int threads = 64;
    std::span<const Route> routes;  // the domain's endpoints
    std::span<const Asset> assets;  // the pages
    std::string_view openapi;       // the API's description, served at /api/v1/openapi.json
    std::chrono::seconds session_lifetime{std::chrono::hours(12)};
    int login_attempts = 5;  // failures allowed per name and per address in the window
    std::chrono::seconds login_window{std::chrono::minutes(15)};
    Clock clock = [] { return std::chrono::steady_clock::now(); };
};

class Server {
public:
    // Opens the database, checks that the address may be used, and starts serving; throws ServerError
    // (or the database's error) when it cannot.
    explicit Server(ServerSettings settings);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    int port() const;
    // "http://127.0.0.1:PORT/" (https under TLS), as the program prints it.
    std::string url() const;

    // Answers one request as the HTTP layer hands it over (public so the tests can reach the rules
    // without sockets as well).
    HttpResponse handle(const HttpRequest& request);

    struct State;

private:
    std::unique_ptr<State> state_;
    std::unique_ptr<HttpServer> http_;
};

}  // namespace nimbara::serve
