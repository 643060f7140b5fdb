// Where files go when nobody names a place, and with which permissions they are made.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

#include "nimbara/GlobalFrameWork.hpp"
#include "support/temp_folder.hpp"

namespace gf = nimbara::GlobalFrameWork;
namespace fs = std::filesystem;
using nimbara::testing::TempFolder;

namespace {

// Sets or unsets an environment variable for the life of the object.
class Environment {
public:
    Environment(const char* name, const std::optional<std::string>& value) : name_(name)
    {
        if (const char* was = std::getenv(name)) was_ = was;
        value ? ::setenv(name, value->c_str(), 1) : ::unsetenv(name);
    }
    ~Environment() { was_ ? ::setenv(name_, was_->c_str(), 1) : ::unsetenv(name_); }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    const char* name_;
    std::optional<std::string> was_;
};

}  // namespace

TEST(DefaultPlaces, ThePrintLogLivesInTheUsersStateFolder)
{
    struct Case {
        std::optional<std::string> state, home;
        std::string log;
    };
    const Case cases[] = {
        {"/srv/state", "/home/ana", "/srv/state/nimbara/nimbara.log"},
        {std::nullopt, "/home/ana", "/home/ana/.local/state/nimbara/nimbara.log"},
        {"", "/home/ana", "/home/ana/.local/state/nimbara/nimbara.log"},
        {"relative/state", "/home/ana", "/home/ana/.local/state/nimbara/nimbara.log"},
    };
    for (const auto& c : cases) {
        Environment state("XDG_STATE_HOME", c.state), home("HOME", c.home);
        EXPECT_EQ(gf::DefaultPrintLog(), fs::path(c.log)) << c.state.value_or("unset");
    }
    EXPECT_EQ(gf::DefaultOutputFolder(), fs::current_path());
}

// Reports and PDFs are published through the same temporary; its permissions are what the umask allows.
TEST(DefaultPlaces, FilesGetThePermissionsTheUmaskAllows)
{
    TempFolder dir;
    for (const mode_t mask : {mode_t{022}, mode_t{077}, mode_t{002}}) {
        const mode_t before = ::umask(mask);
        const fs::path report = gf::WriteUniqueReport(dir.path(), "x");
        ::umask(before);
        struct stat st {};
        ASSERT_EQ(::stat(report.c_str(), &st), 0);
        EXPECT_EQ(st.st_mode & 0777, 0666 & ~mask) << "umask " << std::oct << mask;
    }
}
