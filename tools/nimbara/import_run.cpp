#include "import_run.hpp"

#include <algorithm>
#include <filesystem>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <vector>

#include "db_command.hpp"
#include "guia_command.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/cls_Importacao.hpp"
#include "nimbara/cls_Impressao.hpp"

namespace nimbara::cli {
namespace {

// The notifier in force for as long as the object lives.
class NotifierInForce {
public:
    explicit NotifierInForce(Notifier& n) { set_notifier(&n); }
    ~NotifierInForce() { set_notifier(nullptr); }
    NotifierInForce(const NotifierInForce&) = delete;
    NotifierInForce& operator=(const NotifierInForce&) = delete;
};

// The rows of the five data tables.
struct Rows {
    std::int64_t clients = 0, contracts = 0, guias = 0, lines = 0, services = 0;
};

Rows rows_in(Database& db)
{
    const auto count = [&](const char* table) {
        return db.open(std::string("SELECT COUNT(*) FROM ") + table)[std::size_t{0}].integer();
    };
    return {count("Tbl_Cliente"), count("Tbl_Contrato"), count("Tbl_Cab"), count("Tbl_Linha"),
            count("Tbl_Linha_ServicoEspecial")};
}

std::string rows_text(const Rows& n)
{
    return std::to_string(n.clients) + " clients, " + std::to_string(n.contracts) + " contracts, " +
           std::to_string(n.guias) + " Guias, " + std::to_string(n.lines) + " lines and " + std::to_string(n.services) +
           " services";
}

nlohmann::json rows_json(const Rows& n)
{
    return {{"clients", n.clients}, {"contracts", n.contracts}, {"guias", n.guias}, {"lines", n.lines},
            {"services", n.services}};
}

// The Guias that will not print by the database edition, by cause, with the first numbers of each:
// a site learns at once which old Guias need their data mended or the other edition.
struct Printability {
    struct Cause {
        std::string cause;
        std::size_t guias = 0;
        std::vector<std::int32_t> first;
    };
    std::size_t total = 0, refused = 0;
    std::vector<Cause> causes;  // most Guias first
};

Printability printability(const std::shared_ptr<Database>& db)
{
    constexpr std::size_t kShown = 5;
    std::map<std::string, Printability::Cause> causes;
    Printability found;
    cls_Impressao printer(db);
    printer.set_log_path(default_print_log());
    Recordset all = db->open("SELECT N_Req FROM Tbl_Cab ORDER BY N_Req");
    for (all.MoveFirst(); !all.IsEOF(); all.MoveNext()) {
        const auto n_req = static_cast<std::int32_t>(all["N_Req"].integer());
        ++found.total;
        std::set<std::string> seen;
        for (const auto& p : printer.PrintProblems(n_req)) {
            if (!seen.insert(p.cause).second) continue;
            auto& g = causes[p.cause];
            g.cause = p.cause;
            ++g.guias;
            if (g.first.size() < kShown) g.first.push_back(n_req);
        }
        if (!seen.empty()) ++found.refused;
    }
    for (auto& [cause, g] : causes) found.causes.push_back(std::move(g));
    std::stable_sort(found.causes.begin(), found.causes.end(),
                     [](const auto& a, const auto& b) { return a.guias > b.guias; });
    return found;
}

void write_printability(const Printability& p, std::ostream& out)
{
    if (p.refused == 0) return;
    out << p.refused << " of the " << p.total << " Guias will not print by the database edition (nimbara db print N_REQ "
        << "names each cause):\n";
    for (const auto& g : p.causes) {
        out << "  " << g.guias << " Guias: " << g.cause << " (N_Req ";
        for (std::size_t i = 0; i < g.first.size(); ++i) out << (i ? ", " : "") << g.first[i];
        out << (g.guias > g.first.size() ? ", ...)\n" : ")\n");
    }
}

nlohmann::json printability_json(const Printability& p)
{
    nlohmann::json causes = nlohmann::json::array();
    for (const auto& g : p.causes) causes.push_back({{"cause", g.cause}, {"guias", g.guias}, {"first_n_req", g.first}});
    return {{"guias", p.refused}, {"of", p.total}, {"causes", causes}};
}

// What the file will be read as.
struct Reading {
    std::string procedure;
    std::string version;  // empty when a procedure was named
    std::optional<ImportLayout> layout;
};

std::string joined(const std::vector<std::string>& items, const std::string& last_glue)
{
    std::string text;
    for (std::size_t i = 0; i < items.size(); ++i)
        text += (i == 0 ? "" : i + 1 == items.size() ? last_glue : ", ") + items[i];
    return text;
}

std::string versions_of(const ImportLayout& layout)
{
    return (layout.Versions.size() == 1 ? "version " : "versions ") + joined(layout.Versions, " and ") + " (layout " +
           layout.Name + ")";
}

// The procedure of a version: every layout's versions, the older ones (0501 to 0508) included.
std::optional<std::pair<std::string, ImportLayout>> procedure_of(const std::string& version)
{
    for (const auto& layout : ImportLayouts())
        for (std::size_t i = 0; i < layout.Versions.size(); ++i)
            if (layout.Versions[i] == version) return std::pair{layout.Procedures[i], layout};
    return std::nullopt;
}

std::string known_versions()
{
    std::vector<std::string> all;
    for (const auto& layout : ImportLayouts()) all.insert(all.end(), layout.Versions.begin(), layout.Versions.end());
    return joined(all, ", ");
}

// Picks the procedure from --version, --procedure or the file's own layout, and refuses a choice the
// file's tables contradict, naming the layout found and the versions it fits.
Reading choose(const ImportOptions& o, std::ostream& warnings)
{
    ImportFileLayout found;
    try {
        found = RecogniseImportLayout(o.file);
    } catch (const std::exception& e) {
        // A table whose columns cannot be read is named again, with its row, by the import itself.
        found.Tables = std::string("its tables cannot be read: ") + e.what();
    }
    const std::string name = std::filesystem::path(o.file).filename().string();
    const auto fits = [&] { return name + " has the tables of " + versions_of(*found.Layout); };
    const auto give = [&] {
        std::vector<std::string> options;
        for (const auto& v : found.Layout->Versions) options.push_back("--version " + v);
        return "give " + joined(options, " or ");
    };
    if (!o.procedure.empty()) {
        const auto all = ImportProcedures();
        if (std::find(all.begin(), all.end(), o.procedure) == all.end())
            throw CommandError("no import procedure " + o.procedure);
        if (found.Layout && !ImportProcedureReads(o.procedure, found.Layout->Name))
            throw CommandError(fits() + ", which " + o.procedure + " does not read; " + give());
        return {o.procedure, "", found.Layout};
    }
    if (!o.version.empty()) {
        const auto known = procedure_of(o.version);
        if (!known)
            throw CommandError("version \"" + o.version + "\" is not one that can be imported (" + known_versions() + ")");
        if (found.Layout && found.Layout->Name != known->second.Name)
            throw CommandError(fits() + ", not those of version " + o.version + " (layout " + known->second.Name +
                               "); " + give());
        if (!found.Layout)
            warnings << "nimbara db import: warning: " << name << " fits no known layout (" << found.Tables
                      << "); its fields are read by position as version " << o.version << " has them\n";
        return {known->first, o.version, found.Layout};
    }
    if (!found.Layout)
        throw CommandError(name + " fits no known layout (" + found.Tables + "); give --version (" + known_versions() +
                           ") to read it by position");
    const auto& procedures = found.Layout->Procedures;
    if (std::any_of(procedures.begin(), procedures.end(), [&](const auto& p) { return p != procedures.front(); }))
        throw CommandError(fits() + ", which are imported differently; " + give());
    return {procedures.front(), found.Layout->Versions.size() == 1 ? found.Layout->Versions.front() : "",
            found.Layout};
}

}  // namespace

ImportOutcome run_import(const ImportOptions& o, const std::function<std::shared_ptr<Database>()>& open,
                         Notifier& progress, std::ostream* text, std::ostream& warnings)
{
    if (const auto problem = ImportSourceProblem(o.file)) throw CommandError(*problem);
    const Reading reading = choose(o, warnings);
    const auto db = open();
    cls_Importacao importacao(db);
    importacao.KeepOrphans = o.keep_orphans;
    Rows replaced;
    Printability printable;
    std::string failure;
    {
        const NotifierInForce in_force(progress);
        // What is replaced is counted on the import's own transaction; a dry run never commits it, so the
        // whole file is read, checked and written, and then nothing of it stays.
        Transaction whole(*db);
        replaced = rows_in(*db);
        const std::filesystem::path file(o.file);
        importacao.DoImportDadosBy(reading.procedure, file.parent_path().string(), file.filename().string());
        if (!importacao.Succeeded()) {
            failure = importacao.LastError();
        } else if (o.dry_run) {
            printable = printability(db);
        } else {
            try {
                whole.commit();
            } catch (const DatabaseError& e) {
                failure = std::string("committing the import: ") + e.what();
            }
        }
    }
    if (!failure.empty()) {
        warnings << "nimbara db import: not imported, the database is as it was: " << failure << '\n';
        return {1, nlohmann::ordered_json{{"command", "nimbara db import"}, {"status", 1}, {"file", o.file},
                                          {"procedure", reading.procedure}, {"dry_run", o.dry_run}, {"error", failure}}};
    }
    if (!o.dry_run) printable = printability(db);
    const ImportCounts& n = importacao.LastCounts();
    const Rows brought{n.Clientes, n.Contratos, n.Guias, n.Linhas, n.Servicos};
    ImportOutcome outcome{0, nlohmann::ordered_json{{"command", "nimbara db import"},
                               {"status", 0},
                               {"file", o.file},
                               {"layout", reading.layout ? nlohmann::json(reading.layout->Name) : nlohmann::json(nullptr)},
                               {"version", reading.version.empty() ? nlohmann::json(nullptr) : nlohmann::json(reading.version)},
                               {"procedure", reading.procedure},
                               {"dry_run", o.dry_run},
                               {"replaced", rows_json(replaced)},
                               {"imported", rows_json(brought)},
                               {"orphans", importacao.LastOrphans()},
                               {"not_printable", printability_json(printable)}}};
    if (!text) return outcome;
    std::ostream& out = *text;
    out << o.file << ": " << (reading.layout ? versions_of(*reading.layout) : "no known layout") << ", read by "
              << reading.procedure << '\n';
    if (o.dry_run) {
        out << "would replace " << rows_text(replaced) << '\n'
                  << "would bring in " << rows_text(brought) << '\n';
    } else {
        out << "replaced " << rows_text(replaced) << '\n' << "brought in " << rows_text(brought) << '\n';
    }
    if (!importacao.LastOrphans().empty()) {
        out << (o.dry_run ? "would keep " : "kept ") << importacao.LastOrphans().size()
                  << " rows that belong to nothing:\n";
        for (const auto& row : importacao.LastOrphans()) out << "  " << row << '\n';
    }
    write_printability(printable, out);
    if (o.dry_run) out << "dry run: nothing was changed\n";
    return outcome;
}


}  // namespace nimbara::cli
