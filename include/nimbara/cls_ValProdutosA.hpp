#pragma once
// The headless façade: holds a Guia poured in as text, validates product lines and Guias against a
// rule catalogue (the compiled-in one unless another is given), and reports what it found.
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/FormImpressao.hpp"
#include "nimbara/Notifier.hpp"
#include "nimbara/export.hpp"
#include "nimbara/guia_fields.hpp"
#include "nimbara/PageSurface.hpp"
#include "nimbara/error_array.hpp"
#include "nimbara/guia_arrays.hpp"
#include "nimbara/possible_value.hpp"

namespace nimbara {

namespace validation {
class RuleCatalogue;
}

// Why an operation failed: the operation (or routine) and the cause in words.
struct Failure {
    std::string where;
    std::string cause;
    friend bool operator==(const Failure&, const Failure&) = default;
};

// A line that failed validation: its row in the order of filling (from 0), its N_Linha, its error,
// and the values the report lists as possible for it (weight steps when `weight_steps`).
struct LineError {
    int row = 0;
    std::string N_Linha;
    ErrorArray error;
    std::vector<PossibleValue> possible_values = {};
    bool weight_steps = false;
    friend bool operator==(const LineError&, const LineError&) = default;
};

// What ImprimeGuia did, for hosts that want more than its answer.
struct GuiaOutcome {
    bool validated = false;  // false when only printing was asked for
    bool errors = false;     // a line or a rule of the whole Guia failed
    std::vector<LineError> line_errors;  // as the report lists them
    ValidationResult guia_error;         // a rule of the whole Guia, judged when every line passed
    std::optional<std::filesystem::path> report;  // the report file, when one was written
    // The files the default printer finished, in order; a run in which a copy did not come out whole
    // leaves none (they are removed), as a partial Guia is no printed Guia.
    std::vector<std::filesystem::path> printed;
    int copies = 0;                               // the copies the print run set out to make
    // What ended the call before its end; the answer is then the fixed failure answer.
    std::optional<Failure> failure;
    // What the print run logged as failed: a copy or a page that did not come out whole. The
    // answer does not show it, as it never did.
    std::vector<std::string> print_failures;
};

// ImprimeGuia's answer for an outcome: <LIST><ITEM><ERRO_ID>0 or -1</ERRO_ID><LOG_FILE>path</LOG_FILE>
// </ITEM></LIST>, or the fixed failure answer after a failure.
NIMBARA_API std::string guia_answer(const GuiaOutcome& outcome);

class NIMBARA_API cls_ValProdutosA {
public:
    // Judges lines and lists possible values with the compiled-in catalogue.
    cls_ValProdutosA() = default;
    // Judges lines and lists possible values with the catalogue given, such as one built from the
    // rule rows of another source; the object keeps a copy. The catalogue's type is internal, so
    // only the library's own code (the database road) builds one.
    NIMBARA_LOCAL explicit cls_ValProdutosA(const validation::RuleCatalogue& catalogue);

    // Judges one product line: nothing when exactly one active rule of the product accepts every
    // value and the special services pass, else the first error met in the fixed order of checks.
    [[nodiscard]] ValidationResult DoValidaProduto(std::string_view strIdProduto, std::string_view strCodZtaxacao,
                                     std::int32_t lngPeso, std::string_view strVelocidade,
                                     std::string_view strFormato, std::string_view bolPreTratamento,
                                     std::string_view strDesconto, std::string_view strCodAmbitoDist,
                                     std::string_view strCodAmostraDireta, std::string_view strListaServEsp) const;

    // The lists of values, handed out exactly as the catalogue holds them. The lists of speeds,
    // formats, sampling deliveries and zones hold the same rows; the accepted values of those
    // dimensions stand in the possible-value documents.
    std::string_view getProdutoLOV() const;
    std::string_view getVelocidadeLOV() const;
    std::string_view getFormatoLOV() const;
    std::string_view getDescontosLOV() const;
    std::string_view getSEspeciaisLOV() const;
    std::string_view getEntregaSamplingLOV() const;
    std::string_view getAmbitoDistribuicaoLOV() const;
    std::string_view getZonaTaxacaoLOV() const;

