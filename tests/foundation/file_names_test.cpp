#include <gtest/gtest.h>

#include <system_error>
#include <thread>
#include <vector>

#include <filesystem>
#include <fstream>

#include "nimbara/GlobalFrameWork.hpp"
#include "support/temp_folder.hpp"

namespace gf = nimbara::GlobalFrameWork;
namespace fs = std::filesystem;
using nimbara::testing::TempFolder;

// The name's shape is checked on the reports themselves (validation_report_test).
TEST(FileNames, UniqueNameIsInTheFolderUntilACollision)
{
    TempFolder dir;
    const std::string first = gf::GetUniqueFileName(dir.path().string());
    EXPECT_EQ(fs::path(first).parent_path(), dir.path());

    // Occupy every name this hundredth of a second can produce: the retry stays in the folder.
    for (int attempt = 0; attempt < 50; ++attempt) {
        std::ofstream(dir.path() / gf::GeraNomeFicheiro()).put('x');
        EXPECT_EQ(fs::path(gf::GetUniqueFileName(dir.path().string())).parent_path(), dir.path());
    }
}

// Reports finished together, in threads of one process, each get a file of their own in the folder.
TEST(FileNames, ReportsWrittenAtOnceNeverReplaceOneAnother)
{
    TempFolder dir;
    constexpr int kReports = 24;
    std::vector<fs::path> paths(kReports);
    std::vector<std::thread> writers;
    for (int i = 0; i < kReports; ++i)
        writers.emplace_back([&, i] { paths[i] = gf::WriteUniqueReport(dir.path(), "report " + std::to_string(i)); });
    for (auto& w : writers) w.join();
    for (int i = 0; i < kReports; ++i) {
        EXPECT_EQ(paths[i].parent_path(), dir.path());
        EXPECT_EQ(nimbara::testing::read_file(paths[i]), "report " + std::to_string(i) + "\r\n");
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), kReports)
        << "no temporary is left";
    EXPECT_THROW(gf::WriteUniqueReport(dir.path() / "missing", "x"), std::system_error);
}

TEST(FileNames, FileExistsAndWriteReplacesWholeAndFailsCleanly)
{
    TempFolder dir;
    const fs::path file = dir.path() / "report.txt";
    EXPECT_FALSE(gf::FileExists(file));
    EXPECT_FALSE(gf::FileExists(dir.path())) << "a folder has no length";
    std::ofstream(file).close();
    EXPECT_TRUE(gf::FileExists(file)) << "an empty file exists";

    ASSERT_TRUE(gf::EscreveFicheiro(file, "old contents that are longer"));
    ASSERT_TRUE(gf::EscreveFicheiro(file, "new"));
    EXPECT_EQ(nimbara::testing::read_file(file), "new\r\n");
    EXPECT_FALSE(gf::EscreveFicheiro(dir.path() / "no-such-folder" / "x.txt", "x"));
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator{}), 1);  // no leftovers
}
