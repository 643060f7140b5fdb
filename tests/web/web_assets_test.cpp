// The embedded pages as the server will hand them out: every file typed by its name, the scripts and
// styles under hashed names that index.html refers to, and each gzip copy the same bytes.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <string>

#include "assets.hpp"
#include "support/temp_folder.hpp"

namespace {

using nimbara::serve::Asset;
using nimbara::serve::web_assets;

const Asset* find(std::string_view path)
{
    for (const auto& a : web_assets())
        if (a.path == path) return &a;
    return nullptr;
}

std::string gunzip(std::string_view packed, const std::filesystem::path& work)
{
    const auto file = work / "asset.gz";
    std::ofstream(file, std::ios::binary).write(packed.data(), static_cast<std::streamsize>(packed.size()));
    std::string out;
    if (FILE* pipe = popen(("gzip -dc " + file.string()).c_str(), "r")) {
        char buffer[4096];
        for (std::size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) out.append(buffer, n);
        if (pclose(pipe) != 0) return "<gzip failed>";
    }
    return out;
}

TEST(WebAssets, EveryFileCarriesTheContentTypeOfItsName)
{
    const std::map<std::string, std::string> type_of{
        {"html", "text/html; charset=utf-8"}, {"js", "text/javascript; charset=utf-8"},
        {"css", "text/css; charset=utf-8"},   {"svg", "image/svg+xml"}};
    ASSERT_FALSE(web_assets().empty());
    for (const auto& a : web_assets()) {
        const std::string path(a.path);
        const auto ext = path.substr(path.rfind('.') + 1);
        ASSERT_TRUE(type_of.contains(ext)) << path;
        EXPECT_EQ(a.content_type, type_of.at(ext)) << path;
        EXPECT_FALSE(a.bytes.empty()) << path;
    }
}

TEST(WebAssets, IndexNamesHashedScriptAndStyleThatAreEmbedded)
{
    const Asset* index = find("/index.html");
    ASSERT_NE(index, nullptr);
    const std::string html(index->bytes);
    const std::regex ref(R"re((src|href)="(/assets/app-[A-Z0-9]{8}\.(js|css))")re");
    int found = 0;
    for (std::sregex_iterator it(html.begin(), html.end(), ref), end; it != end; ++it, ++found)
        EXPECT_NE(find((*it)[2].str()), nullptr) << (*it)[2].str();
    EXPECT_EQ(found, 2) << html;
    // The pages must run under a policy that forbids inline code.
    EXPECT_EQ(html.find("<script>"), std::string::npos);
    EXPECT_EQ(html.find("style="), std::string::npos);
}

TEST(WebAssets, EveryGzipCopyInflatesToTheBytesAndIsSmaller)
{
    nimbara::testing::TempFolder work;
    int copies = 0;
    for (const auto& a : web_assets()) {
        if (a.gzip.empty()) continue;
        ++copies;
        EXPECT_LT(a.gzip.size(), a.bytes.size()) << a.path;
        EXPECT_EQ(gunzip(a.gzip, work.path()), a.bytes) << a.path;
    }
    EXPECT_GE(copies, 2);  // at least the script and the style sheet
}

}  // namespace
