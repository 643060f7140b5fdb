#include "guia_command.hpp"

#include <unistd.h>

#include <filesystem>

#include "foundation/file_names.hpp"
#include "guia_file.hpp"
#include "nimbara/cls_ValProdutosA.hpp"

namespace nimbara::cli {
namespace {

// The report is written without a word when it cannot be, so the folder is checked beforehand.
std::optional<std::string> unusable_folder(const std::string& what, const std::filesystem::path& folder)
{
    std::error_code ec;
    if (!std::filesystem::is_directory(folder, ec)) return what + " " + folder.string() + " is not a folder";
    if (::access(folder.c_str(), W_OK | X_OK) != 0) return what + " " + folder.string() + " is not writable";
    return std::nullopt;
}

std::string between(const std::string& text, std::string_view open, std::string_view close)
{
    const auto start = text.find(open);
    if (start == std::string::npos) return {};
    const auto from = start + open.size();
    const auto end = text.find(close, from);
    return end == std::string::npos ? std::string() : text.substr(from, end - from);
}

}  // namespace

int run_guia(const GuiaRun& run, std::ostream& out, std::ostream& err, const std::string& command)
{
    const auto refuse = [&](const std::string& message) {
        err << "nimbara " << command << ": " << message << '\n';
        return 2;
    };

    GuiaFile file;
    try {
        file = read_guia_file(run.file);
    } catch (const GuiaFileError& e) {
        return refuse(e.what());
    }

    cls_ValProdutosA guia;
    if (run.report_dir) guia.setReportFolder(*run.report_dir);
    if (run.out_dir) guia.setPrintFolder(*run.out_dir);
    guia.setPrintingEnabled(run.printing);
    if (!run.only_printer) {
        if (const auto problem = unusable_folder("report folder", guia.reportFolder())) return refuse(*problem);
    }
    // Printing failures only reach the print log, so the output folder is checked beforehand too.
    if (run.printing) {
        if (const auto problem = unusable_folder("output folder", guia.printFolder())) return refuse(*problem);
    }
    if (const auto refused = fill_guia(guia, file)) return refuse(run.file + ": " + *refused);

    const std::string answer = guia.ImprimeGuia(run.only_printer);
    const std::string log_file = between(answer, "<LOG_FILE>", "</LOG_FILE>");
    if (!run.only_printer && log_file != "Nao Disponivel" && !GlobalFrameWork::FileExists(log_file))
        return refuse("the report " + log_file + " could not be written");
    out << answer << '\n';
    return between(answer, "<ERRO_ID>", "</ERRO_ID>") == "0" ? 0 : 1;
}

}  // namespace nimbara::cli
