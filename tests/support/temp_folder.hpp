#pragma once
// A fresh folder under the system's temporary folder, named after the running test and removed with
// the object, so that tests that write files never see each other's; and reading back what they wrote.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace nimbara::testing {

class TempFolder {
public:
    // A suite's shared folder names itself, as no test is running when it is made.
    explicit TempFolder(const std::string& name = ::testing::UnitTest::GetInstance()->current_test_info()->name())
        : path_(std::filesystem::temp_directory_path() / ("nimbara-" + std::to_string(::getpid()) + "-" + flat(name)))
    {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

    // Writes `bytes` to the file `name` in the folder; answers its path.
    std::string write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path_ / name, std::ios::binary) << bytes;
        return (path_ / name).string();
    }

private:
    // A parameterised test's name ends in "/0": kept, it would make a folder inside a folder that
    // the clean-up leaves behind.
    static std::string flat(std::string name)
    {
        std::replace(name.begin(), name.end(), '/', '_');
        return name;
    }

    std::filesystem::path path_;
};

// The whole of a file as bytes; the empty text when it cannot be read.
inline std::string read_file(const std::filesystem::path& p)
{
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace nimbara::testing
