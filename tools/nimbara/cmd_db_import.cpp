// nimbara db import FILE --version V: replaces the clients, contracts and Guias of the database with
// those of an old version's file. Exit 0 when imported, 1 when the import failed (nothing changed),
// 2 when the file or the version is refused before anything is touched.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "nimbara/Notifier.hpp"
#include "nimbara/cls_Importacao.hpp"

namespace nimbara::cli {
namespace {

// The progress as a bar redrawn in place on a terminal, as one line per value otherwise; messages
// of success on standard output, the others on standard error.
class ImportNotifier final : public Notifier {
public:
    ImportNotifier() : terminal_(::isatty(STDOUT_FILENO) == 1) {}
    ~ImportNotifier() override { end_bar(); }

    void message(MessageIcon icon, std::string_view title, std::string_view text) override
    {
        end_bar();
        std::ostream& out = icon == MessageIcon::Information && !title.empty() ? std::cout : std::cerr;
        if (!title.empty()) out << title << ": ";
        out << text << std::endl;
    }
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
    cls_Importacao importacao(open_command_database(o.conn));
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
    if (!importacao.Succeeded()) return 1;
    const ImportCounts& n = importacao.LastCounts();
    std::cout << "brought in " << n.Clientes << " clients, " << n.Contratos << " contracts, " << n.Guias << " Guias, "
              << n.Linhas << " lines and " << n.Servicos << " services\n";
    if (!importacao.LastOrphans().empty()) {
        std::cout << "kept " << importacao.LastOrphans().size() << " rows that belong to nothing:\n";
        for (const auto& row : importacao.LastOrphans()) std::cout << "  " << row << '\n';
    }
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
}

}  // namespace nimbara::cli
