#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>

#include "platform/jet_source.hpp"
#include "support/temp_folder.hpp"

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

// What a reading through libmdb's bound text gets wrong, looked at one value at a time.
TEST(JetSource, ValuesThatBoundTextLosesComeWhole)
{
    if (!fixtures_present()) GTEST_SKIP() << kNoFixtures;
    const auto text = [](std::string t) { return [t](const OldValue& v) { return v == OldValue(t); }; };
    const auto long_text = [](const OldValue& v) {
        return std::holds_alternative<std::string>(v) && characters(std::get<std::string>(v)) == 22101;
    };
    const auto date = [](int y, int m, int d) { return [=](const OldValue& v) { return v == OldValue(OldDateTime{y, m, d}); }; };
    const auto null = [](const OldValue& v) { return nimbara::platform::is_null(v); };
    struct Case { const char* file; const char* table; const char* key_column; std::int64_t key; const char* column;
                  std::function<bool(const OldValue&)> holds; };
    const Case cases[] = {
        {"v0501", "TBL_CLIENTE", "Cod_Cliente", 69971, "NContribuinte", null},
        {"v0501", "TBL_CLIENTE", "Cod_Cliente", 71862, "NContribuinte", text("")},
        {"v0501", "TBL_CLIENTE", "Cod_Cliente", 71862, "Observacoes", long_text},
        {"v0502", "TBL_CAB", "N_Req", 10, "Observacoes", long_text},
        {"v0506", "TBL_CLIENTE", "Cod_Cliente", 91742, "Observacoes", long_text},
        {"v0512", "TBL_CAB", "N_Req", 211, "Observacoes", long_text},
        {"v0513", "TBL_CLIENTE", "Cod_Cliente", 23421, "Observacoes", long_text},
        {"v0513-noservices", "TBL_CAB", "N_Req", 11, "Observacoes", long_text},
        {"v0514", "TBL_CAB", "N_Req", 408, "Observacoes", long_text},
        {"v0501", "TBL_CAB", "N_Req", 7, "Observacoes", text("Conferir lote \"B-12\"\tantes da expedição; contactar D. Conceição")},
        {"v0501", "TBL_CAB", "N_Req", 13, "Observacoes", text("Valor total estimado: 1.250,75 €")},
        {"v0501", "TBL_CAB", "N_Req", 1, "D_Req", date(2004, 2, 3)},
        {"v0501", "TBL_CAB", "N_Req", 6, "D_Req", date(2004, 12, 31)},
        {"v0514", "TBL_CLIENTE", "Cod_Cliente", 63796, "Nome", text("Livraria D'Ouro")},
        {"v0513", "TBL_CLIENTE", "Cod_Cliente", 23421, "iAcessoRede", [](const OldValue& v) { return v == OldValue(std::int64_t{1}); }},
    };
    for (const auto& c : cases) {
        const std::string where = std::string(c.file) + " " + c.table + " " + std::to_string(c.key) + " " + c.column;
        const auto reader = open_jet_database(kFixtures / (std::string(c.file) + ".mdb"))->open_table(c.table);
        const int key = column_index(reader->column_names(), c.key_column);
        const int column = column_index(reader->column_names(), c.column);
        std::optional<OldValue> found;
        for (OldRow row; !found && reader->next(row);)
            if (row[key] == OldValue(c.key)) found = row[column];
        ASSERT_TRUE(found) << where;
        EXPECT_TRUE(c.holds(*found)) << where << ": " << as_json(*found).substr(0, 100);
    }
}

