// The big old file once imported: the import says how many Guias will not print by the database
// edition, by cause, and db print of any of them either prints it or names the field and line of
// each cause, never a bare run-time error.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli_run.hpp"
#include "nimbara/Database.hpp"
#include "nimbara/Recordset.hpp"
#include "import/old_sources.hpp"
#include "support/temp_folder.hpp"

using namespace nimbara::testing;
namespace fs = std::filesystem;

TEST(ImportPrintability, EveryImportedGuiaPrintsOrNamesItsCauses)
{
    if (!jet_fixtures_present()) GTEST_SKIP() << kNoJetFixtures;
    TempFolder folder;
    const std::string db = " --db sqlite:" + (folder.path() / "big.db").string();
    ASSERT_EQ(run("db init" + db).status, 0);
    const auto imported = run("db import " + (kJetFixtures / "big-0514.mdb").string() + " --version 0514" + db);
    ASSERT_EQ(imported.status, 0) << imported.err;
    // The summary, by cause, with the first numbers of each.
    EXPECT_NE(imported.out.find(" of the 10000 Guias will not print by the database edition"), std::string::npos)
        << imported.out;
    for (const char* cause : {"Guias: Tbl_Cab.N_Credencial: longer than the 7 characters the barcode carries (N_Req 1, ",
                              "Guias: Tbl_Cab.N_Req: above 9999 (print with --edition array) (N_Req 10000, 10001, ",
                              "Guias: Tbl_Linha_ServicoEspecial.CodigoServicoEspecial: more than ten services"})
        EXPECT_NE(imported.out.find(cause), std::string::npos) << cause << "\n" << imported.out;
    EXPECT_EQ(imported.out.find("pages not laid out"), std::string::npos) << "every cause has its field\n" << imported.out;

    // A sample across the file, with Guias of each cause: printed whole, or each cause on a line of
    // its own as "place: what".
    const std::regex named(R"(  (Tbl_\w+\.\w+|line \d+(, service \w+)?: \w+): .+)");
    std::vector<std::int64_t> numbers;
    {
        auto all = nimbara::OpenDatabase("sqlite:" + (folder.path() / "big.db").string())
                       ->open("SELECT N_Req FROM Tbl_Cab ORDER BY N_Req");
        for (all.MoveFirst(); !all.IsEOF(); all.MoveNext()) numbers.push_back(all["N_Req"].integer());
    }
    ASSERT_EQ(numbers.size(), 10000u);
    std::vector<std::int64_t> sample;
    for (std::size_t i = 0; i < numbers.size(); i += 331) sample.push_back(numbers[i]);
    sample.push_back(numbers.back());
    int printed = 0, refused = 0;
    for (const std::int64_t n_req : sample) {
        const auto out = folder.path() / ("out" + std::to_string(n_req));
        const auto r = run("db print " + std::to_string(n_req) + " -q --out-dir " + out.string() + " --print-log " +
                           (folder.path() / "p.log").string() + db);
        if (r.status == 0) {
            ++printed;
            EXPECT_FALSE(fs::is_empty(out)) << n_req;
            continue;
        }
        ++refused;
        EXPECT_EQ(r.status, 2) << n_req << ": " << r.err;
        EXPECT_EQ(r.err.find("Erro:"), std::string::npos) << n_req << ": " << r.err;
        std::istringstream lines(r.err);
        std::string line;
        std::getline(lines, line);
        EXPECT_EQ(line, "nimbara db print: Guia " + std::to_string(n_req) + " not printed:") << r.err;
        while (std::getline(lines, line)) EXPECT_TRUE(std::regex_match(line, named)) << n_req << ": " << line;
        EXPECT_FALSE(fs::exists(out) && !fs::is_empty(out)) << n_req;
    }
    EXPECT_GT(printed, 0);
    EXPECT_GT(refused, 0);
    // The Guia whose services overflow the form's cells, named by its line and service.
    const auto overflow = run("db print 129 --out-dir " + folder.path().string() + db);
    EXPECT_NE(overflow.err.find("  line 7, service 06: CodigoServicoEspecial: the form's service cells are full"),
              std::string::npos)
        << overflow.err;
}
