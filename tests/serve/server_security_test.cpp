// The attacks a server on a network meets, each refused with nothing changed in the database.
#include "serve_fixture.hpp"

#include <functional>

#include "serve/audit.hpp"

using namespace nimbara::testing;
using nimbara::serve::Role;
using nlohmann::json;

namespace {

class ServerSecurityTest : public ServeTest {
protected:
    void SetUp() override
    {
        ServeTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        add_user("ana", Role::clerk);
        add_user("rui", Role::admin);
        start();
    }
    std::int64_t clients() { return count("Tbl_Cliente"); }
    std::int64_t audit_rows() { return count("Tbl_Auditoria"); }
    std::int64_t users() { return count("Tbl_Utilizador"); }
};

TEST_P(ServerSecurityTest, WritesWithoutTheirSessionsTokenAreRefused)
{
    struct Case {
        const char* name;
        std::function<HttpAnswer(Tab& ana, Tab& other)> send;
    };
    const std::string body = "Cliente";
    const Case cases[] = {
        {"no token", [&](Tab& ana, Tab&) { return ana.http.request("POST", "/api/v1/clients/7", body); }},
        {"a wrong token",
         [&](Tab& ana, Tab&) { return ana.http.request("POST", "/api/v1/clients/7", body, {{"X-CSRF-Token", std::string(64, 'a')}}); }},
        {"an empty token", [&](Tab& ana, Tab&) { return ana.http.request("POST", "/api/v1/clients/7", body, {{"X-CSRF-Token", ""}}); }},
        {"another session's token",
         [&](Tab& ana, Tab& other) { return ana.http.request("POST", "/api/v1/clients/7", body, {{"X-CSRF-Token", other.csrf}}); }},
        {"the token without its cookie",
         [&](Tab& ana, Tab&) {
             Tab stranger(server->port());
             return stranger.http.request("POST", "/api/v1/clients/7", body, {{"X-CSRF-Token", ana.csrf}});
         }},
        {"a login without a token",
         [&](Tab&, Tab&) {
             Tab fresh(server->port());
             fresh.session();
             return fresh.http.request("POST", "/api/v1/login", json{{"name", "ana"}, {"password", password_of("ana")}}.dump());
         }},
    };
    auto ana = logged_in("ana");
    auto other = logged_in("rui");
    for (const auto& c : cases) {
        const auto answer = c.send(*ana, *other);
        EXPECT_TRUE(answer.status == 403 || answer.status == 401) << c.name << ": " << answer.status;
        EXPECT_EQ(answer.header("content-type"), "application/json") << c.name;
    }
    EXPECT_EQ(clients(), 0);
    EXPECT_EQ(audit_rows(), 0);
    // The same write with the token goes through, so the refusals above were the token's.
    EXPECT_EQ(ana->write("POST", "/api/v1/clients/7", body).status, 201);
    EXPECT_EQ(clients(), 1);
}

TEST_P(ServerSecurityTest, SessionsThatAreNotTheCallersOwnOrHaveEndedAreRefused)
{
    struct Case {
        const char* name;
        std::function<void(Tab&)> spoil;
    };
    const Case cases[] = {
        {"a made-up id", [](Tab& t) { t.http.cookie = "nimbara_session=" + std::string(64, '0'); }},
        {"an id one digit off", [](Tab& t) { t.http.cookie.back() = t.http.cookie.back() == '0' ? '1' : '0'; }},
        {"a logged-out session",
         [](Tab& t) {
             const std::string kept = t.http.cookie;
             EXPECT_EQ(t.write("POST", "/api/v1/logout").status, 200);
             t.http.cookie = kept;
         }},
        {"an expired session", [this](Tab&) { advance(std::chrono::hours(2)); }},
        {"the session of a removed user",
         [this](Tab&) {
             auto admin = logged_in("rui");
             EXPECT_EQ(admin->write("DELETE", "/api/v1/users/ana").status, 200);
         }},
    };
    for (const auto& c : cases) {
        add_user("ana-" + std::to_string(&c - cases), Role::clerk);  // not used: keeps user counts moving
        if (count("Tbl_Utilizador WHERE Nome = 'ana'") == 0) add_user("ana", Role::clerk);
        auto ana = logged_in("ana");
        ASSERT_EQ(ana->get("/api/v1/echo/a/b").status, 200) << c.name;
        c.spoil(*ana);
        EXPECT_EQ(ana->get("/api/v1/echo/a/b").status, 401) << c.name;
        EXPECT_EQ(ana->write("POST", "/api/v1/clients/8", "x").status, 401) << c.name;
        EXPECT_EQ(ana->session().value("user", "?"), "") << c.name;
    }
    EXPECT_EQ(clients(), 0);
}

TEST_P(ServerSecurityTest, AClerkIsRefusedTheAdminsRoutes)
{
    struct Case {
        const char* method;
        const char* target;
        std::string body;
    };
    const Case cases[] = {
        {"GET", "/api/v1/users", ""},
        {"POST", "/api/v1/users", json{{"name", "eva"}, {"password", "long enough"}, {"role", "admin"}}.dump()},
        {"DELETE", "/api/v1/users/rui", ""},
        {"GET", "/api/v1/audit", ""},
        {"POST", "/api/v1/admin-clients/5", "x"},
        {"POST", "/api/v1/imports", "bytes"},
    };
    auto ana = logged_in("ana");
    const auto before_users = users();
    for (const auto& c : cases) {
        const auto answer = std::string(c.method) == "GET" ? ana->get(c.target) : ana->write(c.method, c.target, c.body);
        EXPECT_EQ(answer.status, 403) << c.method << " " << c.target;
        EXPECT_EQ(json::parse(answer.body).value("status", 0), 403) << c.target;
    }
    EXPECT_EQ(users(), before_users);
    EXPECT_EQ(clients(), 0);
    EXPECT_EQ(audit_rows(), 0);
}

TEST_P(ServerSecurityTest, BodiesPastTheirLimitAreRefusedUnread)
{
    auto rui = logged_in("rui");
    const auto json_body = rui->write("POST", "/api/v1/clients/9", std::string(nimbara::serve::kJsonBodyLimit + 1, 'x'));
    EXPECT_EQ(json_body.status, 413);
    EXPECT_FALSE(json_body.header("content-security-policy").empty());
    EXPECT_EQ(clients(), 0);
    // An upload to /imports may be larger than a JSON body, up to its own limit.
    auto again = logged_in("rui");
    const auto upload = again->write("POST", "/api/v1/imports", std::string(2 * nimbara::serve::kJsonBodyLimit, 'y'));
    EXPECT_EQ(upload.status, 200);
    EXPECT_EQ(json::parse(upload.body)["body"].get<std::string>().size(), 2 * nimbara::serve::kJsonBodyLimit);
    const auto too_big = again->write("POST", "/api/v1/imports", std::string(nimbara::serve::kUploadBodyLimit + 1, 'z'));
    EXPECT_EQ(too_big.status, 413);
}

TEST_P(ServerSecurityTest, HostileTextComesBackAsJsonTextAndChangesNothingElse)
{
    const std::string hostile[] = {
        "'); DROP TABLE Tbl_Cliente; --",
        "<script>alert(1)</script>",
        "\" onmouseover=\"alert(1)",
        "Robert'); DELETE FROM Tbl_Utilizador; --",
    };
    auto rui = logged_in("rui");
    int code = 100;
    for (const auto& text : hostile) {
        // Kept exactly as sent, bound rather than spliced into the statement.
        ASSERT_EQ(rui->write("POST", "/api/v1/clients/" + std::to_string(++code), text).status, 201) << text;
        EXPECT_EQ(db->open("SELECT Nome FROM Tbl_Cliente WHERE Cod_Cliente = ?", {code})["Nome"].text(), text);
        // Shown back inside JSON, never as a page.
        const auto echoed = rui->get("/api/v1/echo/x/y?q=" + std::string("%3Cscript%3E"));
        EXPECT_EQ(echoed.header("content-type"), "application/json");
        EXPECT_EQ(json::parse(echoed.body)["query"]["q"], "<script>");
        // Refused as a user name, the refusal naming the field, the text inside a JSON string.
        const auto refused = rui->write("POST", "/api/v1/users", json{{"name", text}, {"password", "long enough"}, {"role", "clerk"}}.dump());
        EXPECT_EQ(refused.status, 422) << text;
        EXPECT_EQ(refused.header("content-type"), "application/json");
        EXPECT_EQ(refused.header("x-content-type-options"), "nosniff");
        const auto error = json::parse(refused.body);
        EXPECT_EQ(error["field"], "name");
        EXPECT_NE(error["error"].get<std::string>().find(text), std::string::npos);
        EXPECT_EQ(rui->login(text, text).status, 401) << text;
        advance(std::chrono::minutes(11));  // past the login limit's window
        rui = logged_in("rui");
    }
    EXPECT_EQ(clients(), std::size(hostile));
    EXPECT_EQ(users(), 2);
}

TEST_P(ServerSecurityTest, FailedLoginsAreLimitedPerNameAndPerAddress)
{
    auto tab1 = tab();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(tab1->login("ana", "wrong password").status, 401);
    // Limited now even with the right password, with the wait in Retry-After.
    const auto limited = tab1->login("ana", password_of("ana"));
    EXPECT_EQ(limited.status, 429);
    const int wait = std::stoi(limited.header("retry-after"));
    EXPECT_GT(wait, 0);
    EXPECT_LE(wait, 600);
    advance(std::chrono::seconds(wait));
    EXPECT_EQ(tab1->login("ana", password_of("ana")).status, 200);

    // One address trying many names is limited as well.
    advance(std::chrono::minutes(11));
    auto tab2 = tab();
    for (const char* name : {"x1", "x2", "x3"}) EXPECT_EQ(tab2->login(name, "guess guess").status, 401);
    EXPECT_EQ(tab2->login("rui", password_of("rui")).status, 429);
}

TEST_P(ServerSecurityTest, WritesThatSucceedAreAuditedWithWhoAndWhat)
{
    auto ana = logged_in("ana");
    ASSERT_EQ(ana->write("POST", "/api/v1/clients/12", "Loja").status, 201);
    EXPECT_EQ(ana->write("POST", "/api/v1/refused", "{}").status, 422);
    auto rui = logged_in("rui");
    ASSERT_EQ(rui->write("POST", "/api/v1/users", json{{"name", "eva"}, {"password", "long enough"}, {"role", "clerk"}}.dump()).status, 201);
    const auto rows = json::parse(rui->get("/api/v1/audit?limit=10").body);
    ASSERT_EQ(rows.size(), 2u) << rows;
    std::set<std::string> seen;
    for (const auto& row : rows) seen.insert(row["user"].get<std::string>() + ": " + row["action"].get<std::string>() + ": " + row["what"].get<std::string>());
    EXPECT_TRUE(seen.contains("ana: add client: client 12")) << rows;
    EXPECT_TRUE(seen.contains("rui: add user: user eva (clerk)")) << rows;
    EXPECT_EQ(rows[0]["at"].get<std::string>().size(), 19u);
    EXPECT_EQ(rui->get("/api/v1/audit?limit=0").status, 400);
    EXPECT_EQ(rui->get("/api/v1/audit?limit=ten").status, 400);
}

TEST_P(ServerSecurityTest, RoutesGetTheirDecodedParamsAndQuery)
{
    auto ana = logged_in("ana");
    const auto answer = ana->get("/api/v1/echo/a%20b/12?x=1&y=%C3%A9+z&flag");
    ASSERT_EQ(answer.status, 200) << answer.body;
    const auto body = json::parse(answer.body);
    EXPECT_EQ(body["params"], (json{{"first", "a b"}, {"second", "12"}}));
    EXPECT_EQ(body["query"], (json{{"x", "1"}, {"y", "é z"}, {"flag", ""}}));
    EXPECT_EQ(body["user"], "ana");
    EXPECT_EQ(body["admin"], false);
    struct Case { const char* method; const char* target; int status; };
    const Case cases[] = {
        {"GET", "/api/v1/nothing-here", 404},
        {"DELETE", "/api/v1/echo/a/b", 405},
        {"GET", "/api/v1/echo/a/b?x=%zz", 400},
        {"GET", "/api/v1/echo/a", 404},
        {"GET", "/api/v2/session", 404},
    };
    for (const auto& c : cases) {
        const auto refused = std::string(c.method) == "GET" ? ana->get(c.target) : ana->write(c.method, c.target);
        EXPECT_EQ(refused.status, c.status) << c.method << " " << c.target;
        EXPECT_EQ(json::parse(refused.body).value("status", 0), c.status) << c.target;
    }
}

TEST_P(ServerSecurityTest, UsersAreManagedByAnAdminAndNeverByThemselvesAway)
{
    auto rui = logged_in("rui");
    const json eva = {{"name", "eva"}, {"password", "long enough"}, {"role", "clerk"}};
    EXPECT_EQ(rui->write("POST", "/api/v1/users", eva.dump()).status, 201);
    EXPECT_EQ(rui->write("POST", "/api/v1/users", eva.dump()).status, 409);
    struct Case { json body; int status; const char* field; };
    const Case refused[] = {
        {{{"name", "ivo"}, {"password", "short"}, {"role", "clerk"}}, 422, "password"},
        {{{"name", "ivo"}, {"password", "long enough"}, {"role", "root"}}, 422, "role"},
        {{{"name", "ivo"}, {"password", "long enough"}}, 400, "role"},
        {{{"name", "ivo"}, {"password", "long enough"}, {"role", "clerk"}, {"admin", true}}, 400, "admin"},
        {{{"name", 7}, {"password", "long enough"}, {"role", "clerk"}}, 400, "name"},
    };
    for (const auto& c : refused) {
        const auto answer = rui->write("POST", "/api/v1/users", c.body.dump());
        EXPECT_EQ(answer.status, c.status) << c.body;
        EXPECT_EQ(json::parse(answer.body).value("field", ""), c.field) << c.body;
    }
    EXPECT_EQ(rui->write("POST", "/api/v1/users", "not json").status, 400);
    EXPECT_EQ(rui->write("DELETE", "/api/v1/users/rui").status, 409);
    EXPECT_EQ(rui->write("DELETE", "/api/v1/users/nobody").status, 404);
    EXPECT_EQ(rui->write("DELETE", "/api/v1/users/eva").status, 200);
    const auto listed = json::parse(rui->get("/api/v1/users").body);
    EXPECT_EQ(listed, (json{{{"name", "ana"}, {"role", "clerk"}}, {{"name", "rui"}, {"role", "admin"}}}));
}

INSTANTIATE_TEST_SUITE_P(Stores, ServerSecurityTest, kBothStores, store_name);

// Without users, on 127.0.0.1: no login, every caller an unnamed admin, writes still need the token;
// the first user added asks for a login from then on.
class ServerWithoutUsersTest : public ServeTest {};

TEST_P(ServerWithoutUsersTest, CallersAreUnnamedAdminsUntilTheFirstUser)
{
    start();
    auto t = tab();
    const auto session = t->session();
    EXPECT_EQ(session["login_required"], false);
    EXPECT_EQ(session["role"], "admin");
    EXPECT_EQ(session["user"], "");
    EXPECT_EQ(t->http.request("POST", "/api/v1/clients/3", "x").status, 403);
    EXPECT_EQ(t->write("POST", "/api/v1/admin-clients/3", "x").status, 201);
    const auto cookie = t->http.cookie;
    EXPECT_NE(t->http.cookie.find("nimbara_session="), std::string::npos);
    ASSERT_EQ(t->write("POST", "/api/v1/users", json{{"name", "ana"}, {"password", password_of("ana")}, {"role", "admin"}}.dump()).status, 201);
    EXPECT_EQ(t->get("/api/v1/users").status, 401);
    EXPECT_EQ(t->write("POST", "/api/v1/admin-clients/4", "x").status, 401);
    EXPECT_EQ(t->session()["login_required"], true);
    EXPECT_EQ(t->login("ana", password_of("ana")).status, 200);
    EXPECT_NE(t->http.cookie, cookie);  // a new id at login
    EXPECT_EQ(t->write("POST", "/api/v1/admin-clients/4", "x").status, 201);
    EXPECT_EQ(count("Tbl_Cliente"), 2);
}

TEST_P(ServerWithoutUsersTest, TheSessionCookieIsHttpOnlyAndStrict)
{
    start();
    auto t = tab();
    const auto answer = t->get("/api/v1/session");
    const std::string cookie = answer.header("set-cookie");
    EXPECT_NE(cookie.find("HttpOnly"), std::string::npos) << cookie;
    EXPECT_NE(cookie.find("SameSite=Strict"), std::string::npos) << cookie;
    EXPECT_EQ(cookie.find("Secure"), std::string::npos) << cookie;  // plain HTTP
    EXPECT_EQ(answer.header("cache-control"), "no-store");
}

INSTANTIATE_TEST_SUITE_P(Stores, ServerWithoutUsersTest, kBothStores, store_name);

}  // namespace
