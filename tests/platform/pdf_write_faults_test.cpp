// Writing a PDF or a PNG where the machine refuses the bytes: the failure names the file and the
// cause, and nothing half-written stays behind.
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <regex>
#include <stdexcept>
#include <string>

#include "nimbara/cls_ImpressaoA.hpp"
#include "nimbara/PdfSurface.hpp"
#include "support/temp_folder.hpp"
#include "support/unwritable_places.hpp"

namespace fs = std::filesystem;
using nimbara::PdfSurface;
using nimbara::testing::TempFolder;
using nimbara::testing::UnwritableFolder;

namespace {

// The test page as one print job, its file opened before anything is drawn, as the program does.
void print_test_page(PdfSurface& s, const fs::path& log)
{
    s.StartDoc();
    nimbara::cls_ImpressaoA printer;
    printer.set_log_path(log);
    printer.PrintTestPage(s, nimbara::form_impressao(), 0, "2024-03-15");
    s.EndDoc();
}

// The message of what `write` threw, or the empty text when it threw nothing.
template <class Write>
std::string failure(Write&& write)
{
    try {
        write();
    } catch (const std::exception& e) {
        return e.what();
    }
    return "";
}

}  // namespace

TEST(PdfWriteFaults, TheCauseIsNamedAndNothingIsLeft)
{
    TempFolder writable;
    const auto log = writable.path() / "print.log";
    UnwritableFolder full(UnwritableFolder::Kind::Full), read_only(UnwritableFolder::Kind::ReadOnly);
    struct Case { const char* what; std::optional<fs::path> folder; const char* cause; };
    const Case cases[] = {
        {"a full file system", full.path(), "No space left on device"},
        {"a read-only folder", read_only.path(), "read-only|Read-only|Permission denied"},
    };
    int tried = 0;
    for (const auto& c : cases) {
        if (!c.folder) continue;
        ++tried;
        const auto before = std::distance(fs::directory_iterator(*c.folder), {});
        for (const char* name : {"guia.pdf", "preview.png"}) {
            const auto target = *c.folder / name;
            const bool png = target.extension() == ".png";
            const std::string message = failure([&] {
                PdfSurface s(png ? writable.path() / "page.pdf" : target);
                print_test_page(s, log);
                if (png) s.render_png(1, 50, target);
            });
            EXPECT_NE(message.find("\"" + target.string() + "\""), std::string::npos) << c.what << ": " << message;
            EXPECT_TRUE(std::regex_search(message, std::regex(c.cause))) << c.what << ": " << message;
        }
        EXPECT_EQ(std::distance(fs::directory_iterator(*c.folder), {}), before) << c.what << ": a file was left";
    }
    if (tried == 0) GTEST_SKIP() << "this machine lets the test make neither a full nor a read-only folder";
}
