#pragma once
// A running server for the tests: a database of its own on one store, the test pages, a few test
// routes beside the server's own, a clock the test moves, and browser-like clients over loopback.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <memory>

#include "serve/server.hpp"
#include "serve/users.hpp"
#include "support/test_database.hpp"
#include "http_client.hpp"
#include "test_pages.hpp"

namespace nimbara::testing {

// A browser tab: its connection, its session cookie and the CSRF token the session answered.
class Tab {
public:
    explicit Tab(int port) : http(port) {}
    HttpClient http;
    std::string csrf;

    nlohmann::json session()
    {
        const auto answer = http.request("GET", "/api/v1/session");
        const auto body = nlohmann::json::parse(answer.body);
        csrf = body.value("csrf_token", "");
        return body;
    }
    HttpAnswer login(const std::string& name, const std::string& password)
    {
        if (csrf.empty()) session();
        const auto answer = write("POST", "/api/v1/login", nlohmann::json{{"name", name}, {"password", password}}.dump());
        if (answer.status == 200) csrf = nlohmann::json::parse(answer.body).value("csrf_token", "");
        return answer;
    }
    HttpAnswer get(const std::string& target) { return http.request("GET", target); }
    // A write with the session's token.
    HttpAnswer write(const std::string& method, const std::string& target, const std::string& body = {})
    {
        return http.request(method, target, body, {{"X-CSRF-Token", csrf}});
    }
};

class ServeTest : public StoreTest {
protected:
    void SetUp() override;
    void TearDown() override { server.reset(); StoreTest::TearDown(); }

    // Starts (or restarts) the server on the test's database.
    void start(serve::ListenAddress listen = {"127.0.0.1", 0});
    void add_user(const std::string& name, serve::Role role)
    {
        serve::add_user(*db, name, password_of(name), role);
    }
    static std::string password_of(const std::string& name) { return name + "-secret-1"; }
    std::unique_ptr<Tab> tab() { return std::make_unique<Tab>(server->port()); }
    // The tab of a user logged in.
    std::unique_ptr<Tab> logged_in(const std::string& name)
    {
        auto t = tab();
        EXPECT_EQ(t->login(name, password_of(name)).status, 200) << name;
        return t;
    }
    void advance(std::chrono::seconds by) { offset->store(offset->load() + by); }

    std::shared_ptr<std::atomic<std::chrono::seconds>> offset = std::make_shared<std::atomic<std::chrono::seconds>>();
    std::unique_ptr<serve::Server> server;
};

// The routes the tests add beside the server's own, standing for the domain's.
namespace serve_routes {

using serve::ApiRequest;
using serve::ApiResponse;

// Answers what the server made of the request: its params, query and caller.
inline ApiResponse echo(const ApiRequest& r)
{
    nlohmann::json query = nlohmann::json::object();
    for (const auto& [key, value] : r.query) query[key] = value;
    return {200, "application/json",
            nlohmann::json{{"params", r.params}, {"query", query}, {"user", r.caller.user},
                           {"admin", r.caller.role == serve::Role::admin}, {"body", r.body}}
                .dump(),
            {}, std::nullopt};
}

// A write that changes the database and asks for its audit: a client row, by the code in the path.
inline ApiResponse add_client(const ApiRequest& r)
{
    const int code = std::stoi(r.params.at("code"));
    r.db->execute("INSERT INTO Tbl_Cliente (Id_Cliente, Cod_Cliente, Nome) VALUES (?, ?, ?)", {code, code, r.body});
    ApiResponse answer{201, "application/json", "{}", {}, serve::AuditEntry{"add client", "client " + r.params.at("code")}};
    return answer;
}

inline ApiResponse refused_write(const ApiRequest&) { return {422, "application/json", "{}", {}, serve::AuditEntry{"never", "kept"}}; }

constexpr serve::Route kRoutes[] = {
    {"GET", "/echo/{first}/{second}", serve::Role::clerk, false, echo},
    {"POST", "/clients/{code}", serve::Role::clerk, true, add_client},
    {"POST", "/admin-clients/{code}", serve::Role::admin, true, add_client},
    {"POST", "/refused", serve::Role::clerk, true, refused_write},
    {"POST", "/imports", serve::Role::admin, true, echo},
};

}  // namespace serve_routes

inline std::span<const serve::Route> test_routes() { return serve_routes::kRoutes; }

inline void ServeTest::SetUp()
{
    StoreTest::SetUp();
    if (IsSkipped() || HasFailure()) return;
    create_schema();
}

inline void ServeTest::start(serve::ListenAddress listen)
{
    server.reset();
    serve::ServerSettings s;
    s.conn = scratch->conn();
    s.listen = std::move(listen);
    s.threads = 24;
    s.routes = test_routes();
    s.assets = test_pages();
    s.openapi = R"({"openapi":"3.0.3"})";
    s.session_lifetime = std::chrono::hours(1);
    s.login_attempts = 3;
    s.login_window = std::chrono::minutes(10);
    s.clock = [offset = offset] { return std::chrono::steady_clock::now() + offset->load(); };
    server = std::make_unique<serve::Server>(std::move(s));
}

}  // namespace nimbara::testing
