#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>

#include "platform/jet_source.hpp"
#include "support/temp_folder.hpp"

using nimbara::platform::is_null;
using nimbara::platform::OldDatabaseError;
using nimbara::platform::OldDateTime;
using nimbara::platform::OldRow;
using nimbara::platform::OldValue;
using nimbara::platform::open_jet_database;
using nlohmann::json;

namespace {

const std::filesystem::path kFixtures = NIMBARA_SOURCE_DIR "/../shared/fixtures/jet";
constexpr const char* kNoFixtures = "the Jet fixtures in ../shared/fixtures/jet are absent";

bool fixtures_present() { return std::filesystem::is_directory(kFixtures); }

json read_json(const std::string& name)
{
    std::ifstream in(kFixtures / (name + ".json"));
    return json::parse(in);
}

// A value in the form the fixtures' JSON writes it; dumped, so that 5 and 5.0 stay apart.
std::string as_json(const OldValue& value)
{
    return std::visit(
        [](const auto& v) -> std::string {
            using T = std::decay_t<decltype(v)>;
            if constexpr (std::is_same_v<T, std::monostate>) return json(nullptr).dump();
            else if constexpr (std::is_same_v<T, OldDateTime>) return json(to_string(v)).dump();
            else return json(v).dump();
        },
        value);
}

std::size_t characters(const std::string& utf8)
{
    return static_cast<std::size_t>(std::ranges::count_if(utf8, [](char c) { return (c & 0xC0) != 0x80; }));
}

std::vector<OldRow> read_all(nimbara::platform::OldTableReader& reader)
{
    std::vector<OldRow> rows;
    for (OldRow row; reader.next(row);) rows.push_back(row);
    return rows;
}

int column_index(const std::vector<std::string>& columns, const std::string& name)
{
    return static_cast<int>(std::ranges::find(columns, name) - columns.begin());
}

}  // namespace

// The fixtures hold what a reading through libmdb's bound text gets wrong: Null beside the empty text,
// remarks of 22101 characters, dates, quotes, tabs, line breaks, accents and the euro sign.
TEST(JetSource, EveryFixtureReadsValueForValueAsItsJson)
{
    if (!fixtures_present()) GTEST_SKIP() << kNoFixtures;
    for (const char* name : {"v0501", "v0502", "v0506", "v0512", "v0512-plain", "v0513", "v0513-noservices", "v0514"}) {
        const json expected = read_json(name);
        const auto db = open_jet_database(kFixtures / (std::string(name) + ".mdb"));
        std::vector<std::string> tables;
        for (const auto& [table, _] : expected["tables"].items()) tables.push_back(table);
        auto stored = db->table_names();
        std::ranges::sort(tables);
        std::ranges::sort(stored);
        EXPECT_EQ(stored, tables) << name;

        for (const auto& [table, content] : expected["tables"].items()) {
            const std::string where = std::string(name) + " " + table;
            const auto reader = db->open_table(table);
            ASSERT_EQ(reader->column_names(), content["columns"].get<std::vector<std::string>>()) << where;
            const auto rows = read_all(*reader);
            ASSERT_EQ(rows.size(), content["rows"].size()) << where;
            for (std::size_t r = 0; r < rows.size(); ++r)
                for (std::size_t c = 0; c < rows[r].size(); ++c)
                    ASSERT_EQ(as_json(rows[r][c]), content["rows"][r][c].dump())
                        << where << " row " << r << " column " << reader->column_names()[c];
        }
    }
}