TEST(JetSource, BigFileStreamsToItsTotals)
{
    if (!fixtures_present()) GTEST_SKIP() << kNoFixtures;
    const json expected = read_json("big-0514");
    const auto db = open_jet_database(kFixtures / "big-0514.mdb");
    std::map<std::string, json> totals;
    const auto add = [&](const char* name, std::int64_t n) { totals[name] = totals[name].get<std::int64_t>() + n; };
    for (const char* name : {"sum_D_Quantidade", "sum_C_Escalao", "count_services", "sum_Valor", "sum_N_Req2",
                             "sum_Id_Req_Anual", "max_N_Linha", "count_CodigoTerceiro_null", "count_CodigoCampanha_null",
                             "count_clients_with_apostrophe", "max_len_Observacoes_TBL_CAB", "max_N_Req"})
        totals[name] = 0;
    totals["min_N_Req"] = std::numeric_limits<std::int64_t>::max();
    OldDateTime first_date{9999, 12, 31}, last_date{};

    for (const auto& [table, content] : expected["tables"].items()) {
        const auto reader = db->open_table(table);
        const auto& columns = reader->column_names();
        const auto at = [&](const OldRow& row, const char* name) -> const OldValue& { return row[column_index(columns, name)]; };
        const auto number = [&](const OldRow& row, const char* name) { return std::get<std::int64_t>(at(row, name)); };
        std::size_t count = 0;
        for (OldRow row; reader->next(row); ++count) {
            if (table == "TBL_CLIENTE") {
                add("count_clients_with_apostrophe", std::get<std::string>(at(row, "Nome")).find('\'') != std::string::npos);
            } else if (table == "TBL_CAB") {
                const auto n = number(row, "N_Req");
                totals["max_N_Req"] = std::max(totals["max_N_Req"].get<std::int64_t>(), n);
                totals["min_N_Req"] = std::min(totals["min_N_Req"].get<std::int64_t>(), n);
                add("sum_N_Req2", number(row, "N_Req2"));
                add("sum_Id_Req_Anual", number(row, "Id_Req_Anual"));
                add("count_CodigoTerceiro_null", nimbara::platform::is_null(at(row, "CodigoTerceiro")));
                if (const auto* remark = std::get_if<std::string>(&at(row, "Observacoes")))
                    totals["max_len_Observacoes_TBL_CAB"] = std::max(totals["max_len_Observacoes_TBL_CAB"].get<std::size_t>(), characters(*remark));
                const auto date = std::get<OldDateTime>(at(row, "D_Req"));
                first_date = std::min(first_date, date);
                last_date = std::max(last_date, date);
            } else if (table == "TBL_LINHA") {
                add("sum_D_Quantidade", number(row, "D_Quantidade"));
                add("sum_C_Escalao", number(row, "C_Escalao"));
                totals["max_N_Linha"] = std::max(totals["max_N_Linha"].get<std::int64_t>(), number(row, "N_Linha"));
                add("count_CodigoCampanha_null", nimbara::platform::is_null(at(row, "CodigoCampanha")));
            } else if (table == "TBL_LINHA_SERVICOESPECIAL") {
                add("count_services", 1);
                add("sum_Valor", std::stoll(std::get<std::string>(at(row, "Valor"))));
            }
        }
        EXPECT_EQ(count, content["row_count"].get<std::size_t>()) << table;
    }
    totals["first_D_Req"] = to_string(first_date);
    totals["last_D_Req"] = to_string(last_date);
    for (const auto& [name, value] : expected["checks"].items()) EXPECT_EQ(totals[name], value) << name;
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
    const auto write = [&](const char* name, const std::string& bytes) {
        std::ofstream(folder.path() / name, std::ios::binary) << bytes;
        return folder.path() / name;
    };
    struct Case { std::filesystem::path file; const char* reason; };
    std::vector<Case> cases = {
        {folder.path() / "absent.mdb", "does not exist"},
        {write("empty.mdb", ""), "is empty"},
        {write("text.mdb", "Cod_Cliente;Nome\n1;Livraria\n"), "is not a Jet database file"},
        {write("short.mdb", "\x01\x01\x01\x01Standard"), "is not a Jet database file"},
        {folder.path(), "is not a file"},
    };
    // A file cut short must not pass for one with fewer rows.
    if (fixtures_present()) {
        std::ifstream in(kFixtures / "v0512.mdb", std::ios::binary);
        const std::string whole{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
        cases.push_back({write("first-page.mdb", whole.substr(0, 4096)), "its list of tables cannot be read"});
        cases.push_back({write("cut-in-guias.mdb", whole.substr(0, 150000)), "TBL_CAB: only 0 of its 14 rows can be read"});
        cases.push_back({write("cut-in-remark.mdb", whole.substr(0, 200000)), "TBL_CAB, column Observacoes: a page of a memo"});
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
