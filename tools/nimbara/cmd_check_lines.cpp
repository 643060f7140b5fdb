// nimbara check-lines [FILE]: judges a batch of product lines, one result line per input line.
#include <memory>
#include <string>

#include "commands.hpp"
#include "line_batch_command.hpp"

namespace nimbara::cli {

void register_check_lines(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand(
        "check-lines",
        "Validate product lines: each input line holds the ten arguments of DoValidaProduto, tab-separated");
    auto file = std::make_shared<std::string>();
    auto json = std::make_shared<bool>(false);
    cmd->add_option("FILE", *file, "The batch file; standard input when omitted or -");
    cmd->add_flag("--json", *json, "Write the results as one JSON document, with the possible values of each failed line");
    cmd->footer("Exit status: 0 every row was judged (failing lines included), 2 a row could not be judged or the "
                "input could not be read.\nExample:\n  nimbara check-lines examples/lines.tsv");
    cmd->callback([file, json, &status] { status = run_line_batch("check-lines", *file, nullptr, *json); });
}

}  // namespace nimbara::cli
