#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "printing/print_log.hpp"
#include "support/temp_folder.hpp"

namespace fs = std::filesystem;
using nimbara::printing::append_log_line;
using nimbara::printing::GetLogSize;
using nimbara::testing::read_file;

TEST(PrintLog, RollsOverAboveTwoMillionBytesAndReportsAnUnwritableLog)
{
    nimbara::testing::TempFolder folder;
    const auto& dir = folder.path();
    const auto log = dir / "Zartel_Nimbara.log", old = dir / "Zartel_Nimbara.old";
    struct Case { std::uintmax_t size; bool rolled; };
    for (const Case c : {Case{0, false}, Case{2000000, false}, Case{2000001, true}}) {
        fs::remove(old);
        fs::remove(log);
        if (c.size > 0) {
            std::ofstream(old) << "older generation";
            std::ofstream(log, std::ios::binary) << std::string(c.size, 'x');
        }
        append_log_line(log, "printaCaixa-Erro:boom");
        const std::string text = read_file(log);
        EXPECT_TRUE(text.ends_with("\tprintaCaixa-Erro:boom\n")) << c.size;
        EXPECT_EQ(text.size(), (c.rolled ? 0 : c.size) + 20 + 22) << "date and time, tab, entry, line end";
        if (c.rolled) {
            EXPECT_EQ(fs::file_size(old), c.size) << "the old log replaces the generation before";
        } else if (c.size > 0) {
            EXPECT_EQ(read_file(old), "older generation");
        }
    }
    EXPECT_EQ(GetLogSize(dir / "missing.log"), -1);
    EXPECT_EQ(GetLogSize(log), static_cast<std::int32_t>(fs::file_size(log)));
    EXPECT_THROW(append_log_line("/nonexistent-folder/x.log", "entry"), std::runtime_error);
}