    // ---- The in-memory Guia --------------------------------------------------------------------
    // Values are stored trimmed; an argument that is the empty text leaves its cell empty.

    // Nothing on success; -1 when the call failed (rows stored before the failure stay).
    using FillAnswer = std::optional<std::int32_t>;

    // Writes row 0 of the header: a second call overwrites the fields it is given and keeps those
    // for which it gets the empty text. Answers 0, or -1 after a failure.
    [[nodiscard]] std::int32_t PreencheCabecalho(std::string_view cb_N_Req, std::string_view cb_CodTerceiro,
                                   std::string_view cb_CodCliente, std::string_view cb_CodContrato,
                                   std::string_view cb_CodCredencial, std::string_view cb_Nome,
                                   std::string_view cb_NContribuinte, std::string_view cb_Morada,
                                   std::string_view cb_CodPostal, std::string_view cb_DesigPostal,
                                   std::string_view cb_Obs, std::string_view cb_JppCredenciado,
                                   std::string_view cb_Pagamento, std::string_view cb_NCredencial,
                                   std::string_view cb_Drqjul, std::string_view cb_DataRequisicao,
                                   std::string_view cb_NDoc, std::string_view cb_IDReqAnual,
                                   std::string_view cb_NCompromisso, std::string_view cb_TipoAcesso);

    // Adds one product line. A pre-treatment of 0 is stored as an empty cell, except on products of
    // the P family in zone "01", which always carry "0"; a pre-treatment that is no number (the empty
    // text among them) drops the line and answers -1.
    [[nodiscard]] FillAnswer PreencheProduto(std::string_view A_Zona_Taxacao, std::string_view B_Produto,
                               std::string_view E_Velocidade, std::string_view D_Quantidade,
                               std::string_view N_Linha, std::string_view ListaServesp,
                               std::string_view CodAmbitoDist, std::string_view Escalao, std::string_view Formato,
                               std::string_view PreTratamento, std::string_view Desconto,
                               std::string_view TaxEsp_Quantidade, std::string_view TaxEsp_Semana,
                               std::string_view Entrega_Sampling, std::string_view Vexora,
                               std::string_view DivisaoRemetente, std::string_view CodigoCampanha,
                               std::string_view N_Req, std::string_view caracte, std::string_view refClie);

    // Adds one special service of a line; nothing checks that the line exists.
    [[nodiscard]] FillAnswer PreencheServico(std::string_view N_Linha, std::string_view CodServEsp, std::string_view Valor);

    // Adds one row of print and barcode parameters; readers use the first row only.
    [[nodiscard]] FillAnswer PreencheParametros(std::string_view VCod2DFonteSize, std::string_view vCod2DRatio,
                                  std::string_view vCod2DNColunas, std::string_view vCod2DNLinhas,
                                  std::string_view vCod2DErroLevel, std::string_view vCod2DPDFMode,
                                  std::string_view VCod2DTruncatedRuncated, std::string_view vCod2DApplyTilde,
                                  std::string_view vGuiaNVias, std::string_view vGuiaMargensTopo,
                                  std::string_view vGuiaMargensEsquerda, std::string_view vCodTerceiro);

    // The same calls with named fields.
    [[nodiscard]] std::int32_t PreencheCabecalho(const GuiaCabecalho& fields);
    [[nodiscard]] FillAnswer PreencheProduto(const GuiaProduto& fields);
    [[nodiscard]] FillAnswer PreencheServico(const GuiaServico& fields);
    [[nodiscard]] FillAnswer PreencheParametros(const GuiaParametros& fields);

    // Why the last fill operation answered -1, or why the last ImprimeGuia gave the fixed failure
    // answer (a report that cannot be written names its folder and the cause); nothing after a
    // call that succeeded.
    const std::optional<Failure>& LastError() const { return last_error_; }

    const cab::Table& arrCabecalho() const { return arrays_.arrCabecalho; }
    const guia::Table& arrGuia() const { return arrays_.arrGuia; }
    const serv::Table& arrServEsp() const { return arrays_.arrServEsp; }
    const param::Table& arrParametros() const { return arrays_.arrParametros; }
    const GuiaArrays& arrays() const { return arrays_; }

