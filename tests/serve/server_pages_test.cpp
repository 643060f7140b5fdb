// The pages from the asset table: found by their path only, with validators, compression and the
// security headers; no request reaches a file of the machine.
#include "serve_fixture.hpp"

using namespace nimbara::testing;

namespace {

class ServerPagesTest : public ServeTest {
protected:
    void SetUp() override
    {
        ServeTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        start();
    }
    std::string page(const std::string& path)
    {
        for (const auto& asset : test_pages())
            if (asset.path == path) return std::string(asset.bytes);
        return {};
    }
};

TEST_P(ServerPagesTest, PathsFindTheirAssetsOrTheMainPage)
{
    struct Case {
        const char* target;
        int status;
        const char* served;  // the asset whose bytes come back
        const char* cache;
    };
    const Case cases[] = {
        {"/", 200, "/index.html", "no-cache"},
        {"/index.html", 200, "/index.html", "no-cache"},
        {"/guias/2026/17", 200, "/index.html", "no-cache"},  // a page of the client-side routing
        {"/assets/app-3f2a9c1d.js", 200, "/assets/app-3f2a9c1d.js", "public, max-age=31536000, immutable"},
        {"/robots.txt", 200, "/robots.txt", "no-cache"},
        {"/assets/app.js", 404, nullptr, nullptr},
        {"/missing.css", 404, nullptr, nullptr},
    };
    auto t = tab();
    for (const auto& c : cases) {
        const auto answer = t->get(c.target);
        EXPECT_EQ(answer.status, c.status) << c.target;
        if (c.served) {
            EXPECT_EQ(answer.body, page(c.served)) << c.target;
            EXPECT_EQ(answer.header("cache-control"), c.cache) << c.target;
        }
    }
    EXPECT_EQ(t->http.request("POST", "/index.html", "x").status, 405);
}

TEST_P(ServerPagesTest, ClimbingOutOfTheTableIsRefused)
{
    const char* targets[] = {
        "/../CMakeLists.txt",
        "/assets/../../CMakeLists.txt",
        "/%2e%2e/CMakeLists.txt",
        "/%2E%2E/%2e%2e/etc/passwd",
        "/assets/..%2f..%2fCMakeLists.txt",
        "/assets%2f..%2f..%2fCMakeLists.txt",
        "/..%5c..%5cCMakeLists.txt",
        "/./index.html",
        "/api/v1/../../CMakeLists.txt",
    };
    for (const char* target : targets) {
        HttpClient http(server->port());
        const auto answer = http.raw(std::string("GET ") + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n");
        EXPECT_TRUE(answer.status == 400 || answer.status == 404) << target << ": " << answer.status;
        EXPECT_EQ(answer.body.find("cmake_minimum_required"), std::string::npos) << target;
        EXPECT_EQ(answer.body.find("root:"), std::string::npos) << target;
    }
}

TEST_P(ServerPagesTest, AnUnchangedAssetIsNotSentAgainAndCompressionFollowsTheClient)
{
    auto t = tab();
    const auto first = t->get("/assets/app-3f2a9c1d.js");
    const std::string etag = first.header("etag");
    ASSERT_FALSE(etag.empty());
    const auto again = t->http.request("GET", "/assets/app-3f2a9c1d.js", {}, {{"If-None-Match", etag}});
    EXPECT_EQ(again.status, 304);
    EXPECT_EQ(again.body, "");
    EXPECT_EQ(t->http.request("GET", "/assets/app-3f2a9c1d.js", {}, {{"If-None-Match", "\"other\""}}).status, 200);

    const auto zipped = t->http.request("GET", "/index.html", {}, {{"Accept-Encoding", "gzip, deflate, br"}});
    EXPECT_EQ(zipped.header("content-encoding"), "gzip");
    EXPECT_EQ(zipped.body.substr(0, 2), "\x1f\x8b");
    EXPECT_EQ(zipped.header("vary"), "Accept-Encoding");
    const auto plain = t->get("/index.html");
    EXPECT_EQ(plain.header("content-encoding"), "");
    EXPECT_EQ(plain.body, page("/index.html"));
    // An asset without a compressed form is sent as it is.
    EXPECT_EQ(t->http.request("GET", "/robots.txt", {}, {{"Accept-Encoding", "gzip"}}).header("content-encoding"), "");
}

TEST_P(ServerPagesTest, EveryAnswerCarriesTheSecurityHeaders)
{
    const char* targets[] = {"/", "/assets/app-3f2a9c1d.js", "/missing.css", "/api/v1/session", "/api/v1/nothing",
                             "/api/v1/openapi.json", "/%2e%2e/x"};
    for (const char* target : targets) {
        HttpClient http(server->port());
        const auto answer = http.request("GET", target);
        const std::string policy = answer.header("content-security-policy");
        EXPECT_NE(policy.find("default-src 'self'"), std::string::npos) << target;
        EXPECT_EQ(policy.find("unsafe-inline"), std::string::npos) << target;
        EXPECT_EQ(answer.header("x-content-type-options"), "nosniff") << target;
        EXPECT_EQ(answer.header("referrer-policy"), "no-referrer") << target;
        EXPECT_EQ(answer.header("x-frame-options"), "SAMEORIGIN") << target;
        EXPECT_NE(policy.find("frame-ancestors 'self'"), std::string::npos) << target;
    }
}

INSTANTIATE_TEST_SUITE_P(Stores, ServerPagesTest, ::testing::Values(Store::SQLite), store_name);

}  // namespace
