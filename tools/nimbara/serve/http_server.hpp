#pragma once
// The HTTP server under `nimbara serve`: it reads requests, hands each to one function and writes
// its answer. Only this file pair knows the HTTP library, so the rest speaks in these types.
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nimbara::serve {

struct HttpRequest {
    std::string method;
    std::string path;   // percent-decoded, without the query
    std::string query;  // as sent, still encoded, without the "?"
    std::vector<std::pair<std::string, std::string>> headers;  // names in lower case
    std::string body;
    std::string remote_address;
    bool tls = false;
    // The body was longer than its limit: it was not read, and `body` is empty.
    bool body_too_large = false;

    // The first header of that name (lower case), or nothing.
    std::optional<std::string_view> header(std::string_view name) const;
};

struct HttpResponse {
    int status = 200;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
};

struct HttpSettings {
    std::string address = "127.0.0.1";  // an IPv4 address, or an IPv6 one without brackets
    int port = 8080;                    // 0: any free port
    int threads = 64;                   // one keep-alive connection is served by one thread at a time
    std::string tls_cert;               // PEM files; both empty: plain HTTP
    std::string tls_key;
};

// The server cannot start: the address is taken or cannot be bound, the TLS files cannot be read.
class HttpServerError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class HttpServer {
public:
    // The largest body a request may send to that method and path; a longer one is not read and the
    // request reaches the handler with body_too_large set (the connection closes after the answer).
    using BodyLimit = std::function<std::size_t(std::string_view method, std::string_view path)>;
    using Handler = std::function<HttpResponse(const HttpRequest&)>;

    // Starts serving at once; throws HttpServerError when it cannot.
    HttpServer(const HttpSettings& settings, BodyLimit limit, Handler handler);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    // The port it listens on (the one chosen when 0 was asked).
    int port() const;

    // Whether this build of the library can listen on IPv6 addresses, and can speak TLS.
    static bool supports_ipv6();
    static bool supports_tls();

    struct State;

private:
    std::unique_ptr<State> state_;
};

}  // namespace nimbara::serve
