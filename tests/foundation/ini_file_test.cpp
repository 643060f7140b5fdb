#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "foundation/chars.hpp"
#include "foundation/ini_file.hpp"

namespace fs = std::filesystem;
using nimbara::ini::GetPrivateProfileString;

TEST(IniFile, ReadsLikeTheProfileReader)
{
    const auto file = fs::temp_directory_path() / ("nimbara-ini-" + std::to_string(::getpid()) + ".ini");
    std::ofstream(file) << "; settings\r\n[Other]\r\nConn=wrong\r\n[NimbarAuto]\r\n  conn =  \"sqlite:guia.db\"  \r\n"
                           "DirBD=/var/guia\r\nEmpty=\r\n[nimbarauto]\r\nLater=never read\r\n";
    struct Case { const char *section, *key, *def; std::size_t buffer; const char* expected; };
    const Case cases[] = {
        {"Nimbarauto", "Conn", "", 400, "sqlite:guia.db"},       // case-insensitive, blanks and quotes off
        {"NIMBARAUTO", "DIRBD", "", 400, "/var/guia"},
        {"Nimbarauto", "DirBD", "", 5, "/var"},                  // cut to the buffer less one
        {"Nimbarauto", "Empty", "dflt", 400, ""},                // present and empty is not missing
        {"Nimbarauto", "Missing", "dflt  ", 400, "dflt"},        // default without trailing blanks
        {"Nimbarauto", "Later", "dflt", 400, "dflt"},            // the first section of a name wins
        {"Absent", "Conn", "", 400, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(GetPrivateProfileString(c.section, c.key, c.def, c.buffer, file), c.expected) << c.key;
    EXPECT_EQ(GetPrivateProfileString("Nimbarauto", "Conn", "x", 400, file.string() + ".missing"), "x");
    fs::remove(file);
}

TEST(IniFile, SettingsFileFollowsXdg)
{
    const char* saved = std::getenv("XDG_CONFIG_HOME");
    ::setenv("XDG_CONFIG_HOME", "/tmp/cfg", 1);
    EXPECT_EQ(nimbara::ini::user_settings_file("ZartelDesk"), fs::path("/tmp/cfg/ZartelDesk/settings.ini"));
    ::setenv("XDG_CONFIG_HOME", "relative", 1);
    EXPECT_EQ(nimbara::ini::user_settings_file("ZartelDesk"),
              fs::path(std::getenv("HOME")) / ".config/ZartelDesk/settings.ini");
    saved ? ::setenv("XDG_CONFIG_HOME", saved, 1) : ::unsetenv("XDG_CONFIG_HOME");
}

TEST(Chars, SlicesCountCharacters)
{
    using namespace nimbara::chars;
    EXPECT_EQ(length("Observações"), 11u);
    EXPECT_EQ(mid("Observações", 8, 2), "çõ");
    EXPECT_EQ(mid("abc", 4, 2), "");
    EXPECT_EQ(mid("abc", 2, 100), "bc");
    EXPECT_THROW(mid("abc", 0, 1), std::out_of_range);
    EXPECT_EQ(left("ção", 1), "ç");
    EXPECT_EQ(right("ção", 1), "o");
    EXPECT_EQ(right("ab", 5), "ab");
}
