// nimbara db import FILE [--version V]: replaces the clients, contracts and Guias of the database with
// those of an old version's file, recognising the file's layout from its tables. Exit 0 when imported
// (or, with --dry-run, when it would be), 1 when the import failed (nothing changed), 2 when the file,
// the version or the layout is refused before anything is touched.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "commands.hpp"
#include "db_command.hpp"
#include "guia_command.hpp"
#include "import_run.hpp"
#include "json_output.hpp"
#include "nimbara/Notifier.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/cls_Importacao.hpp"
#include "nimbara/cls_Impressao.hpp"

namespace nimbara::cli {
namespace {

// The progress as a bar redrawn in place on standard error when that is a terminal, nothing
// otherwise; the library's messages are left to the command.
class ImportNotifier final : public Notifier {
public:
    ImportNotifier() : terminal_(::isatty(STDERR_FILENO) == 1) {}
    ~ImportNotifier() override { end_bar(); }

    // The library's message boxes tell a desktop host the outcome in Portuguese; the command tells it
    // itself, in English, with the cause.
    void message(MessageIcon, std::string_view, std::string_view) override { end_bar(); }
    void busy(bool) override {}
    void progress(int value) override
    {
        if (!terminal_) return;
        // The reset to 0 at the end (or after a failure) closes the bar rather than drawing it empty.
        if (value == 0) {
            end_bar();
            return;
        }
        constexpr int kWidth = 40;
        const int filled = value * kWidth / 100;
        std::cerr << "\r[" << std::string(static_cast<std::size_t>(filled), '#')
                  << std::string(static_cast<std::size_t>(kWidth - filled), ' ') << "] " << value << "%" << std::flush;
        drawn_ = true;
    }

private:
    void end_bar()
    {
        if (drawn_) std::cerr << '\n';
        drawn_ = false;
    }
    bool terminal_;
    bool drawn_ = false;
};

struct Options : ImportOptions {
    std::string conn;
    bool json = false;
};

int import(const Options& o)
{
    ImportNotifier shown;
    const auto outcome = run_import(o, [&] { return open_command_database(o.conn); }, shown, o.json ? nullptr : &std::cout, std::cerr);
    if (o.json) write_json(std::cout, outcome.document);
    return outcome.status;
}



}  // namespace

void register_db_import(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("import", "Replace the clients, contracts and Guias with those of an old database file");
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "The old database: a Jet file (.mdb) or a SQLite file with the old tables")
        ->required();
    auto* version = cmd->add_option(
        "--version", o->version,
        "The version the file comes from: 0501, 0502, 0504, 0506, 0507, 0508, 05083, 0509 to 0512, 0513 or 0514; "
        "needed only when the file's layout is shared by versions imported differently (0502/0504, "
        "0506/0507/0508, 0513/0514)");
    auto* procedure = cmd->add_option("--procedure", o->procedure,
                                      "Run this procedure by name instead (DoImportDados0501 ... DoImportDados0510, "
                                      "DoImportDadosTo050313, DoImportDadosTo050313B, DoImportDadosTo050313C, "
                                      "DoImportDadosTo050314)");
    version->excludes(procedure);
    cmd->add_flag("--keep-orphans", o->keep_orphans,
                  "Bring in the rows whose Guia, line, client or contract the file lacks, and list them, rather "
                  "than refuse the file");
    cmd->add_flag("--dry-run", o->dry_run,
                  "Read and check the whole file and say what would be replaced and brought in; change nothing");
    cmd->add_flag("--json", o->json, "Write the outcome as one JSON document");
    cmd->callback([o, &status] {
        status = run_db_command("import", o->json, std::cout, std::cerr, [&] { return import(*o); });
    });
    add_db_option(*cmd, o->conn);
    cmd->footer("The whole import is one transaction; --version may be left out when the file's layout fits one "
                "version. Exit status: 0 imported (with --dry-run: checked, nothing changed), 1 the import failed or "
                "the file's rows do not hang together (the database is left as it was), 2 a missing, empty or "
                "unreadable file, an unknown version or one that does not fit the file, before anything is touched.\n"
                "Examples:\n  nimbara db import old.mdb --dry-run\n  nimbara db import old.mdb --version 0514\n"
                "  nimbara db import old.mdb --procedure DoImportDados0510 --db shop.db");
}

}  // namespace nimbara::cli
