#pragma once
// Calling the web API's handlers as the server does, without a server: a request on a database, and
// each JSON answer kept in a folder for the OpenAPI check to read back.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "api.hpp"

namespace nimbara::testing {

inline serve::ApiRequest api_request(std::shared_ptr<Database> db, std::string method, std::string path,
                                     std::map<std::string, std::string> params = {},
                                     std::multimap<std::string, std::string> query = {}, std::string body = {})
{
    serve::ApiRequest r;
    r.method = std::move(method);
    r.path = std::move(path);
    r.params = std::move(params);
    r.query = std::move(query);
    r.body = std::move(body);
    r.content_type = "application/json";
    r.db = std::move(db);
    return r;
}

// Where the answers go for tests/serve/check_openapi.py: one file per answer, named after the test,
// holding the route's method and pattern, the status and the body.
inline void keep_answer(const char* method, const char* pattern, const serve::ApiResponse& response)
{
    const char* folder = std::getenv("NIMBARA_API_ANSWERS");
    if (!folder || response.content_type != "application/json") return;
    static int count = 0;
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test->test_suite_name()) + "." + test->name();
    for (char& c : name)
        if (c == '/') c = '_';
    std::filesystem::create_directories(folder);
    nlohmann::json kept = {{"method", method}, {"pattern", pattern}, {"status", response.status}};
    kept["body"] = nlohmann::json::parse(response.body, nullptr, false);
    std::ofstream(std::filesystem::path(folder) /
                  (name + "." + std::to_string(++count) + ".json"))
        << kept.dump();
}

// Calls the handler api_routes() gives for the method and pattern, as the server would, and keeps its
// answer; a route that is missing fails the test.
inline serve::ApiResponse call_route(std::shared_ptr<Database> db, const char* method, const char* pattern,
                                     std::map<std::string, std::string> params = {},
                                     std::multimap<std::string, std::string> query = {}, std::string body = {})
{
    for (const auto& route : serve::api_routes())
        if (std::string_view(route.method) == method && std::string_view(route.pattern) == pattern) {
            auto response = route.handler(api_request(std::move(db), method, pattern, std::move(params),
                                                      std::move(query), std::move(body)));
            keep_answer(method, pattern, response);
            return response;
        }
    ADD_FAILURE() << "no route " << method << " " << pattern;
    return serve::api_error(599, "no route");
}

}  // namespace nimbara::testing