TEST(JetSource, BigFileStreamsToItsTotals)
{
    if (!fixtures_present()) GTEST_SKIP() << kNoFixtures;
    const json expected = read_json("big-0514");
    const auto db = open_jet_database(kFixtures / "big-0514.mdb");
    std::map<std::string, std::int64_t> totals{{"min_N_Req", std::numeric_limits<std::int64_t>::max()}};
    const auto most = [&](const char* name, std::int64_t n) { totals[name] = std::max(totals[name], n); };
    OldDateTime first_date{9999, 12, 31}, last_date{};
    for (const auto& [table, content] : expected["tables"].items()) {
        const auto reader = db->open_table(table);
        std::size_t count = 0;
        for (OldRow row; reader->next(row); ++count) {
            const auto at = [&](const char* name) -> const OldValue& { return row[column_index(reader->column_names(), name)]; };
            const auto number = [&](const char* name) { return std::get<std::int64_t>(at(name)); };
            if (table == "TBL_CLIENTE") {
                totals["count_clients_with_apostrophe"] += std::get<std::string>(at("Nome")).find('\'') != std::string::npos;
            } else if (table == "TBL_CAB") {
                most("max_N_Req", number("N_Req"));
                totals["min_N_Req"] = std::min(totals["min_N_Req"], number("N_Req"));
                totals["sum_N_Req2"] += number("N_Req2");
                totals["sum_Id_Req_Anual"] += number("Id_Req_Anual");
                totals["count_CodigoTerceiro_null"] += is_null(at("CodigoTerceiro"));
                if (const auto* remark = std::get_if<std::string>(&at("Observacoes")))
                    most("max_len_Observacoes_TBL_CAB", std::int64_t(characters(*remark)));
                first_date = std::min(first_date, std::get<OldDateTime>(at("D_Req")));
                last_date = std::max(last_date, std::get<OldDateTime>(at("D_Req")));
            } else if (table == "TBL_LINHA") {
                totals["sum_D_Quantidade"] += number("D_Quantidade");
                totals["sum_C_Escalao"] += number("C_Escalao");
                most("max_N_Linha", number("N_Linha"));
                totals["count_CodigoCampanha_null"] += is_null(at("CodigoCampanha"));
            } else if (table == "TBL_LINHA_SERVICOESPECIAL") {
                totals["count_services"] += 1;
                totals["sum_Valor"] += std::stoll(std::get<std::string>(at("Valor")));
            }
        }
        EXPECT_EQ(count, content["row_count"].get<std::size_t>()) << table;
    }
    for (const auto& [name, value] : expected["checks"].items()) {
        if (name == "first_D_Req") EXPECT_EQ(to_string(first_date), value) << name;
        else if (name == "last_D_Req") EXPECT_EQ(to_string(last_date), value) << name;
        else EXPECT_EQ(totals.at(name), value.get<std::int64_t>()) << name;
    }
}

TEST(JetSource, TablesAreFoundWithoutRegardToCaseAndReadIndependently)
{
    if (!fixtures_present()) GTEST_SKIP() << kNoFixtures;
    auto db = open_jet_database(kFixtures / "v0512.mdb");
    EXPECT_EQ(db->find_table("tbl_Cab"), "TBL_CAB");
    EXPECT_EQ(db->find_table("TBL_CABX"), std::nullopt);
    try {
        db->open_table("TBL_GUIA");
        ADD_FAILURE() << "a missing table was opened";
    } catch (const OldDatabaseError& e) {
        EXPECT_NE(std::string(e.what()).find("TBL_GUIA"), std::string::npos) << e.what();
        EXPECT_NE(std::string(e.what()).find("v0512.mdb"), std::string::npos) << e.what();
    }

    const auto heads = read_all(*db->open_table("TBL_CAB"));
    const auto lines = read_all(*db->open_table("TBL_LINHA"));
    // Two readers stepped in turn, outliving the database they came from, see what each sees alone.
    auto head_reader = db->open_table("tbl_cab");
    auto line_reader = db->open_table("tbl_linha");
    db.reset();
    std::vector<OldRow> heads_again, lines_again;
    for (OldRow row; line_reader->next(row);) {
        lines_again.push_back(row);
        if (head_reader->next(row)) heads_again.push_back(row);
    }
    // Whole rows are compared with == so that a failure does not print a table of long remarks.
    EXPECT_TRUE(heads_again == heads) << heads_again.size() << " heads read in turn, " << heads.size() << " alone";
    EXPECT_TRUE(lines_again == lines) << lines_again.size() << " lines read in turn, " << lines.size() << " alone";
}

TEST(JetSource, FilesThatCannotBeReadWholeAreRefusedByName)
{
    nimbara::testing::TempFolder folder;
    struct Case { std::filesystem::path file; const char* reason; };
    std::vector<Case> cases = {
        {folder.path() / "absent.mdb", "does not exist"},
        {folder.write("empty.mdb", ""), "is empty"},
        {folder.write("text.mdb", "Cod_Cliente;Nome\n1;Livraria\n"), "is not a Jet database file"},
        {folder.write("short.mdb", "\x01\x01\x01\x01Standard"), "is not a Jet database file"},
        {folder.path(), "is not a file"},
    };
    // A file cut short must not pass for one with fewer rows.
    if (fixtures_present()) {
        std::ifstream in(kFixtures / "v0512.mdb", std::ios::binary);
        const std::string whole{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        cases.push_back({folder.write("first-page.mdb", whole.substr(0, 4096)), "its list of tables cannot be read"});
        cases.push_back({folder.write("cut-in-guias.mdb", whole.substr(0, 150000)), "TBL_CAB: only 0 of its 14 rows can be read"});
        cases.push_back({folder.write("cut-in-remark.mdb", whole.substr(0, 200000)), "TBL_CAB, column Observacoes: a page of a memo"});
    }
    for (const auto& c : cases) {
        try {
            const auto db = open_jet_database(c.file);
            for (const auto& table : db->table_names()) read_all(*db->open_table(table));
            ADD_FAILURE() << c.file << " was read";
        } catch (const OldDatabaseError& e) {
            const std::string message = e.what();
            EXPECT_NE(message.find(c.file.string()), std::string::npos) << message;
            EXPECT_NE(message.find(c.reason), std::string::npos) << message;
        }
    }
}
