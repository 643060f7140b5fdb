#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "cli/db_program.hpp"
#include "support/guia_listing_rows.hpp"
#include "support/test_database.hpp"

using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

namespace {

class DbListingTest : public SeededStoreTest {
protected:
    void SetUp() override
    {
        SeededStoreTest::SetUp();
        if (!IsSkipped() && !HasFailure()) nimbara::testing::store_listing_guias(db);
    }
    nimbara::testing::Run program(const std::string& args) { return nimbara::testing::run_db(scratch->conn(), args); }
};

std::vector<std::string> split_lines(const std::string& text, const std::string& end = "\n")
{
    std::vector<std::string> lines;
    for (std::size_t at = 0, next; (next = text.find(end, at)) != std::string::npos; at = next + end.size())
        lines.push_back(text.substr(at, next - at));
    return lines;
}

const char* kHeader = "Req1\tReq2\tReq\tGuia\tN_linha\tData\tCliente\tNome\tContrato\tVelocidade\tProduto\tZona\tPeso\t"
                      "Formato\tAmbito\tQuantidade\tCodigoCampanha";

}  // namespace

INSTANTIATE_TEST_SUITE_P(Stores, DbListingTest, kBothStores, store_name);

TEST_P(DbListingTest, ListsInEachFormat)
{
    auto r = program("list --year 2024 --month 3");
    ASSERT_EQ(r.status, 0) << r.err;
    auto lines = split_lines(r.out);
    ASSERT_EQ(lines.size(), 4u) << r.out;
    EXPECT_EQ(lines[0], kHeader);
    EXPECT_EQ(lines[1].substr(0, 44), "10\t2\t10\t5\t1\t05/03/2024\t1001\tZé d'Almeida\t1\t") << lines[1];
    EXPECT_EQ(lines[3].substr(0, 3), "13\t");

    r = program("list --client 1002 --order 'quantidade desc' --format csv");
    ASSERT_EQ(r.status, 0) << r.err;
    lines = split_lines(r.out, "\r\n");
    ASSERT_EQ(lines.size(), 5u) << r.out;
    EXPECT_EQ(lines[0].substr(0, 15), "Req1,Req2,Req,G");
    EXPECT_EQ(lines[1].substr(0, 66), "12,1,12,7,3,01/12/2024,1002,\"Alfa, \"\"Lda\"\"\",1,\"0 - \",C01 - Produto")
        << "quoted where a spreadsheet would split or trim: " << lines[1];

    r = program("list --client 1002 --format json");
    ASSERT_EQ(r.status, 0) << r.err;
    const auto rows = nlohmann::ordered_json::parse(r.out);
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0]["Req"], 12);
    EXPECT_EQ(rows[0]["Nome"], "Alfa, \"Lda\"");
    EXPECT_EQ(rows[3]["Data"], "31/03/2024");
    EXPECT_EQ(rows[3].begin().key(), "Req1") << "the columns in the listing's order";

    r = program("list --year 2030 --format json");
    EXPECT_EQ(r.out, "[\n]\n") << "nothing found: no rows, not the grid's placeholder";
    EXPECT_EQ(program("list --year 2030").out, std::string(kHeader) + "\n");
}

TEST_P(DbListingTest, ExportsWithServices)
{
    auto r = program("export --format legacy --year 2024 --month 3 --sep '|'");
    ASSERT_EQ(r.status, 0) << r.err;
    auto lines = split_lines(r.out);
    ASSERT_EQ(lines.size(), 4u) << r.out;
    EXPECT_EQ(lines[0].substr(lines[0].size() - 33), "|CodigoCampanha|ServicosEspeciais");
    EXPECT_EQ(lines[3].substr(lines[3].size() - 17), "|CAMP| | | | | | ") << "a line without services";
    EXPECT_NE(lines[1].find("|CAMP|01 - "), std::string::npos) << lines[1];
    EXPECT_EQ(lines[1].substr(lines[1].size() - 6), "|3,00|");

    r = program("export --format legacy --client 1002 --sep ,");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_NE(r.out.find(",Alfa  \"Lda\","), std::string::npos) << "the separator inside a value becomes a blank";
}

TEST_P(DbListingTest, RefusesBadInput)
{
    struct Case { std::string args; std::string message; };
    const Case cases[] = {
        {"list --order 'peso; DROP TABLE Tbl_Linha'", "nimbara db list: the order \"peso; DROP TABLE Tbl_Linha\" has \";\""},
        {"list --order n_linha", "has \"_linha\", which is no word"},
        {"list --year dois", "the year \"dois\" is no whole number"},
        {"export --client x", "nimbara db export: the client number \"x\" is no whole number"},
        {"export --format legacy --sep ''", "--sep must not be empty"},
    };
    for (const auto& c : cases) {
        const auto r = program(c.args);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_EQ(r.out, "") << c.args << ": nothing half-written";
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << ": " << r.err;
    }
    EXPECT_NE(program("list --format xml").status, 0);
}
