// nimbara check-lines [FILE]: judges a batch of product lines, one result line per input line.
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "nimbara/line_batch.hpp"

namespace nimbara::cli {

void register_check_lines(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand(
        "check-lines",
        "Validate product lines: each input line holds the ten arguments of DoValidaProduto, tab-separated");
    auto file = std::make_shared<std::string>();
    cmd->add_option("FILE", *file, "The batch file; standard input when omitted or -");
    cmd->footer("Exit status: 0 every row was judged (failing lines included), 2 a row could not be judged or the "
                "input could not be read.\nExample:\n  nimbara check-lines examples/lines.tsv");
    cmd->callback([file, &status] {
        std::vector<char> buffer(1 << 16);  // large reads from a file; declared first, as it outlives the stream
        std::ifstream stream;
        std::istream* in = &std::cin;
        std::string source = "<stdin>";
        if (!file->empty() && *file != "-") {
            stream.rdbuf()->pubsetbuf(buffer.data(), static_cast<std::streamsize>(buffer.size()));
            stream.open(*file, std::ios::binary);
            if (!stream || std::filesystem::is_directory(*file)) {
                std::cerr << "nimbara check-lines: cannot open " << *file << ": "
                          << (stream ? "is a folder" : std::strerror(errno)) << '\n';
                status = 2;
                return;
            }
            in = &stream;
            source = *file;
        }
        std::ios::sync_with_stdio(false);
        std::cin.tie(nullptr);  // a flush of the answers for every line read would cost more than the check
        const BatchSummary summary = check_line_batch(*in, std::cout, std::cerr, source);
        std::cout.flush();
        if (summary.refused > 0 || summary.read_failed) status = 2;
    });
}

}  // namespace nimbara::cli
