#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "foundation/file_names.hpp"
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

    // Occupy every name this hundredth of a second can produce, in the folder only: the retry is a bare name.
    const auto cwd = fs::current_path();
    fs::current_path(dir.path());
    std::string retried;
    for (int attempt = 0; attempt < 200 && retried.empty(); ++attempt) {
        std::ofstream(dir.path() / gf::GeraNomeFicheiro()).put('x');
        const std::string got = gf::GetUniqueFileName(dir.path().string());
        if (fs::path(got).parent_path().empty()) retried = got;
    }
    fs::current_path(cwd);
    EXPECT_FALSE(retried.empty()) << "no collision was provoked";
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
