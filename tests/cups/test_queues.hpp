#pragma once
// The CUPS scheduler scripts/with-cups starts for the run: whether it is there, and the document of
// a job as the scheduler spooled it.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <stdlib.h>
#include <filesystem>
#include <optional>
#include <string>

#include "support/temp_folder.hpp"

namespace nimbara::testing {

// The scheduler's folder, when one runs for the tests: the one scripts/with-cups names, else the one
// the test fixture starts for this build.
inline std::optional<std::filesystem::path> test_cups()
{
    const char* named = std::getenv("NIMBARA_TEST_CUPS");
    const std::filesystem::path dir = named ? named : NIMBARA_TEST_CUPS_FOLDER;
    if (!std::filesystem::exists(dir / "cups.sock")) return std::nullopt;
    return dir;
}

// The document of the job as the queue received it (the scheduler keeps it after printing).
inline std::string spooled(int job)
{
    char name[32];
    std::snprintf(name, sizeof name, "d%05d-001", job);
    return read_file(*test_cups() / "spool" / name);
}

// Points this process, and the programs it runs, at the test scheduler; false when there is none.
inline bool use_test_cups()
{
    const auto dir = test_cups();
    if (dir) ::setenv("CUPS_SERVER", (*dir / "cups.sock").c_str(), 1);
    return dir.has_value();
}

class QueueTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!use_test_cups()) GTEST_SKIP() << "NO CUPS SCHEDULER FOR THE TESTS (scripts/with-cups starts one)";
    }
};

}  // namespace nimbara::testing
