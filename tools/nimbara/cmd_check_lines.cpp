// nimbara check-lines [FILE]: judges a batch of product lines, one result line per input line.
#include <memory>
#include <string>

#include "commands.hpp"
#include "line_batch_command.hpp"
#include "nimbara/cls_ValProdutosA.hpp"

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
        const cls_ValProdutosA validator;
        status = run_line_batch("check-lines", *file, [&validator](const BatchRow& row) {
            const auto& f = row.fields;
            return validator.DoValidaProduto(f[0], f[1], row.weight, f[3], f[4], f[5], f[6], f[7], f[8], f[9]);
        });
    });
}

}  // namespace nimbara::cli
