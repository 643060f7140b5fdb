#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <string>

#include "routes.hpp"

namespace nimbara {
namespace {

using nlohmann::json;

json document() { return json::parse(serve::openapi_document()); }

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

TEST(OpenApiTest, EveryRouteIsDocumentedWithItsMethodAndRole)
{
    const json d = document();
    EXPECT_EQ(d["openapi"], "3.1.0");
    for (const auto& route : serve::api_routes()) {
        const std::string where = std::string(route.method) + " " + route.pattern;
        ASSERT_TRUE(d["paths"].contains(route.pattern)) << where;
        ASSERT_TRUE(d["paths"][route.pattern].contains(lower(route.method))) << where;
        EXPECT_EQ(d["paths"][route.pattern][lower(route.method)]["x-least-role"],
                  route.least == serve::Role::admin ? "admin" : "clerk")
            << where;
    }
    // The server's own endpoints, which it adds beside these.
    const std::pair<const char*, const char*> server[] = {
        {"get", "/session"}, {"post", "/login"},  {"post", "/logout"},        {"get", "/users"},
        {"post", "/users"},  {"delete", "/users/{name}"}, {"get", "/audit"}, {"get", "/openapi.json"}};
    for (const auto& [method, path] : server) EXPECT_TRUE(d["paths"][path].contains(method)) << method << " " << path;
}

// The files' schemas are copied into the document, which is served whole; the copies must not drift.
TEST(OpenApiTest, TheFileSchemasAreThoseOfDataSchema)
{
    const json d = document();
    for (const auto& [component, file] : {std::pair{"GuiaFileSchema", "guia-file.schema.json"},
                                          std::pair{"ClientFileSchema", "client-file.schema.json"}}) {
        json expected = json::parse(std::ifstream(std::string(NIMBARA_SOURCE_DIR) + "/data/schema/" + file));
        json copied = d["components"]["schemas"][component];
        expected.erase("$schema");
        copied.erase("$id");
        EXPECT_EQ(copied, expected) << component << " differs from data/schema/" << file
                                    << ": run the document's schemas again from the files";
    }
}

}  // namespace
}  // namespace nimbara