    // ---- Whole Guia, report and answer ---------------------------------------------------------

    // The rules that span lines (minimum quantities, inserts, access type), over the held Guia.
    [[nodiscard]] ValidationResult DoValidaGuia() const;

    // Validates every line, then (when no line failed) the Guia, writes the report into the report
    // folder and answers <LIST><ITEM><ERRO_ID>0 or -1</ERRO_ID><LOG_FILE>path</LOG_FILE></ITEM></LIST>.
    // With boolOnlyPrinter the Guia is neither validated nor reported, only printed.
    [[nodiscard]] std::string ImprimeGuia(bool boolOnlyPrinter);

    // What would keep the held Guia from printing whole, found before anything is drawn: each
    // problem's place is the fill argument and its row ("/produtos/2/Escalao"). Printing does not
    // ask: a Guia with problems prints what it can and logs the rest, as it always did.
    [[nodiscard]] std::vector<Failure> PrintProblems() const;
    // The header's day code (cb_Drqjul) against its date (cb_DataRequisicao): a message naming both
    // when both are given and disagree, else nothing. A day code not given is computed from the date
    // when the header is filled.
    [[nodiscard]] std::optional<std::string> DayCodeConflict() const;

    // Does what ImprimeGuia does and tells what happened; ImprimeGuia's answer is built from it.
    [[nodiscard]] GuiaOutcome ImprimeGuiaOutcome(bool boolOnlyPrinter);

    // Where reports are written; by default the current working folder at the call
    // (GlobalFrameWork::DefaultOutputFolder), never the folder the library is installed in.
    void setReportFolder(std::filesystem::path folder) { report_folder_ = std::move(folder); }
    std::filesystem::path reportFolder() const;

    // A Guia that passes is printed unless printing is turned off (validation and report only).
    void setPrintingEnabled(bool enabled) { printing_enabled_ = enabled; }
    bool printingEnabled() const { return printing_enabled_; }

    // ---- Printing ------------------------------------------------------------------------------

    // Prints the held Guia: a new cls_ImpressaoA gets copies of the four tables, and each of the
    // vGuiaNVias copies is one print job on impr, the margins turned from twips into millimetres;
    // DuplOrig counts the copies (0 is the original). The tables are emptied after the run; after a
    // failure all but the parameters are, and nothing is reported.
    void Imprime_Guias(PageSurface& impr, const FormImpressao& myPrintForm, const std::string& CodCLiente,
                       std::int32_t NReq, std::int16_t Nvia, std::int32_t& DuplOrig, const std::string& dtRequisicao,
                       const std::string& NGUIA_2);

    // The printer of a Guia that passes: by default each copy becomes a PDF file in the print folder,
    // named after the Guia and the copy, never over an existing file. A host may hand its own surface.
    void setPrinter(std::shared_ptr<PageSurface> printer) { printer_ = std::move(printer); }
    void setPrintFolder(std::filesystem::path folder) { print_folder_ = std::move(folder); }
    // The print folder; by default the report folder.
    std::filesystem::path printFolder() const;
    // Where printing failures are logged; by default GlobalFrameWork::DefaultPrintLog().
    void setPrintLog(std::filesystem::path log) { print_log_ = std::move(log); }
    // Where this object's print run sends its messages; by default the process-wide notifier. The
    // host keeps the notifier alive while it is set.
    void setNotifier(Notifier* host) { notifier_ = host; }

private:
    NIMBARA_LOCAL const validation::RuleCatalogue& catalogue() const;

    std::shared_ptr<const validation::RuleCatalogue> catalogue_;  // none for the compiled-in one
    GuiaArrays arrays_;
    std::optional<std::filesystem::path> report_folder_;
    bool printing_enabled_ = true;
    std::shared_ptr<PageSurface> printer_;
    std::optional<std::filesystem::path> print_folder_;
    std::optional<std::filesystem::path> print_log_;
    Notifier* notifier_ = nullptr;
    std::optional<Failure> last_error_;
    std::optional<Failure> print_failure_;
    std::vector<std::string> print_log_entries_;
    int copies_asked_ = 0;
};

}  // namespace nimbara
