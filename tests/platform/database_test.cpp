#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "nimbara/Database.hpp"
#include "support/temp_folder.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::StoreTest;

class DatabaseTest : public StoreTest {};
INSTANTIATE_TEST_SUITE_P(Stores, DatabaseTest, kBothStores, store_name);

TEST_P(DatabaseTest, ValuesComeBackWithTheirKind)
{
    db->execute("CREATE TABLE T (Id INTEGER, S SMALLINT, Txt VARCHAR(50), Yes BOOLEAN, D TIMESTAMP)");
    struct Case { FieldValue s; FieldValue txt; FieldValue yes; FieldValue d; };
    const Case cases[] = {
        {7, "O'Neil; DROP TABLE T", true, Timestamp{2024, 3, 15}},
        {-3, "Açores – Madeira €", false, Timestamp{1999, 12, 31, 23, 59, 58}},
        {0, "", false, Timestamp{2024, 2, 29}},
        {nullptr, nullptr, nullptr, nullptr},
    };
    int id = 0;
    for (const auto& c : cases) db->execute("INSERT INTO T VALUES (?, ?, ?, ?, ?)", {++id, c.s, c.txt, c.yes, c.d});

    Recordset rs = db->open("SELECT Id, S, Txt, Yes, D FROM T ORDER BY Id");
    ASSERT_EQ(rs.RecordCount(), 4);
    for (const auto& c : cases) {
        SCOPED_TRACE(rs["Id"].text());
        EXPECT_EQ(rs["S"], c.s);
        EXPECT_EQ(rs["Txt"], c.txt) << "the empty text is no Null, and an apostrophe is data";
        EXPECT_EQ(rs["Yes"], c.yes);
        EXPECT_EQ(rs["D"], c.d);
        rs.MoveNext();
    }

    // Columns without a declared type still read as numbers.
    Recordset sums = db->open("SELECT SUM(S) AS Total, MAX(Id) AS Top, COUNT(*) AS N FROM T");
    EXPECT_EQ(sums["Total"].kind(), ValueKind::Number);
    EXPECT_EQ(sums["Total"].integer(), 4);
    EXPECT_EQ(sums["Top"].integer(), 4);
    EXPECT_EQ(sums["N"].integer(), 4);
}

TEST_P(DatabaseTest, RecordsetMovesAndClosesAsItsHostsExpect)
{
    db->execute("CREATE TABLE T (N_Req INTEGER, Nome VARCHAR(20))");
    Recordset empty = db->open("SELECT * FROM T");
    EXPECT_TRUE(empty.IsBOF() && empty.IsEOF());
    EXPECT_EQ(empty.FieldCount(), 2u) << "the fields are known without a record";
    EXPECT_THROW(empty["N_Req"], DatabaseError) << "no current record";

    db->execute("INSERT INTO T VALUES (1, 'a'), (2, 'b')");
    Recordset rs = db->open("SELECT N_Req, Nome FROM T ORDER BY N_Req");
    EXPECT_FALSE(rs.IsBOF());
    EXPECT_EQ(rs["n_req"].integer(), 1) << "names are found without regard to case";
    EXPECT_EQ(rs.Fields(1).Value.text(), "a");
    EXPECT_EQ(rs[std::size_t{0}].integer(), 1);
    rs.MoveNext();
    rs.MoveNext();
    EXPECT_TRUE(rs.IsEOF());
    EXPECT_THROW(rs.MoveNext(), DatabaseError);
    rs.MoveFirst();
    EXPECT_EQ(rs["NOME"].text(), "a");
    EXPECT_THROW(rs["Missing"], DatabaseError);

    EXPECT_EQ(rs.State(), Recordset::adStateOpen);
    rs.Close();
    EXPECT_EQ(rs.State(), Recordset::adStateClosed);
    EXPECT_THROW(rs.RecordCount(), DatabaseError);
}

TEST_P(DatabaseTest, TransactionsKeepAllOrNothing)
{
    db->execute("CREATE TABLE T (N INTEGER PRIMARY KEY)");
    {
        Transaction t(*db);
        db->execute("INSERT INTO T VALUES (1)");
    }
    EXPECT_EQ(count("T"), 0) << "not committed: rolled back";
    {
        Transaction outer(*db);
        db->execute("INSERT INTO T VALUES (1)");
        {
            Transaction inner(*db);
            db->execute("INSERT INTO T VALUES (2)");
        }
        EXPECT_THROW(outer.commit(), DatabaseError) << "an inner part failed";
    }
    EXPECT_EQ(count("T"), 0);
    {
        Transaction outer(*db);
        db->execute("INSERT INTO T VALUES (1)");
        Transaction inner(*db);
        db->execute("INSERT INTO T VALUES (2)");
        inner.commit();
        outer.commit();
    }
    EXPECT_EQ(count("T"), 2);
    EXPECT_FALSE(db->in_transaction());
}

