// Many stations saving Guias into one database at once, and stations that die mid-save.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>
#include <random>
#include <thread>

#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "support/sample_entities.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::new_guia;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

namespace {

constexpr int kClients = 4;

// Runs `station` in a child process with a connection of its own; answers the child's id.
template <class F>
pid_t start_station(const std::string& conn, F station)
{
    const pid_t pid = ::fork();
    if (pid == 0) {
        int status = 1;
        try {
            status = station(OpenDatabase(conn));
        } catch (const std::exception& e) {
            std::cerr << "station " << ::getpid() << ": " << e.what() << '\n';
        }
        ::_exit(status);
    }
    return pid;
}

class StationsTest : public SeededStoreTest {
protected:
    void SetUp() override
    {
        SeededStoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        for (int id = 1; id <= kClients; ++id) nimbara::testing::store_client(db, id);
        db.reset();  // the children must not share the parent's connection
    }

    // Rows of a query: each is one fault.
    void expect_no_rows(Database& d, const std::string& sql, const std::string& what)
    {
        const Recordset rs = d.open(sql);
        EXPECT_EQ(rs.RecordCount(), 0) << what;
    }

    // Every Guia has `lines` lines of `services` services, and no line or service lacks its Guia.
    void expect_whole(Database& d, int lines, int services)
    {
        expect_no_rows(d, "SELECT N_Req FROM Tbl_Linha GROUP BY N_Req HAVING COUNT(*) <> " + std::to_string(lines),
                       "a Guia with a line too many or too few");
        expect_no_rows(d, "SELECT N_Req FROM Tbl_Cab WHERE N_Req NOT IN (SELECT N_Req FROM Tbl_Linha)",
                       "a Guia without lines");
        expect_no_rows(d,
                       "SELECT N_Req, N_Linha FROM Tbl_Linha_ServicoEspecial GROUP BY N_Req, N_Linha HAVING COUNT(*) <> " +
                           std::to_string(services),
                       "a line with a service too many or too few");
        expect_no_rows(d, "SELECT N_Req FROM Tbl_Linha WHERE N_Req NOT IN (SELECT N_Req FROM Tbl_Cab)",
                       "a line without its Guia");
    }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, StationsTest, kBothStores, store_name);

TEST_P(StationsTest, EightStationsSavingAtOnceNeverShareANumber)
{
    constexpr int kStations = 8, kEach = 200;
    std::vector<pid_t> stations;
    for (int s = 0; s < kStations; ++s)
        stations.push_back(start_station(scratch->conn(), [s](std::shared_ptr<Database> mine) {
            for (int i = 0; i < kEach; ++i) {
                auto g = new_guia(mine, 1 + (s + i) % kClients, 2, 1);
                if (!g->DoSaveNumerada()) {
                    std::cerr << "station " << s << ", Guia " << i << ": " << g->LastError() << '\n';
                    return 1;
                }
            }
            return 0;
        }));
    for (const pid_t pid : stations) {
        int status = 0;
        ::waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "a station failed";
    }

    db = OpenDatabase(scratch->conn());
    const Recordset totals = db->open("SELECT COUNT(*) AS N, COUNT(DISTINCT N_Req) AS D, MAX(N_Req) AS M FROM Tbl_Cab");
    EXPECT_EQ(totals["N"].integer(), kStations * kEach) << "no Guia lost";
    EXPECT_EQ(totals["D"].integer(), kStations * kEach) << "no N_Req shared";
    EXPECT_EQ(totals["M"].integer(), kStations * kEach) << "no N_Req skipped";
    // Per client, and per client and year: the numbers run from 1 without a duplicate or a gap.
    const std::string year = db->year_of("D_Req");
    for (const std::string& group : {std::string("Id_Cliente"), "Id_Cliente, " + year}) {
        expect_no_rows(*db,
                       "SELECT Id_Cliente FROM Tbl_Cab GROUP BY " + group +
                           " HAVING COUNT(DISTINCT N_Req2) <> COUNT(*) OR MIN(N_Req2) <> 1 OR MAX(N_Req2) <> COUNT(*)",
                       "N_Req2 by " + group);
        expect_no_rows(*db,
                       "SELECT Id_Cliente FROM Tbl_Cab GROUP BY " + group +
                           " HAVING COUNT(DISTINCT Id_Req_Anual) <> COUNT(*) OR MIN(Id_Req_Anual) <> 1 OR "
                           "MAX(Id_Req_Anual) <> COUNT(*)",
                       "Id_Req_Anual by " + group);
    }
    expect_whole(*db, 2, 1);
}

TEST_P(StationsTest, AStationKilledMidSaveLeavesOnlyWholeGuias)
{
    std::mt19937 random(12345);
    std::uniform_int_distribution<int> after_ms(0, 100);
    for (int round = 0; round < 10; ++round) {
        // The station says when its first Guia is stored, so that each kill lands in a running loop.
        int started[2];
        ASSERT_EQ(::pipe(started), 0);
        const pid_t station = start_station(scratch->conn(), [&started](std::shared_ptr<Database> mine) {
            ::close(started[0]);
            for (int i = 0;; ++i) {
                new_guia(mine, 1 + i % kClients, 3, 2)->DoSaveNumerada();
                if (i == 0 && ::write(started[1], "x", 1) != 1) return 1;
            }
            return 0;
        });
        ::close(started[1]);
        char byte = 0;
        EXPECT_EQ(::read(started[0], &byte, 1), 1) << "the station stored nothing";
        ::close(started[0]);
        std::this_thread::sleep_for(std::chrono::milliseconds(after_ms(random)));
        ::kill(station, SIGKILL);
        ::waitpid(station, nullptr, 0);
    }
    db = OpenDatabase(scratch->conn());
    if (GetParam() == nimbara::testing::Store::SQLite)
        EXPECT_EQ(db->open("PRAGMA integrity_check")[std::size_t{0}].text(), "ok");
    expect_whole(*db, 3, 2);
    // And the database takes the next Guia.
    auto next = new_guia(db, 1, 3, 2);
    EXPECT_TRUE(next->DoSaveNumerada()) << next->LastError();
}
