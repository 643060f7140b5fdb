// Finishing a held Guia: validation, the report file, printing when all is well, and the answer.
#include <exception>

#include "document/pdf_printer.hpp"
#include "document/validation_report.hpp"
#include "foundation/component.hpp"
#include "foundation/file_names.hpp"
#include "foundation/required_numbers.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
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
    return report_folder_ ? *report_folder_ : component_location().folder;
}

std::filesystem::path cls_ValProdutosA::printFolder() const { return print_folder_ ? *print_folder_ : reportFolder(); }

std::string cls_ValProdutosA::ImprimeGuia(bool boolOnlyPrinter)
{
    try {
        bool errors = false;
        std::string log;
        if (!arrays_.arrGuia.empty() && !boolOnlyPrinter) {
            document::ValidationReport report = document::build_validation_report(arrays_);
            errors = report.errors;
            log = std::move(report.text);
        }

        if (!errors && printing_enabled_ && !arrays_.arrGuia.empty() && !arrays_.arrCabecalho.empty()) {
            const FieldTable& cab = arrays_.arrCabecalho;
            const std::int32_t NReq = text::require_cell_int32(cab.at(cab::N_Req, 0));
            const std::string dtRequisicao(cab.text(cab::DataRequisicao, 0)), NDoc(cab.text(cab::NDoc, 0));
            std::shared_ptr<PageSurface> printer = printer_;
            if (!printer)
                printer = document::make_pdf_printer(printFolder(), NDoc.empty() ? std::to_string(NReq) : NDoc);
            std::int32_t DuplOrig = 0;
            // It empties the tables after its run.
            Imprime_Guias(*printer, form_impressao(), "", NReq, 0, DuplOrig, dtRequisicao, NDoc);
        }

        // The report is written whenever validation was asked for, even when it holds no text.
        std::string log_file;
        if (!boolOnlyPrinter) {
            log_file = GlobalFrameWork::GetUniqueFileName(reportFolder().string());
            GlobalFrameWork::EscreveFicheiro(log_file, log);
        }
        return answer(errors, log_file);
    } catch (const std::exception&) {
        return std::string(kFailureAnswer);
    }
}

}  // namespace nimbara