TEST_P(DatabaseTest, StreamedRowsAreTheHeldRows)
{
    db->execute("CREATE TABLE T (Id INTEGER, Txt VARCHAR(20))");
    db->execute("INSERT INTO T VALUES (1, 'a'), (2, NULL), (3, 'O''Neil')");
    const auto streamed = [&](std::string_view sql, std::initializer_list<FieldValue> values) {
        std::vector<std::string> names;
        std::vector<std::vector<FieldValue>> rows;
        db->stream(sql, std::span<const FieldValue>(values.begin(), values.size()),
                   {.columns = [&](std::span<const std::string> n) { names.assign(n.begin(), n.end()); },
                    .row = [&](std::span<FieldValue> v) { rows.emplace_back(v.begin(), v.end()); }});
        return std::pair(names, rows);
    };
    struct Case { const char* sql; std::initializer_list<FieldValue> values; };
    const Case cases[] = {
        {"SELECT Id, Txt FROM T ORDER BY Id", {}},
        {"SELECT Id AS \"Req\", Txt FROM T WHERE Id > ? ORDER BY Id DESC", {1}},
        {"SELECT Id, Txt FROM T WHERE Id > ?", {9}},  // no row: the columns alone
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sql);
        const auto [names, rows] = streamed(c.sql, c.values);
        Recordset held = db->open(c.sql, std::span<const FieldValue>(c.values.begin(), c.values.size()));
        ASSERT_EQ(names.size(), held.FieldCount());
        for (std::size_t i = 0; i < names.size(); ++i) EXPECT_EQ(names[i], held.FieldName(i));
        ASSERT_EQ(static_cast<std::int64_t>(rows.size()), held.RecordCount());
        for (const auto& row : rows) {
            for (std::size_t i = 0; i < row.size(); ++i) EXPECT_EQ(row[i], held[i]);
            held.MoveNext();
        }
    }

    // A failing query and a sink that gives up both leave the connection ready for the next.
    EXPECT_THROW(streamed("SELECT * FROM Tbl_Nowhere", {}), DatabaseError);
    EXPECT_THROW(db->stream("SELECT Id FROM T", {},
                            {.columns = [](auto) {}, .row = [](auto) { throw DatabaseError("the reader gave up"); }}),
                 DatabaseError);
    EXPECT_EQ(count("T"), 3);
}

TEST_P(DatabaseTest, QueuedStatementsRunInOrderAndFailWithTheirTransaction)
{
    db->execute("CREATE TABLE T (N INTEGER PRIMARY KEY, Txt VARCHAR(20))");

    db->execute_queued("INSERT INTO T VALUES (?, ?)", {1, "outside"});
    EXPECT_EQ(count("T"), 1) << "outside a transaction a statement runs at once";

    {
        // More than a queue holds, a replacement that depends on the order, then a query.
        Transaction t(*db);
        for (int n = 2; n <= 600; ++n) db->execute_queued("INSERT INTO T VALUES (?, ?)", {n, "x"});
        db->execute_queued("DELETE FROM T WHERE N = ?", {1});
        db->execute_queued("INSERT INTO T VALUES (?, ?)", {1, "replaced"});
        EXPECT_EQ(count("T"), 600);
        t.commit();
    }
    EXPECT_EQ(db->open("SELECT Txt FROM T WHERE N = 1")["Txt"].text(), "replaced");

    // A duplicate key in the middle fails the save (at the statement or at the commit, as the store
    // sends them) and nothing of it stays.
    const auto save = [&](bool commit) {
        Transaction t(*db);
        db->execute_queued("INSERT INTO T VALUES (?, ?)", {601, "new"});
        db->execute_queued("INSERT INTO T VALUES (?, ?)", {5, "twice"});
        db->execute_queued("INSERT INTO T VALUES (?, ?)", {602, "new"});
        if (commit) t.commit();
    };
    EXPECT_THROW(save(true), DatabaseError);
    EXPECT_EQ(count("T"), 600);
    try {
        save(false);  // abandoned with the failure perhaps still queued: the rollback reads it
    } catch (const DatabaseError&) {
    }
    db->execute("INSERT INTO T VALUES (?, ?)", {700, "after"});
    EXPECT_EQ(count("T"), 601);
}

