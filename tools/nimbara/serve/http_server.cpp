#include "http_server.hpp"

#include <civetweb.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <condition_variable>
#include <fstream>
#include <functional>
#include <iostream>
#include <mutex>
#include <sstream>
#include <thread>
#include <utility>

namespace nimbara::serve {
namespace {

std::string lower(std::string_view text)
{
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

// The library is set up once per process, however many servers run in it (the tests start several).
void init_library_once()
{
    static std::once_flag once;
    std::call_once(once, [] { mg_init_library(MG_FEATURES_TLS | MG_FEATURES_IPV6); });
}

std::string read_file(const std::string& path, const char* what)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) throw HttpServerError("cannot read the TLS " + std::string(what) + " file " + path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// The library wants the key and the certificate in one PEM file; they are joined in memory, never on
// disk, so the key is not copied anywhere another user could read it.
class PemInMemory {
public:
    PemInMemory(const std::string& cert, const std::string& key)
    {
        const std::string text = read_file(key, "key") + "\n" + read_file(cert, "certificate");
        fd_ = memfd_create("nimbara-tls", MFD_CLOEXEC);
        if (fd_ < 0 || write(fd_, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
            throw HttpServerError("cannot hold the TLS key in memory");
    }
    ~PemInMemory()
    {
        if (fd_ >= 0) close(fd_);
    }
    PemInMemory(const PemInMemory&) = delete;
    PemInMemory& operator=(const PemInMemory&) = delete;
    std::string path() const { return "/proc/self/fd/" + std::to_string(fd_); }

private:
    int fd_ = -1;
};

void send(mg_connection* conn, const HttpResponse& response)
{
    mg_response_header_start(conn, response.status);
    for (const auto& [name, value] : response.headers)
        mg_response_header_add(conn, name.c_str(), value.c_str(), static_cast<int>(value.size()));
    const std::string length = std::to_string(response.body.size());
    mg_response_header_add(conn, "Content-Length", length.c_str(), static_cast<int>(length.size()));
    mg_response_header_send(conn);
    if (!response.body.empty()) mg_write(conn, response.body.data(), response.body.size());
}

// Debian's build of the library gives its worker threads 100 KiB stacks, too small for the printing
// and validation under a handler (the PDF417 encoder alone overflows it), so each worker hands its
// requests to a thread of its own with the system's default stack and waits for the answer.
class DeepStack {
public:
    DeepStack() : thread_([this] { run(); }) {}
    ~DeepStack()
    {
        {
            const std::lock_guard lock(mutex_);
            stop_ = true;
        }
        wake_.notify_all();
        thread_.join();
    }
    DeepStack(const DeepStack&) = delete;
    DeepStack& operator=(const DeepStack&) = delete;

    // Runs `work` on the deep thread; `work` must not throw.
    void call(const std::function<void()>& work)
    {
        std::unique_lock lock(mutex_);
        work_ = &work;
        done_ = false;
        wake_.notify_all();
        wake_.wait(lock, [this] { return done_; });
    }

private:
    void run()
    {
        std::unique_lock lock(mutex_);
        for (;;) {
            wake_.wait(lock, [this] { return stop_ || work_ != nullptr; });
            if (stop_) return;
            const auto* work = std::exchange(work_, nullptr);
            lock.unlock();
            (*work)();
            lock.lock();
            done_ = true;
            wake_.notify_all();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    const std::function<void()>* work_ = nullptr;
    bool done_ = false;
    bool stop_ = false;
    std::thread thread_;  // last, so that it starts after what it reads
};

}  // namespace

struct HttpServer::State {
    BodyLimit limit;
    Handler handler;
    mg_context* context = nullptr;
    int port = 0;
};

namespace {

int serve_request(mg_connection* conn)
{
    auto& state = *static_cast<HttpServer::State*>(mg_get_user_data(mg_get_context(conn)));
    const mg_request_info* info = mg_get_request_info(conn);
    HttpRequest request;
    request.method = info->request_method ? info->request_method : "";
    request.path = info->local_uri_raw ? info->local_uri_raw : "";
    request.query = info->query_string ? info->query_string : "";
    request.remote_address = info->remote_addr;
    request.tls = info->is_ssl != 0;
    request.headers.reserve(static_cast<std::size_t>(info->num_headers));
    for (int i = 0; i < info->num_headers; ++i)
        request.headers.emplace_back(lower(info->http_headers[i].name), info->http_headers[i].value);

    const std::size_t limit = state.limit(request.method, request.path);
    if (info->content_length > 0 && static_cast<unsigned long long>(info->content_length) > limit) {
        request.body_too_large = true;
    } else {
        // A body of unknown length (chunked) is read up to one byte past the limit.
        char buffer[16384];
        for (int n; (n = mg_read(conn, buffer, sizeof buffer)) > 0;) {
            request.body.append(buffer, static_cast<std::size_t>(n));
            if (request.body.size() > limit) {
                request.body_too_large = true;
                request.body.clear();
                break;
            }
        }
    }
    HttpResponse response;
    thread_local DeepStack deep;
    deep.call([&] {
        try {
            response = state.handler(request);
        } catch (const std::exception& e) {
            std::cerr << "nimbara serve: " << request.method << " " << request.path << ": " << e.what() << "\n";
            response = {500, {{"Content-Type", "application/json"}}, R"({"status":500,"error":"internal error"})"};
        } catch (...) {
            response = {500, {{"Content-Type", "application/json"}}, R"({"status":500,"error":"internal error"})"};
        }
    });
    // What is left of a refused body would be read as the next request: the connection ends instead.
    if (request.body_too_large) response.headers.emplace_back("Connection", "close");
    send(conn, response);
    return response.status;
}

// The library's own log lines (a client that went away, say) are not the server's business.
int quiet(const mg_connection*, const char*) { return 1; }

}  // namespace

std::optional<std::string_view> HttpRequest::header(std::string_view name) const
{
    for (const auto& [key, value] : headers)
        if (key == name) return value;
    return std::nullopt;
}

HttpServer::HttpServer(const HttpSettings& settings, BodyLimit limit, Handler handler)
    : state_(std::make_unique<State>())
{
    init_library_once();
    state_->limit = std::move(limit);
    state_->handler = std::move(handler);
    const bool tls = !settings.tls_cert.empty() || !settings.tls_key.empty();
    if (tls && (settings.tls_cert.empty() || settings.tls_key.empty()))
        throw HttpServerError("TLS needs both --tls-cert and --tls-key");
    std::optional<PemInMemory> pem;
    if (tls) pem.emplace(settings.tls_cert, settings.tls_key);

    const bool v6 = settings.address.find(':') != std::string::npos;
    const std::string ports = (v6 ? "[" + settings.address + "]" : settings.address) + ":" +
                              std::to_string(settings.port) + (tls ? "s" : "");
    const std::string threads = std::to_string(settings.threads);
    const std::string pem_path = pem ? pem->path() : std::string();
    std::vector<const char*> options = {"listening_ports", ports.c_str(), "num_threads", threads.c_str(),
                                        "enable_keep_alive", "yes", "keep_alive_timeout_ms", "30000",
                                        "tcp_nodelay", "1", "request_timeout_ms", "30000"};
    if (tls) options.insert(options.end(), {"ssl_certificate", pem_path.c_str(), "ssl_protocol_version", "4"});
    options.push_back(nullptr);

    mg_callbacks callbacks{};
    callbacks.begin_request = serve_request;
    callbacks.log_message = quiet;
    mg_init_data init{&callbacks, state_.get(), options.data()};
    char text[256] = {};
    unsigned code = 0;
    mg_error_data error{&code, text, sizeof text};
    state_->context = mg_start2(&init, &error);
    if (!state_->context)
        throw HttpServerError("cannot listen on " + ports + (text[0] ? std::string(": ") + text : std::string()));
    mg_server_port bound[4];
    if (mg_get_server_ports(state_->context, 4, bound) > 0) state_->port = bound[0].port;
}

HttpServer::~HttpServer()
{
    if (state_ && state_->context) mg_stop(state_->context);
}

int HttpServer::port() const { return state_->port; }

bool HttpServer::supports_ipv6() { return mg_check_feature(MG_FEATURES_IPV6) != 0; }
bool HttpServer::supports_tls() { return mg_check_feature(MG_FEATURES_TLS) != 0; }

}  // namespace nimbara::serve
