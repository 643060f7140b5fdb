// nimbara db import FILE --version V: replaces the clients, contracts and Guias of the database with
// those of an old version's file. Exit 0 when imported, 1 when the import failed (nothing changed),
// 2 when the file or the version is refused before anything is touched.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "commands.hpp"
#include "db_command.hpp"
#include "guia_command.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/Notifier.hpp"
#include "nimbara/cls_Importacao.hpp"

namespace nimbara::cli {
namespace {

// The progress as a bar redrawn in place on a terminal, as one line per value otherwise; messages
// of the library are left to the command.
class ImportNotifier final : public Notifier {
public:
    ImportNotifier() : terminal_(::isatty(STDOUT_FILENO) == 1) {}
    ~ImportNotifier() override { end_bar(); }

    // The library's message boxes tell a desktop host the outcome in Portuguese; the command tells it
    // itself, in English, with the cause.
    void message(MessageIcon, std::string_view, std::string_view) override { end_bar(); }
    void busy(bool) override {}
    void progress(int value) override
    {
        if (!terminal_) {
            std::cout << "progress " << value << std::endl;
            return;
        }
        // The reset to 0 at the end (or after a failure) closes the bar rather than drawing it empty.
        if (value == 0) {
            end_bar();
            return;
        }
        constexpr int kWidth = 40;
        const int filled = value * kWidth / 100;
        std::cout << "\r[" << std::string(static_cast<std::size_t>(filled), '#')
                  << std::string(static_cast<std::size_t>(kWidth - filled), ' ') << "] " << value << "%" << std::flush;
        drawn_ = true;
    }

private:
    void end_bar()
    {
        if (drawn_) std::cout << '\n';
        drawn_ = false;
    }
    bool terminal_;
    bool drawn_ = false;
};

// The notifier in force for as long as the object lives.
class NotifierInForce {
public:
    explicit NotifierInForce(Notifier& n) { set_notifier(&n); }
    ~NotifierInForce() { set_notifier(nullptr); }
    NotifierInForce(const NotifierInForce&) = delete;
    NotifierInForce& operator=(const NotifierInForce&) = delete;
};

// How many of the Guias will not print by the database edition, by cause, with the first numbers
// of each: a site learns at once which old Guias need their data mended or the other edition.
void summarise_printability(const std::shared_ptr<Database>& db, std::ostream& out)
{
    constexpr std::size_t kShown = 5;
    struct Group {
        std::size_t guias = 0;
        std::vector<std::int32_t> first;
    };
    std::map<std::string, Group> causes;
    std::size_t total = 0, refused = 0;
    cls_Impressao printer(db);
    printer.set_log_path(default_print_log());
    Recordset all = db->open("SELECT N_Req FROM Tbl_Cab ORDER BY N_Req");
    for (all.MoveFirst(); !all.IsEOF(); all.MoveNext()) {
        const auto n_req = static_cast<std::int32_t>(all["N_Req"].integer());
        ++total;
        std::set<std::string> seen;
        for (const auto& p : printer.PrintProblems(n_req)) {
            if (!seen.insert(p.cause).second) continue;
            Group& g = causes[p.cause];
            ++g.guias;
            if (g.first.size() < kShown) g.first.push_back(n_req);
        }
        if (!seen.empty()) ++refused;
    }
    if (refused == 0) return;
    out << refused << " of the " << total << " Guias will not print by the database edition (nimbara db print N_REQ "
        << "names each cause):\n";
    std::vector<std::pair<std::string, Group>> sorted(causes.begin(), causes.end());
    std::stable_sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.second.guias > b.second.guias; });
    for (const auto& [cause, g] : sorted) {
        out << "  " << g.guias << " Guias: " << cause << " (N_Req ";
        for (std::size_t i = 0; i < g.first.size(); ++i) out << (i ? ", " : "") << g.first[i];
        out << (g.guias > g.first.size() ? ", ...)\n" : ")\n");
    }
}

struct Options {
    std::string file, version, procedure, conn;
    bool keep_orphans = false;
};

int import(const Options& o)
{
    if (const auto problem = ImportSourceProblem(o.file)) throw CommandError(*problem);
    std::string procedure = o.procedure;
    if (procedure.empty()) {
        const auto dispatched = ImportProcedureFor(o.version);
        if (!dispatched) throw CommandError("version \"" + o.version + "\" is not one that can be imported "
                                            "(05083, 0509, 0510, 0511, 0512, 0513, 0514)");
        procedure = *dispatched;
    } else {
        const auto all = ImportProcedures();
        if (std::find(all.begin(), all.end(), procedure) == all.end())
            throw CommandError("no import procedure " + procedure);
    }
    const auto db = open_command_database(o.conn);
    cls_Importacao importacao(db);
    importacao.KeepOrphans = o.keep_orphans;
    ImportNotifier shown;
    const NotifierInForce in_force(shown);
    const std::filesystem::path file(o.file);
    const std::string folder = file.parent_path().string();
    const std::string name = file.filename().string();
    if (o.procedure.empty()) {
        std::string version = o.version;
        importacao.ImportaDados(folder, name, version);
    } else {
        importacao.DoImportDadosBy(procedure, folder, name);
    }
    if (!importacao.Succeeded()) {
        std::cerr << "nimbara db import: not imported, the database is as it was: " << importacao.LastError() << '\n';
        return 1;
    }
    const ImportCounts& n = importacao.LastCounts();
    std::cout << "brought in " << n.Clientes << " clients, " << n.Contratos << " contracts, " << n.Guias << " Guias, "
              << n.Linhas << " lines and " << n.Servicos << " services\n";
    if (!importacao.LastOrphans().empty()) {
        std::cout << "kept " << importacao.LastOrphans().size() << " rows that belong to nothing:\n";
        for (const auto& row : importacao.LastOrphans()) std::cout << "  " << row << '\n';
    }
    summarise_printability(db, std::cout);
    return 0;
}

}  // namespace

void register_db_import(CLI::App& db, int& status)
{
    auto* cmd = db.add_subcommand("import", "Replace the clients, contracts and Guias with those of an old database file");
    auto o = std::make_shared<Options>();
    cmd->add_option("FILE", o->file, "The old database: a Jet file (.mdb) or a SQLite file with the old tables")
        ->required();
    auto* version = cmd->add_option("--version", o->version, "The version the file comes from (0513, 0514, ...)");
    auto* procedure = cmd->add_option("--procedure", o->procedure,
                                      "Run this procedure by name instead (DoImportDados0501 ... DoImportDadosTo050314), "
                                      "the older ones included");
    version->excludes(procedure);
    cmd->add_flag("--keep-orphans", o->keep_orphans,
                  "Bring in the rows whose Guia, line, client or contract the file lacks, and list them, rather "
                  "than refuse the file");
    cmd->callback([o, version, procedure, &status] {
        if (version->count() == 0 && procedure->count() == 0) {
            std::cerr << "nimbara db import: give --version (or --procedure)\n";
            status = 2;
            return;
        }
        status = run_db_command("import", std::cerr, [&] { return import(*o); });
    });
    add_db_option(*cmd, o->conn);
    cmd->footer("The whole import is one transaction. Exit status: 0 imported, 1 the import failed or the file's rows "
                "do not hang together (the database is left as it was), 2 a missing, empty or unreadable file or an "
                "unknown version, before anything is touched.\nExamples:\n  nimbara db import old.mdb --version 0514\n"
                "  nimbara db import old.mdb --procedure DoImportDados0510 --db sqlite:shop.db");
}

}  // namespace nimbara::cli