TEST_P(DatabaseTest, ATableChangedAfterAQueryIsReadAsItIsNow)
{
    db->execute("CREATE TABLE T (A INTEGER)");
    db->execute("INSERT INTO T VALUES (1)");
    EXPECT_EQ(db->open("SELECT * FROM T").FieldCount(), 1u);
    db->execute("ALTER TABLE T ADD COLUMN B VARCHAR(5)");
    EXPECT_EQ(db->open("SELECT * FROM T").FieldCount(), 2u) << "a statement kept from before sees the new column";
}

TEST_P(DatabaseTest, FailuresCarryTheStoresOwnMessage)
{
    try {
        db->open("SELECT * FROM Tbl_Nowhere");
        FAIL();
    } catch (const DatabaseError& e) {
        const std::string m = e.what();
        EXPECT_TRUE(m.find("no such table") != std::string::npos || m.find("does not exist") != std::string::npos) << m;
        EXPECT_NE(m.find("Tbl_Nowhere"), std::string::npos) << m;
    }
}

TEST_P(DatabaseTest, DialectAnswersTheDateQuestions)
{
    db->execute("CREATE TABLE T (D TIMESTAMP)");
    db->execute("INSERT INTO T VALUES (?)", {Timestamp{2023, 11, 4, 10, 30, 0}});
    Recordset parts = db->open("SELECT " + db->year_of("D") + " AS Y, " + db->month_of("D") + " AS M, " +
                               db->date_text("D", DateText::Iso) + " AS Iso, " +
                               db->date_text("D", DateText::DaySlashed) + " AS Slashed, " +
                               db->date_text("D", DateText::DayDashed) + " AS Dashed FROM T");
    EXPECT_EQ(parts["Y"].integer(), 2023);
    EXPECT_EQ(parts["M"].integer(), 11);
    EXPECT_EQ(parts["Iso"].text(), "2023-11-04");
    EXPECT_EQ(parts["Slashed"].text(), "04/11/2023");
    EXPECT_EQ(parts["Dashed"].text(), "04-11-2023");

    db->execute("CREATE TABLE B (Yes BOOLEAN)");
    db->execute("INSERT INTO B VALUES (?), (?), (?)", {true, false, true});
    const auto yes = db->open("SELECT COUNT(*) AS N FROM B WHERE Yes = " + std::string(db->boolean_literal(true)));
    EXPECT_EQ(yes["N"].integer(), 2);
}

TEST(OpenDatabase, RefusesWhatItCannotUseAndNamesIt)
{
    nimbara::testing::TempFolder folder("open-database");
    const auto junk = folder.path() / "junk.db";
    std::ofstream(junk) << "these bytes are no database, and there are enough of them to be read as a header...";
    const auto missing = folder.path() / "missing.db";
    struct Case { std::string conn; std::string message; };
    const Case cases[] = {
        {"", "it is empty"},
        {"guias.db", "expected sqlite:PATH"},
        {"sqlite:", "no file after"},
        {"Provider=Microsoft.Jet.OLEDB.4.0;Mode=Share", "no \"Data Source\""},
        {"sqlite:" + missing.string(), "does not exist"},
        {"Provider=Microsoft.Jet.OLEDB.4.0;Data Source = " + junk.string(), "not a database"},
        {"sqlite:" + folder.path().string(), "is a folder"},
        {"postgresql:host=" + folder.path().string() + " port=1", "cannot reach the PostgreSQL server"},
    };
    for (const auto& c : cases) {
        try {
            OpenDatabase(c.conn);
            ADD_FAILURE() << c.conn;
        } catch (const DatabaseError& e) {
            EXPECT_NE(std::string(e.what()).find(c.message), std::string::npos) << c.conn << ": " << e.what();
        }
    }
    EXPECT_FALSE(std::filesystem::exists(missing)) << "nothing is created when opening";
}

TEST(OpenDatabase, TakesEveryFormOfAFileName)
{
    nimbara::testing::TempFolder folder("open-forms");
    const std::string file = (folder.path() / "g.db").string();
    OpenDatabase("sqlite:" + file, OpenMode::Create)->execute("CREATE TABLE T (N INTEGER)");
    for (const auto& conn : {"sqlite:" + file, "  sqlite: " + file + " ",
                                   "Provider=Microsoft.Jet.OLEDB.4.0;Data Source = " + file,
                                   "provider=microsoft.jet.oledb.4.0; data source=" + file + ";Persist Security Info=False"})
        EXPECT_TRUE(OpenDatabase(conn)->has_table("t")) << conn;
    if (::geteuid() != 0) {  // the superuser writes to any file
        ::chmod(file.c_str(), 0444);
        EXPECT_THROW(OpenDatabase("sqlite:" + file), DatabaseError) << "a read-only file is refused";
    }
}
