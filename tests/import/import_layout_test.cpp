// An old file's layout is told from its tables and their columns, and a procedure refuses a file of
// a layout it does not read before anything is written.
#include <gtest/gtest.h>

#include <algorithm>

#include "import/old_sources.hpp"
#include "nimbara/cls_Importacao.hpp"
#include "support/temp_folder.hpp"

namespace nimbara::testing {
namespace {

TEST(ImportLayout, EachFixtureIsRecognisedAsTheLayoutItsRowsSay)
{
    if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
    TempFolder folder;
    for (const char* file : {"v0501.mdb", "v0502.mdb", "v0506.mdb", "v0512.mdb", "v0512-plain.mdb", "v0513.mdb",
                             "v0513-noservices.mdb", "v0514.mdb", "big-0514.mdb"}) {
        SCOPED_TRACE(file);
        const auto expected = fixture_rows(file);
        const ImportFileLayout found = RecogniseImportLayout(kJetFixtures / file);
        ASSERT_TRUE(found.Layout) << found.Tables;
        EXPECT_EQ(found.Layout->Name, expected["layout"]);
        // The versions a file stands for are among those its layout fits; the procedure of each is one
        // that reads the layout.
        for (const auto& v : expected["versions"])
            EXPECT_NE(std::ranges::find(found.Layout->Versions, v.get<std::string>()), found.Layout->Versions.end()) << v;
        for (const auto& p : found.Layout->Procedures) EXPECT_TRUE(ImportProcedureReads(p, found.Layout->Name)) << p;
        // The same rows in a SQLite file have the same layout.
        if (std::string(file).starts_with("big")) continue;
        const auto sqlite = folder.path() / (std::string(file) + ".sqlite");
        write_sqlite_source(sqlite, expected["tables"]);
        const ImportFileLayout same = RecogniseImportLayout(sqlite);
        ASSERT_TRUE(same.Layout);
        EXPECT_EQ(same.Layout->Name, found.Layout->Name);
    }
}

TEST(ImportLayout, TablesOfNoKnownLayoutAreDescribed)
{
    if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
    TempFolder folder;
    auto tables = fixture_rows("v0513.mdb")["tables"];
    tables.erase("TBL_LINHA_SERVICOESPECIAL");
    for (auto& row : tables["TBL_CAB"]["rows"]) row.erase(row.end() - 1);
    tables["TBL_CAB"]["columns"].erase(tables["TBL_CAB"]["columns"].end() - 1);
    write_sqlite_source(folder.path() / "odd.sqlite", tables);
    const ImportFileLayout found = RecogniseImportLayout(folder.path() / "odd.sqlite");
    EXPECT_FALSE(found.Layout);
    EXPECT_EQ(found.Tables, "TBL_CLIENTE 11 columns, TBL_CONTRATO 10, TBL_CAB 15, TBL_LINHA 19, "
                            "TBL_LINHA_SERVICOESPECIAL missing");
}

TEST(ImportLayout, EveryVersionBelongsToOneLayoutAndTheDispatchAgrees)
{
    std::vector<std::string> seen;
    for (const auto& layout : ImportLayouts()) {
        ASSERT_EQ(layout.Versions.size(), layout.Procedures.size()) << layout.Name;
        for (std::size_t i = 0; i < layout.Versions.size(); ++i) {
            EXPECT_EQ(std::ranges::count(seen, layout.Versions[i]), 0) << layout.Versions[i];
            seen.push_back(layout.Versions[i]);
            // The versions ImportaDados dispatches run the procedure it runs.
            if (const auto dispatched = ImportProcedureFor(layout.Versions[i]))
                EXPECT_EQ(*dispatched, layout.Procedures[i]) << layout.Versions[i];
        }
    }
    for (const char* v : {"05083", "0509", "0510", "0511", "0512", "0513", "0514", "0501", "0508"})
        EXPECT_EQ(std::ranges::count(seen, std::string(v)), 1) << v;
}

}  // namespace
}  // namespace nimbara::testing
