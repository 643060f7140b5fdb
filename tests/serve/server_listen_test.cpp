// Where the server may listen: loopback freely, any other address only once users exist.
#include "serve_fixture.hpp"

using namespace nimbara::testing;
using nimbara::serve::ListenAddress;
using nimbara::serve::parse_listen_address;
using nimbara::serve::ServerError;

namespace {

TEST(ListenAddress, IsReadAsAddressAndPortOrRefusedNamingTheText)
{
    struct Case {
        const char* text;
        const char* host;  // nullptr: refused
        int port;
    };
    const Case cases[] = {
        {"127.0.0.1:8080", "127.0.0.1", 8080}, {"0.0.0.0:0", "0.0.0.0", 0}, {"localhost:65535", "localhost", 65535},
        {"[::1]:8443", "::1", 8443},           {"[::]:80", "::", 80},       {"127.0.0.1", nullptr, 0},
        {"127.0.0.1:", nullptr, 0},            {":8080", nullptr, 0},       {"127.0.0.1:65536", nullptr, 0},
        {"127.0.0.1:-1", nullptr, 0},          {"127.0.0.1:80x", nullptr, 0}, {"::1:8080", nullptr, 0},
        {"[::1]8080", nullptr, 0},             {"[]:8080", nullptr, 0},
    };
    for (const auto& c : cases) {
        if (c.host) {
            const ListenAddress a = parse_listen_address(c.text);
            EXPECT_EQ(a.host, c.host) << c.text;
            EXPECT_EQ(a.port, c.port) << c.text;
        } else {
            try {
                parse_listen_address(c.text);
                ADD_FAILURE() << c.text << " was accepted";
            } catch (const ServerError& e) {
                EXPECT_NE(std::string(e.what()).find(c.text), std::string::npos) << e.what();
            }
        }
    }
}

class ServerListenTest : public ServeTest {};

TEST_P(ServerListenTest, AnAddressBeyondLoopbackNeedsUsers)
{
    try {
        start({"0.0.0.0", 0});
        ADD_FAILURE() << "started on 0.0.0.0 without users";
    } catch (const ServerError& e) {
        EXPECT_NE(std::string(e.what()).find("nimbara users add"), std::string::npos) << e.what();
    }
    for (const char* loopback : {"127.0.0.1", "localhost"}) {
        start({loopback, 0});
        EXPECT_GT(server->port(), 0) << loopback;
        EXPECT_EQ(tab()->get("/api/v1/session").status, 200) << loopback;
    }
    add_user("rui", nimbara::serve::Role::admin);
    start({"0.0.0.0", 0});
    auto t = tab();
    EXPECT_EQ(t->session()["login_required"], true);
    EXPECT_EQ(t->get("/api/v1/echo/a/b").status, 401);
}

TEST_P(ServerListenTest, APortInUseIsRefusedWithTheAddress)
{
    start();
    const int taken = server->port();
    nimbara::serve::ServerSettings again;
    again.conn = scratch->conn();
    again.listen = {"127.0.0.1", taken};
    try {
        nimbara::serve::Server second(std::move(again));
        ADD_FAILURE() << "two servers on one port";
    } catch (const ServerError& e) {
        EXPECT_NE(std::string(e.what()).find(std::to_string(taken)), std::string::npos) << e.what();
    }
}

INSTANTIATE_TEST_SUITE_P(Stores, ServerListenTest, kBothStores, store_name);

}  // namespace
