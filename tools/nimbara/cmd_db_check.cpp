// nimbara db check N_REQ | db check-lines [FILE]: product lines and Guias judged against the rule
// tables of the database, as a host of the database road judges them.
#include <charconv>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "commands.hpp"
#include "db_command.hpp"
#include "guia_json.hpp"
#include "json_output.hpp"
#include "line_batch_command.hpp"
#include "nimbara/stored_guia_check.hpp"
#include "nimbara/cls_ValProdutos.hpp"
#include "nimbara/guia_file.hpp"
#include "verdict_json.hpp"

namespace nimbara::cli {
namespace {

struct CheckOptions {
    std::string conn;
    std::int32_t n_req = 0;
    std::string file;
    bool json = false;
};

// The services of a line as the batch writes them, codes joined by ","; the empty text is no list.
ListArray split_services(std::string_view text)
{
    ListArray list;
    if (text.empty()) return list;
    for (std::size_t start = 0;;) {
        const auto comma = text.find(',', start);
        list.emplace_back(text.substr(start, comma == std::string_view::npos ? comma : comma - start));
        if (comma == std::string_view::npos) return list;
        start = comma + 1;
    }
}

int check_guia(const CheckOptions& o)
{
    const auto verdict = check_stored_guia(open_command_database(o.conn), o.n_req);
    if (!verdict) throw CommandError("no Guia with N_Req " + std::to_string(o.n_req));
    const int status = verdict->passed() ? 0 : 1;
    if (o.json) {
        write_json(std::cout, stored_verdict_json(o.n_req, *verdict));
    } else {
        for (const auto& l : verdict->lines) std::cout << batch_result_text(l.result) << '\n';
        std::cout << batch_result_text(verdict->guia) << '\n';
    }
    return status;
}

ValidationResult judge_row(cls_ValProdutos& validator, const BatchRow& row)
{
    const auto& f = row.fields;
    const auto pre_treatment = read_weight(f[5]);
    if (!pre_treatment) throw std::invalid_argument("pre-treatment \"" + std::string(f[5]) + "\" is not a whole number");
    // The sampling column (f[8]) is read and not used: the rule tables have no sampling dimension.
    return validator.DoValidaProduto(f[0], f[1], row.weight, f[3], f[4], *pre_treatment > 0, f[6], f[7],
                                     split_services(f[9]));
}

}  // namespace

void register_db_check(CLI::App& db, int& status)
{
    auto o = std::make_shared<CheckOptions>();
    auto* check = db.add_subcommand("check", "Check a stored Guia against the rule tables of the database: one "
                                             "result per line, then the Guia's");
    check->add_option("N_REQ", o->n_req, "The Guia's number")->required();
    add_db_option(*check, o->conn);
    check->add_flag("--json", o->json, "Write the results as one JSON document: each line's and the Guia's");
    check->footer("Each result is 0, or the error number, a tab and its description. The program's own "
                  "Tbl_Temp_Val_Guia holds this Guia only.\nExit status: 0 all passed, 1 a line or the Guia failed, 2 no such "
                  "Guia or the database could not be read.\nExample:\n  nimbara db check 12");
    check->callback([o, &status] {
        status = run_db_command("check", o->json, std::cout, std::cerr, [&] { return check_guia(*o); });
    });

    auto* lines = db.add_subcommand("check-lines", "Validate product lines against the rule tables of the database; "
                                                   "the same rows and results as check-lines");
    lines->add_option("FILE", o->file, "The batch file; standard input when omitted or -");
    add_db_option(*lines, o->conn);
    lines->add_flag("--json", o->json, "Write the results as one JSON document");
    lines->footer("The sampling column is read and ignored; a pre-treatment above 0 is selected.\nExit status: 0 every "
                  "row was judged (failing lines included), 2 a row could not be judged, the input could not be "
                  "read or the database could not be opened.\nExample:\n  nimbara db check-lines lines.tsv");
    lines->callback([o, &status] {
        status = run_db_command("check-lines", o->json, std::cout, std::cerr, [&] {
            const auto db = open_command_database(o->conn);
            cls_ValProdutos validator(db);
            // The whole batch is judged against one state of the rule tables, read once.
            Transaction reading(*db, TransactionMode::Reading);
            const BatchJudge judge = [&validator](const BatchRow& row) { return judge_row(validator, row); };
            return run_line_batch("db check-lines", o->file, &judge, o->json);
        });
    });
}

}  // namespace nimbara::cli
