#include "nimbara/cls_Importacao.hpp"

#include <algorithm>
#include <stdexcept>

#include "entities/connection.hpp"
#include "import/layouts.hpp"
#include "import/mappings.hpp"
#include "import/procedure_run.hpp"
#include "nimbara/Notifier.hpp"
#include "platform/old_database.hpp"

namespace nimbara {
namespace {

constexpr const char* kImportTitle = "Importação de Base de Dados";

// A file whose layout the procedure does not read would fail at some column, or fill the wrong ones;
// a file of no known layout is read by position as it always was.
void require_layout(std::string_view procedure, const platform::OldDatabase& source)
{
    const import::Layout* found = nullptr;
    try {
        found = import::layout_of(import::shape_of(source));
    } catch (const std::exception&) {
        return;  // a table that cannot be read is named by the copy itself
    }
    if (!found || import::reads(*found, procedure)) return;
    std::string wanted;
    for (const auto& layout : import::layouts())
        if (import::reads(layout, procedure)) wanted += (wanted.empty() ? "" : " or ") + import::versions_text(layout);
    throw std::runtime_error(source.file().filename().string() + " has the tables of " + import::versions_text(*found) +
                             "; " + std::string(procedure) + " reads those of " + wanted);
}

ImportLayout public_layout(const import::Layout& layout)
{
    ImportLayout out{layout.name, {}, {}};
    for (const auto& v : layout.versions) {
        out.Versions.emplace_back(v.version);
        out.Procedures.emplace_back(v.procedure);
    }
    return out;
}

std::filesystem::path source_path(const std::string& Caminho, const std::string& Ficheiro)
{
    return Caminho.empty() ? std::filesystem::path(Ficheiro) : std::filesystem::path(Caminho) / Ficheiro;
}

}  // namespace

cls_Importacao::cls_Importacao() : cls_Importacao(entities::connection_from_ini()) {}

cls_Importacao::cls_Importacao(std::shared_ptr<Database> db) : myConn(std::move(db)) {}

void cls_Importacao::ImportaDados(const std::string& Caminho, const std::string& Ficheiro, std::string& Versao)
{
    notifier().busy(true);
    const import::Procedure* procedure = import::procedure_for_version(Versao);
    bool ok = false;
    if (procedure) {
        ok = run(procedure->name, Caminho, Ficheiro);
    } else {
        succeeded_ = false;
        last_error_ = "no import for version \"" + Versao + "\"";
    }
    notifier().busy(false);
    notifier().progress(0);
    if (ok)
        notifier().message(MessageIcon::Information, kImportTitle, "Base de Dados importada com sucesso.");
    else
        notifier().message(MessageIcon::Critical, kImportTitle, "A importação da Base de Dados falhou.");
}

bool cls_Importacao::DoImportDadosBy(std::string_view procedure, const std::string& Caminho, const std::string& Ficheiro)
{
    if (!import::find_procedure(procedure)) {
        succeeded_ = false;
        last_error_ = "no import procedure " + std::string(procedure);
        return false;
    }
    return run(procedure, Caminho, Ficheiro);
}

bool cls_Importacao::DoImportDados0501(const std::string& c, const std::string& f) { return run("DoImportDados0501", c, f); }
bool cls_Importacao::DoImportDados0502(const std::string& c, const std::string& f) { return run("DoImportDados0502", c, f); }
bool cls_Importacao::DoImportDados0504(const std::string& c, const std::string& f) { return run("DoImportDados0504", c, f); }
bool cls_Importacao::DoImportDados0506(const std::string& c, const std::string& f) { return run("DoImportDados0506", c, f); }
bool cls_Importacao::DoImportDados0507(const std::string& c, const std::string& f) { return run("DoImportDados0507", c, f); }
bool cls_Importacao::DoImportDados0508(const std::string& c, const std::string& f) { return run("DoImportDados0508", c, f); }
bool cls_Importacao::DoImportDados0509(const std::string& c, const std::string& f) { return run("DoImportDados0509", c, f); }
bool cls_Importacao::DoImportDados0510(const std::string& c, const std::string& f) { return run("DoImportDados0510", c, f); }
bool cls_Importacao::DoImportDadosTo050313(const std::string& c, const std::string& f)
{
    return run("DoImportDadosTo050313", c, f);
}
bool cls_Importacao::DoImportDadosTo050313B(const std::string& c, const std::string& f)
{
    return run("DoImportDadosTo050313B", c, f);
}
bool cls_Importacao::DoImportDadosTo050313C(const std::string& c, const std::string& f)
{
    return run("DoImportDadosTo050313C", c, f);
}
bool cls_Importacao::DoImportDadosTo050314(const std::string& c, const std::string& f)
{
    return run("DoImportDadosTo050314", c, f);
}

bool cls_Importacao::run(std::string_view name, const std::string& Caminho, const std::string& Ficheiro)
{
    counts_ = {};
    orphans_.clear();
    last_error_.clear();
    // A missing file is said and counts as done: nothing was touched.
    succeeded_ = true;
    if (!DoCheck(Caminho, Ficheiro)) return true;
    try {
        const auto source = platform::open_old_database(source_path(Caminho, Ficheiro));
        require_layout(name, *source);
        auto result = import::run_procedure(*import::find_procedure(name), *source, entities::require(myConn),
                                            [this](int value) {
                                                notifier().progress(value);
                                                if (Progress) Progress(value);
                                            },
                                            KeepOrphans, Cancelled);
        const auto& rows = result.counts;
        counts_ = {rows[0], rows[1], rows[2], rows[3], rows[4]};
        orphans_ = std::move(result.orphans);
        return true;
    } catch (const std::exception& e) {
        last_error_ = e.what();
    }
    succeeded_ = false;
    for (int value : {20, 10, 0}) notifier().progress(value);
    notifier().message(MessageIcon::Information, "",
                       "Erro na Importação da informação. Não é possivel efectuar a importação desta base de dados.\n" +
                           last_error_);
    return false;
}

bool cls_Importacao::DoCheck(const std::string& Caminho, const std::string& Ficheiro)
{
    if (FileExists(source_path(Caminho, Ficheiro).string()) != 0) return true;
    notifier().message(MessageIcon::Exclamation, "Importação de Informação", "A base de dados escolhida não existe !");
    return false;
}

std::int16_t cls_Importacao::FileExists(const std::string& strFile)
{
    std::error_code ec;
    const auto size = std::filesystem::file_size(strFile, ec);
    return !ec && size > 0 ? 1 : 0;
}

void cls_Importacao::DeleteDados()
{
    Database& db = entities::require(myConn);
    // Each table on a transaction of its own: a failure leaves the tables before it emptied.
    for (const char* table : import::kDataTables) {
        Transaction t(db);
        db.execute("DELETE FROM " + std::string(table));
        t.commit();
    }
}

std::optional<std::string> ImportProcedureFor(std::string_view Versao)
{
    if (const auto* p = import::procedure_for_version(Versao)) return std::string(p->name);
    return std::nullopt;
}

std::vector<std::string> ImportProcedures()
{
    std::vector<std::string> names;
    for (const auto& p : import::procedures()) names.emplace_back(p.name);
    return names;
}

std::optional<std::string> ImportSourceProblem(const std::filesystem::path& file)
{
    try {
        platform::open_old_database(file);
        return std::nullopt;
    } catch (const std::exception& e) {
        return std::string(e.what());
    }
}

std::vector<ImportLayout> ImportLayouts()
{
    std::vector<ImportLayout> all;
    for (const auto& layout : import::layouts()) all.push_back(public_layout(layout));
    return all;
}

ImportFileLayout RecogniseImportLayout(const std::filesystem::path& file)
{
    const auto source = platform::open_old_database(file);
    const auto shape = import::shape_of(*source);
    ImportFileLayout found;
    if (const auto* layout = import::layout_of(shape)) found.Layout = public_layout(*layout);
    found.Tables = import::describe(shape);
    return found;
}

bool ImportProcedureReads(std::string_view procedure, std::string_view layout)
{
    return std::ranges::any_of(import::layouts(),
                               [&](const auto& l) { return layout == l.name && import::reads(l, procedure); });
}

}  // namespace nimbara
