#pragma once
// The import of an older version's database: ImportaDados replaces the clients, contracts and Guias
// of the working database with those of an old file (a Jet file as the sites kept it, or a SQLite
// file holding the old tables), by the procedure that knows the column order of the version the host
// names. Each procedure runs on one transaction of the target, so a failed import leaves it as it was.
//
// Messages, the hourglass and the progress bar go to the notifier (nimbara/Notifier.hpp).
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/Database.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// The rows an import brought in.
struct NIMBARA_API ImportCounts {
    std::int64_t Clientes = 0;
    std::int64_t Contratos = 0;
    std::int64_t Guias = 0;
    std::int64_t Linhas = 0;
    std::int64_t Servicos = 0;
};

class NIMBARA_API cls_Importacao {
public:
    // With the connection of the ini file, or with the host's own; the import writes into it.
    cls_Importacao();
    explicit cls_Importacao(std::shared_ptr<Database> db);

    Recordset rsImportacao;
    Recordset rsMaxReq;
    Recordset rsStrXml;
    std::shared_ptr<Database> myConn;
    // Whether rows whose Guia, line, client or contract is missing from the old file are brought in
    // all the same (and listed in LastOrphans) rather than the file refused before anything is written.
    bool KeepOrphans = false;
    // Asked before every row is copied: when it answers true the import stops, leaves the working
    // database as it was, and fails with "the import was cancelled". Asked on the importing thread.
    std::function<bool()> Cancelled;
    // Hears the progress bar's value (0 to 100) as the notifier does, for a host that follows this
    // import alone.
    std::function<void(int)> Progress;
    // Where EscreveStringXml writes; relative to the working directory.
    std::filesystem::path DomFile = "DomFile.txt";

    // Runs the procedure of `Versao` on the file `Ficheiro` in the folder `Caminho` (an empty folder
    // takes the file name as it is); any other version runs nothing and counts as failed.
    void ImportaDados(const std::string& Caminho, const std::string& Ficheiro, std::string& Versao);

    // Empties the five data tables, each in a transaction of its own; a store's failure is raised.
    void DeleteDados();
    // 1 when the file exists and has content, 0 otherwise.
    std::int16_t FileExists(const std::string& strFile);
    // Writes tbl_Validacao to DomFile as lines of concatenation text; a file error is raised.
    void EscreveStringXml();

    // The procedures, each for the column order of its version. Each answers true on success, and
    // true also when the file does not exist (after saying so), with nothing changed.
    bool DoImportDados0501(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDados0502(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDados0504(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDados0506(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDados0507(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDados0508(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDados0509(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDados0510(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDadosTo050313(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDadosTo050313B(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDadosTo050313C(const std::string& Caminho, const std::string& Ficheiro);
    bool DoImportDadosTo050314(const std::string& Caminho, const std::string& Ficheiro);
    // The procedure of that name, for hosts that choose it by name; false for an unknown name.
    bool DoImportDadosBy(std::string_view procedure, const std::string& Caminho, const std::string& Ficheiro);

    // Whether the last import succeeded (and brought in LastCounts), and, when it failed, where: the
    // table, the row's key and the column, beside the reader's or the store's message.
    bool Succeeded() const { return succeeded_; }
    const std::string& LastError() const { return last_error_; }
    const ImportCounts& LastCounts() const { return counts_; }
    // The rows of a missing parent that the last import brought in under KeepOrphans, each with its
    // table, key and the parent it lacks.
    const std::vector<std::string>& LastOrphans() const { return orphans_; }

private:
    bool DoCheck(const std::string& Caminho, const std::string& Ficheiro);
    bool run(std::string_view procedure, const std::string& Caminho, const std::string& Ficheiro);

    bool succeeded_ = false;
    std::string last_error_;
    ImportCounts counts_;
    std::vector<std::string> orphans_;
};

// The procedure ImportaDados runs for `Versao`; nothing for a version it refuses.
NIMBARA_API std::optional<std::string> ImportProcedureFor(std::string_view Versao);
// The names of all twelve procedures, the nine that no version reaches included.
NIMBARA_API std::vector<std::string> ImportProcedures();
// Why `file` cannot be imported (missing, empty, or not a readable old database); nothing when it can.
NIMBARA_API std::optional<std::string> ImportSourceProblem(const std::filesystem::path& file);

// A layout of the old files: the five data tables with the column counts a run of versions kept.
struct NIMBARA_API ImportLayout {
    std::string Name;                     // "050313B"
    std::vector<std::string> Versions;    // the versions whose files have it: "0513", "0514"
    std::vector<std::string> Procedures;  // the procedure that imports each of Versions, in that order
};

// What an old file's tables say of the version it comes from.
struct NIMBARA_API ImportFileLayout {
    std::optional<ImportLayout> Layout;  // nothing when its tables fit no known layout
    std::string Tables;                  // the data tables found with their column counts, for messages
};

// Every known layout, oldest first.
NIMBARA_API std::vector<ImportLayout> ImportLayouts();
// The layout of the old file at `file`, recognised from its tables and their columns. Throws
// std::runtime_error naming the file when it cannot be read.
NIMBARA_API ImportFileLayout RecogniseImportLayout(const std::filesystem::path& file);
// Whether `procedure` reads files of the layout called `layout`. The procedures refuse a file whose
// layout they do not read, before anything is written, naming the layout found.
NIMBARA_API bool ImportProcedureReads(std::string_view procedure, std::string_view layout);

}  // namespace nimbara
