#include "guia_command.hpp"

#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"

namespace nimbara::cli {

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
    if (const auto refused = fill_guia(guia, file)) return refuse(run.file + ": " + *refused);

    const GuiaOutcome outcome = guia.ImprimeGuiaOutcome(run.only_printer);
    if (outcome.failure) return refuse(outcome.failure->cause);
    out << guia_answer(outcome) << '\n';
    for (const auto& pdf : outcome.printed) err << "nimbara " << command << ": printed " << pdf.string() << '\n';
    if (!outcome.print_failures.empty()) {
        for (const auto& f : outcome.print_failures) err << "nimbara " << command << ": not printed whole: " << f << '\n';
        return 3;
    }
    return outcome.errors ? 1 : 0;
}

}  // namespace nimbara::cli
