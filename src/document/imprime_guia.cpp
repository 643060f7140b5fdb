// Finishing a held Guia: validation, the report file, printing when all is well, and the answer.
#include <algorithm>
#include <exception>
#include <filesystem>
#include <system_error>

#include "document/validation_report.hpp"
#include "nimbara/GlobalFrameWork.hpp"
#include "foundation/required_numbers.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/pdf_printer.hpp"
#include "printing/printable.hpp"
#include "validation/guia_rules.hpp"

namespace nimbara {
namespace {

constexpr std::string_view kFailureAnswer =
    "<LIST><ITEM><ERRO_ID>-1</ERRO_ID><LOG_FILE>Nao Disponivel</LOG_FILE></ITEM></LIST>";

// Nothing in the answer is escaped: the path goes in as it is.
std::string answer(bool errors, std::string_view log_file)
{
    std::string out = "<LIST><ITEM><ERRO_ID>";
    out += errors ? "-1" : "0";
    out += "</ERRO_ID><LOG_FILE>";
    out += log_file;
    out += "</LOG_FILE></ITEM></LIST>";
    return out;
}

}  // namespace

ValidationResult cls_ValProdutosA::DoValidaGuia() const
{
    return validation::DoValidaGuia(arrays_.arrGuia, arrays_.arrCabecalho);
}

std::filesystem::path cls_ValProdutosA::reportFolder() const
{
    return report_folder_ ? *report_folder_ : GlobalFrameWork::DefaultOutputFolder();
}

std::filesystem::path cls_ValProdutosA::printFolder() const { return print_folder_ ? *print_folder_ : reportFolder(); }

std::vector<Failure> cls_ValProdutosA::PrintProblems() const
{
    std::vector<Failure> out;
    for (auto& p : printing::printing_problems(arrays_)) out.push_back({std::move(p.place), std::move(p.what)});
    return out;
}

GuiaOutcome cls_ValProdutosA::ImprimeGuiaOutcome(bool boolOnlyPrinter)
{
    GuiaOutcome outcome;
    outcome.validated = !boolOnlyPrinter;
    print_failure_.reset();
    print_log_entries_.clear();
    copies_asked_ = 0;
    try {
        std::string log;
        if (!arrays_.arrGuia.empty() && !boolOnlyPrinter) {
            document::ValidationReport report = document::build_validation_report(arrays_, catalogue());
            outcome.errors = report.errors;
            outcome.line_errors = std::move(report.line_errors);
            outcome.guia_error = std::move(report.guia_error);
            log = std::move(report.text);
        }

        const bool printing = !outcome.errors && printing_enabled_ && !arrays_.arrGuia.empty() &&
                              !arrays_.arrCabecalho.empty();
        // The request number is read before the report is written, so that a Guia that cannot be
        // printed for it leaves no report behind its failure answer.
        std::int32_t NReq = 0;
        if (printing) NReq = text::require_cell_int32(arrays_.arrCabecalho.at(cab::N_Req, 0));

        // The report is written whenever validation was asked for, even when it holds no text, and
        // before printing, so that a report that cannot be written stops the Guia unprinted.
        if (!boolOnlyPrinter) outcome.report = GlobalFrameWork::WriteUniqueReport(reportFolder(), log);

        if (printing) {
            const cab::Table& cab = arrays_.arrCabecalho;
            const std::string dtRequisicao(cab.text(cab::DataRequisicao, 0)), NDoc(cab.text(cab::NDoc, 0));
            std::shared_ptr<PageSurface> printer = printer_;
            std::shared_ptr<PdfSurface> pdf_printer;
            if (!printer) {
                pdf_printer = make_pdf_printer(printFolder(), NDoc.empty() ? std::to_string(NReq) : NDoc);
                printer = pdf_printer;
            }
            std::int32_t DuplOrig = 0;
            // It empties the tables after its run.
            Imprime_Guias(*printer, form_impressao(), "", NReq, 0, DuplOrig, dtRequisicao, NDoc);
            outcome.copies = copies_asked_;
            outcome.print_failures = print_log_entries_;
            if (print_failure_) outcome.print_failures.push_back(print_failure_->where + ": " + print_failure_->cause);
            if (pdf_printer) outcome.printed = pdf_printer->written();
            // A copy with a fault is no printed Guia: none of the run's files stays behind it.
            if (pdf_printer && (!outcome.print_failures.empty() ||
                                outcome.printed.size() != static_cast<std::size_t>(std::max(outcome.copies, 0)))) {
                for (const auto& pdf : outcome.printed) {
                    std::error_code ignored;
                    std::filesystem::remove(pdf, ignored);
                }
                outcome.printed.clear();
            }
        }
    } catch (const std::exception& e) {
        outcome.failure = Failure{"ImprimeGuia", e.what()};
    }
    // The fixed failure answer says nothing of its cause: a host finds it here.
    last_error_ = outcome.failure;
    return outcome;
}

std::string guia_answer(const GuiaOutcome& outcome)
{
    if (outcome.failure) return std::string(kFailureAnswer);
    return answer(outcome.errors, outcome.report ? outcome.report->string() : std::string());
}

std::string cls_ValProdutosA::ImprimeGuia(bool boolOnlyPrinter) { return guia_answer(ImprimeGuiaOutcome(boolOnlyPrinter)); }

}  // namespace nimbara
