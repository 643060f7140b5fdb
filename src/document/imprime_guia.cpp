// Finishing a held Guia: validation, the report file, printing when all is well, and the answer.
#include <exception>

#include "document/validation_report.hpp"
#include "foundation/component.hpp"
#include "foundation/file_names.hpp"
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
            // The print drive (Imprime_Guias) is called here: request number (header field 0 as a
            // 32-bit number), request date (field 15), document number (field 16), an empty client
            // code, copy 0, duplicate counter 0. It empties the tables after its run.
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
