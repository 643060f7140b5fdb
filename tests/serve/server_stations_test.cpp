// Many stations on one PostgreSQL database: twenty browser sessions, each its own connection and
// cookie, save Guias through the API at once; every Guia is kept, under numbers of its own.
#include "serve_fixture.hpp"

#include <fstream>
#include <set>
#include <sstream>
#include <thread>

#include "serve/routes.hpp"

using namespace nimbara::testing;
using nlohmann::json;

namespace {

std::string example(const char* name)
{
    std::ifstream in(std::string(NIMBARA_SOURCE_DIR) + "/examples/" + name);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

class ServerStationsTest : public ServeTest {};

TEST_P(ServerStationsTest, TwentySessionsSaveGuiasAtOnceWithoutACollisionOrALoss)
{
    constexpr int kStations = 20;
    constexpr int kEach = 5;
    nimbara::serve::ServerSettings s;
    s.conn = scratch->conn();
    s.listen = {"127.0.0.1", 0};
    s.threads = kStations + 4;
    s.routes = nimbara::serve::api_routes();
    server = std::make_unique<nimbara::serve::Server>(std::move(s));
    {
        Tab admin(server->port());
        admin.session();
        ASSERT_EQ(admin.write("POST", "/api/v1/clients", example("client.json")).status, 201);
    }
    const std::string guia = example("valid-guia.json");

    std::vector<std::vector<json>> saved(kStations);
    std::vector<std::string> failures(kStations);
    std::vector<std::thread> stations;
    for (int i = 0; i < kStations; ++i)
        stations.emplace_back([&, i] {
            try {
                Tab tab(server->port());
                tab.session();
                for (int n = 0; n < kEach; ++n) {
                    const auto answer = tab.write("POST", "/api/v1/guias", guia);
                    if (answer.status != 201) {
                        failures[i] = std::to_string(answer.status) + " " + answer.body;
                        return;
                    }
                    saved[i].push_back(json::parse(answer.body));
                }
            } catch (const std::exception& e) {
                failures[i] = e.what();
            }
        });
    for (auto& t : stations) t.join();

    std::set<std::int64_t> numbers, yearly;
    for (int i = 0; i < kStations; ++i) {
        EXPECT_EQ(failures[i], "") << "station " << i;
        for (const auto& answer : saved[i]) {
            EXPECT_TRUE(numbers.insert(answer["N_Req"].get<std::int64_t>()).second) << answer;
            EXPECT_TRUE(yearly.insert(answer["Id_Req_Anual"].get<std::int64_t>()).second) << answer;
        }
    }
    EXPECT_EQ(numbers.size(), std::size_t{kStations * kEach});
    EXPECT_EQ(count("Tbl_Cab"), kStations * kEach);
    // Every saved Guia has all its lines.
    const auto lines = count("Tbl_Linha");
    EXPECT_EQ(lines % (kStations * kEach), 0);
    EXPECT_GT(lines, 0);
}

INSTANTIATE_TEST_SUITE_P(Stores, ServerStationsTest, ::testing::Values(Store::PostgreSQL), store_name);

}  // namespace
