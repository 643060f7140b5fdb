#include "platform/module_loader.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/cairo_pages.hpp"
#include "support/temp_folder.hpp"

using nimbara::platform::Module;
using nimbara::platform::ModuleError;

namespace {

// Whatever stands where a module should, the failure names the file and the loader's reason, and
// nothing is left half open.
TEST(ModuleLoader, WhatIsNotAModuleIsRefusedByNameAndReason)
{
    nimbara::testing::TempFolder folder;
    struct Case {
        std::string file;
        const char* reason;
    };
    const std::vector<Case> cases = {
        {"libnimbara-absent.so.5.3.15", "No such file"},
        {folder.write("libnimbara-text.so", std::string(200, 'x')), "invalid ELF header"},
        {folder.write("libnimbara-empty.so", ""), "file too short"},
        // A shared object, but one without the factory.
        {"libz.so.1", "undefined symbol: nimbara_cairo_pages"},
    };
    for (const auto& c : cases) {
        try {
            const Module module(c.file);
            module.entry<decltype(nimbara_cairo_pages)>("nimbara_cairo_pages");
            ADD_FAILURE() << c.file << " passed for a module";
        } catch (const ModuleError& e) {
            const std::string message = e.what();
            EXPECT_NE(message.find("\"" + c.file + "\""), std::string::npos) << message;
            EXPECT_NE(message.find(c.reason), std::string::npos) << message;
        }
    }
}

}  // namespace
