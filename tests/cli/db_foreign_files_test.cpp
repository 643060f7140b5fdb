// A database that is not the program's is refused and left exactly as it was; files that cannot be
// read are named with the place where they stop making sense.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cli/db_program.hpp"
#include "nimbara/Schema.hpp"
#include "support/temp_folder.hpp"

namespace nimbara::testing {
namespace {

// FNV-1a over the file's bytes.
std::uint64_t checksum(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::uint64_t h = 14695981039346656037ull;
    for (std::istreambuf_iterator<char> it(in), end; it != end; ++it)
        h = (h ^ static_cast<unsigned char>(*it)) * 1099511628211ull;
    return h;
}

TEST(DbForeignFiles, AForeignOrEmptyFileIsRefusedAndLeftByteForByte)
{
    TempFolder folder("foreign-db");
    const auto foreign = folder.path() / "ledger.db";
    {
        // Another program's file, with the default rollback journal.
        auto db = OpenDatabase("sqlite:" + foreign.string(), OpenMode::Create);
        db->execute("PRAGMA journal_mode=DELETE");
        db->execute("CREATE TABLE Ledger (Entry INTEGER, Memo TEXT)");
        db->execute("INSERT INTO Ledger VALUES (1, 'kept')");
    }
    const auto empty = folder.path() / "empty.db";
    std::ofstream(empty).close();
    const auto before = checksum(foreign);

    struct Case {
        std::filesystem::path file;
        std::string args;
        const char* message;
    };
    const std::string guia = example("valid-guia.json");
    const Case cases[] = {
        {foreign, "list", "ledger.db: not a Guia database: run nimbara db init"},
        {foreign, "show 1", "not a Guia database: run nimbara db init"},
        {foreign, "params", "not a Guia database"},
        {foreign, "save " + guia, "not a Guia database"},
        {foreign, "check 1", "not a Guia database"},
        {foreign, "delete 1", "ledger.db: not a Guia database: run nimbara db init"},
        {foreign, "client delete 1 --json", "ledger.db: not a Guia database: run nimbara db init"},
        {foreign, "init", "holds tables of its own (Ledger); nothing was changed (give --into-existing"},
        {empty, "list", "empty.db: not a Guia database: run nimbara db init"},
        {empty, "params set GuiaNVias=2", "not a Guia database"},
    };
    for (const auto& c : cases) {
        const nimbara::testing::Run r = run_db("sqlite:" + c.file.string(), c.args);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << ": " << r.err;
    }
    // Named by a plain path, the same file is refused the same way.
    const nimbara::testing::Run plain = run_db(foreign.string(), "client delete 1");
    EXPECT_EQ(plain.status, 2);
    EXPECT_NE(plain.err.find("ledger.db: not a Guia database: run nimbara db init"), std::string::npos) << plain.err;
    EXPECT_EQ(checksum(foreign), before) << "the foreign file is byte for byte as it was";
    EXPECT_EQ(std::filesystem::file_size(empty), 0u) << "the empty file stays empty";
    for (const char* suffix : {"-wal", "-shm", "-journal"})
        EXPECT_FALSE(std::filesystem::exists(foreign.string() + suffix)) << suffix;

    // Told so, init adds the Guia tables beside the other program's.
    EXPECT_EQ(run_db("sqlite:" + foreign.string(), "init --into-existing").status, 0);
    EXPECT_EQ(run_db("sqlite:" + foreign.string(), "list").status, 0);
    EXPECT_EQ(OpenDatabase("sqlite:" + foreign.string())->open("SELECT Memo FROM Ledger")["Memo"].text(), "kept");
}

// On either store a database without the schema is refused before anything is written, and init
// keeps out of another program's tables unless told.
class ForeignDatabaseTest : public StoreTest {};
INSTANTIATE_TEST_SUITE_P(Stores, ForeignDatabaseTest, kBothStores, store_name);

TEST_P(ForeignDatabaseTest, IsRecognisedBeforeAnythingIsWritten)
{
    EXPECT_THROW(OpenGuiaDatabase(scratch->conn()), NotGuiaDatabaseError);
    db->execute("CREATE TABLE ledger (entry INTEGER)");
    try {
        CreateSchema(*db);
        ADD_FAILURE() << "the schema was built among another program's tables";
    } catch (const ForeignTablesError& e) {
        EXPECT_NE(std::string(e.what()).find("ledger"), std::string::npos) << e.what();
    }
    EXPECT_FALSE(db->has_table("Tbl_Cab"));
    EXPECT_THROW(OpenGuiaDatabase(scratch->conn()), NotGuiaDatabaseError);
    CreateSchema(*db, SchemaPlace::IntoExisting);
    EXPECT_TRUE(IsGuiaDatabase(*OpenGuiaDatabase(scratch->conn())));
}

// Client and Guia files that are no files, are cut short, malformed or not UTF-8 are named with
// their place, never with the parser's or the stream's own words.
class DbFileMessagesTest : public DbProgramTest {};
INSTANTIATE_TEST_SUITE_P(Stores, DbFileMessagesTest, kBothStores, store_name);

TEST_P(DbFileMessagesTest, NameTheFileAndThePlace)
{
    TempFolder folder("db-file-messages");
    const auto write = [&](const std::string& name, const std::string& text) {
        const auto path = folder.path() / name;
        std::ofstream(path, std::ios::binary) << text;
        return path.string();
    };
    const std::string dir = folder.path().string();
    struct Case {
        std::string args;
        std::string message;
    };
    const Case cases[] = {
        {"client save " + dir, dir + ": is a folder, not a file"},
        {"client save " + write("cut.json", "{\"vCod_Cliente\": \"12\", \"vNome\": \"Ana"),
         "cut.json: parse error at line 1, column"},
        {"client save " + write("bad.json", "{\"vCod_Cliente\": \"12\",\n \"vNome\": nope}"),
         "bad.json: parse error at line 2, column"},
        {"client save " + write("latin1.json", "{\"vCod_Cliente\": \"12\", \"vNome\": \"\xC9vora\"}"),
         "latin1.json: parse error at line 1, column"},
        {"client save " + write("huge.json", "{\"vCod_Cliente\": \"12\", \"iTipoCliente\": 18446744073709551615}"),
         "/iTipoCliente: expected a whole number from -32768 to 32767, found 18446744073709551615"},
        {"client save " + write("nocode.json", "{\"vCod_Cliente\": \"12\", \"contratos\": [{\"vDesignacao\": \"x\"}]}"),
         "/contratos/0: vCodContrato is missing: a contract needs its code"},
        {"client save " + write("wide.json", "{\"vCod_Cliente\": \"12\", \"vNome\": \"" + std::string(101, 'n') + "\"}"),
         "wide.json: nothing was stored: client 12: Tbl_Cliente.Nome: 101 characters"},
        {"save " + dir, dir + ": is a folder, not a file"},
        {"save " + write("cut-guia.json", "{\"cabecalho\": {\"cb_CodCliente\": \"4"), "cut-guia.json: line 1, column"},
        {"save " + write("latin1-guia.json", "{\"cabecalho\": {\"cb_Obs\": \"\xC9vora\"}}"),
         "latin1-guia.json: line 1, column"},
    };
    for (const auto& c : cases) {
        const nimbara::testing::Run r = program(c.args);
        EXPECT_EQ(r.status, 2) << c.args;
        EXPECT_NE(r.err.find(c.message), std::string::npos) << c.args << ": " << r.err;
        for (const char* foreign : {"json.exception", "basic_filebuf", "underflow", "basic_string"})
            EXPECT_EQ(r.err.find(foreign), std::string::npos) << c.args << ": " << r.err;
    }
    EXPECT_EQ(program("client list").out.find("\t12\t"), std::string::npos) << "no client was stored";

    // A name given as a number near 2^64 keeps its digits.
    const nimbara::testing::Run r = program("client save " + write("digits.json", "{\"vCod_Cliente\": \"13\", \"vNome\": 18446744073709551615}"));
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_NE(program("client show 13").out.find("\"18446744073709551615\""), std::string::npos);
}

}  // namespace
}  // namespace nimbara::testing
