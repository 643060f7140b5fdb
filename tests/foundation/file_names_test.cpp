#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

#include "foundation/file_names.hpp"

namespace gf = nimbara::GlobalFrameWork;
namespace fs = std::filesystem;

namespace {

struct TempDir {
    fs::path path = fs::temp_directory_path() / ("nimbara-test-" + std::to_string(::getpid()) + "-" +
                                                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
    TempDir() { fs::create_directories(path); }
    ~TempDir() { fs::remove_all(path); }
};

}  // namespace

TEST(FileNames, ReportNameHasItsFixedPieces)
{
    const std::regex shape(R"(ErrosGuia_\d{14}\d{2}\d{1,2}\.txt)");
    for (int i = 0; i < 50; ++i) {
        const std::string name = gf::GeraNomeFicheiro();
        EXPECT_TRUE(std::regex_match(name, shape)) << name;
        EXPECT_TRUE(name.size() == 31 || name.size() == 32) << name;
    }
    for (int i = 0; i < 50; ++i) {
        const int n = gf::RandomNumber();
        EXPECT_GE(n, 0);
        EXPECT_LE(n, 99);
    }
}

TEST(FileNames, UniqueNameIsInTheFolderUntilACollision)
{
    TempDir dir;
    const std::string first = gf::GetUniqueFileName(dir.path.string());
    EXPECT_EQ(fs::path(first).parent_path(), dir.path);

    // Occupy every name this hundredth of a second can produce, in the folder only: the retry is a bare name.
    const auto cwd = fs::current_path();
    fs::current_path(dir.path);
    std::string retried;
    for (int attempt = 0; attempt < 200 && retried.empty(); ++attempt) {
        const std::string name = gf::GeraNomeFicheiro();
        std::ofstream(dir.path / name).put('x');
        const std::string got = gf::GetUniqueFileName(dir.path.string());
        if (fs::path(got).parent_path().empty()) retried = got;
    }
    fs::current_path(cwd);
    EXPECT_FALSE(retried.empty()) << "no collision was provoked";
}

TEST(FileNames, EmptyFileExistsAndMissingOneDoesNot)
{
    TempDir dir;
    std::ofstream(dir.path / "empty").close();
    EXPECT_TRUE(gf::FileExists(dir.path / "empty"));
    EXPECT_FALSE(gf::FileExists(dir.path / "missing"));
    EXPECT_FALSE(gf::FileExists(dir.path));  // a folder has no length
}

TEST(FileNames, WriteReplacesWholeAndFailsCleanly)
{
    TempDir dir;
    const fs::path file = dir.path / "report.txt";
    ASSERT_TRUE(gf::EscreveFicheiro(file, "old contents that are longer"));
    ASSERT_TRUE(gf::EscreveFicheiro(file, "new"));
    std::ifstream in(file, std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), {});
    EXPECT_EQ(text, "new\r\n");

    EXPECT_FALSE(gf::EscreveFicheiro(dir.path / "no-such-folder" / "x.txt", "x"));
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path), fs::directory_iterator{}), 1);  // no leftovers
}
