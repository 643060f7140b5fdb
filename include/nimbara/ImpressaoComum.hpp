#pragma once
// The page logic that both editions of the printing class share: the drawing primitives, the fixed
// form, the header and footer, the print log. It is written once and told which edition it serves,
// where the editions differ.
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "nimbara/FormImpressao.hpp"
#include "nimbara/Notifier.hpp"
#include "nimbara/PageSurface.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

enum class Edition {
    Array,     // cls_ImpressaoA, fed from the in-memory Guia
    Database,  // cls_Impressao, fed from the database
};

namespace printing {
class Page;
}

// Why a Guia would not print whole, found before printing: the place (a Guia file's key with its
// row, or a stored Guia's column with its line number) and what is wrong there.
struct PrintProblem {
    std::string place;
    std::string what;
    // The cause without the Guia's own values or line (a column and the kind of fault), for those
    // that count Guias by cause.
    std::string cause;
    friend bool operator==(const PrintProblem&, const PrintProblem&) = default;
};

// One millimetre of the page in twips, formed as the program always formed it.
inline constexpr double kTwipsPerMm = 567.0 / 10.0;

class NIMBARA_API ImpressaoComum {
public:
    // The special-service section of the current line's barcode item, and how many services it holds.
    std::string Str_CodBarrasServEsp;
    std::int32_t Total_Se_CodBarras = 0;

    // A frame of four black rectangles (width w, height h, line thickness e, top-left X, y, all in
    // millimetres with the page offsets already added); each argument is truncated to whole twips
    // by itself. Leaves FillColor 0 and FillStyle 0 behind.
    void printaCaixa(double w, double h, double e, double X, double y, PageSurface& impressora);
    // One rectangle in the fill colour and style the caller has just set.
    void printaCaixaFilled(double w, double h, double X, double y, PageSurface& impressora);
    void printacirculo(double X, double y, double R, PageSurface& impressora);

    // The characters of an amount for a comb of cells filled from the right: with width 1, the
    // position-th character from the right. A position that starts before the text is refused with
    // std::out_of_range.
    static std::string ValorAlinhado(const std::string& valor, std::int32_t largura, std::int32_t posicao);
    static std::string ApagaValorAlinhado(const std::string& valor, std::int32_t largura, std::int32_t posicao);

    // Everything on a page that does not depend on the Guia's lines. DplOriginal is 0 for the
    // original, else the number of the duplicate; dtRequisicao is already formatted.
    void PrintaParteFixaGuiaExp(PageSurface& impressora, const FormImpressao& imagens, std::int32_t DplOriginal,
                                const std::string& dtRequisicao);

    // The header fields, the sender's address, the remarks and the payment marks. Answers 0.
    std::int32_t ImprimeHeaderFooter(PageSurface& impressora2, const std::string& CAMPO_CodTerceiro,
                                     const std::string& CAMPO_Ncliente, const std::string& CAMPO_Ncontr,
                                     const std::string& CAMPO_PortePago, const std::string& CAMPO_ClienteExp,
                                     const std::string& CAMPO_NFiscal, const std::string& CAMPO_Morada,
                                     const std::string& CAMPO_CPostal, const std::string& CAMPO_Obs,
                                     const std::string& CAMPO_Jpp, const std::string& CAMPO_PPagDif);

    // A test page to hold against pre-printed paper: the fixed form and the logo, as every printed
    // page begins.
    void PrintTestPage(PageSurface& impressora, const FormImpressao& imagens, std::int32_t DplOriginal,
                       const std::string& dtRequisicao);

    // Appends a dated line to the print log. Never fails: a log that cannot be written loses the entry.
    void WriteLog(const std::string& sLogEntry);

    // A value of the per-user settings of the embedding application (section "Impressao"), or the default.
    std::string getImpressaoSetting(const std::string& Key, const std::string& vDefaultValue);

    // The page offsets in millimetres; the page driver sets them on entry, and a host that draws
    // the fixed parts by itself (a test page) sets them here.
    void SetPageOffsets(double left_mm, double top_mm);

    // Where WriteLog writes: by default $XDG_STATE_HOME/nimbara/nimbara.log (GlobalFrameWork::DefaultPrintLog).
    const std::filesystem::path& log_path() const { return log_path_; }
    void set_log_path(std::filesystem::path path) { log_path_ = std::move(path); }
    // Where this object's messages go; by default the process-wide notifier. The host keeps it alive.
    void set_notifier(Notifier* host) { notifier_ = host; }
    // Every entry this object has logged, in order, whether or not the log could be written.
    const std::vector<std::string>& log_entries() const { return log_entries_; }

    Edition edition() const { return edition_; }

protected:
    explicit ImpressaoComum(Edition edition);
    ~ImpressaoComum() = default;
    ImpressaoComum(const ImpressaoComum&) = default;
    ImpressaoComum& operator=(const ImpressaoComum&) = default;

private:
    // The library's page helpers read the offsets and the edition.
    friend class printing::Page;

    Edition edition_;
    // Offsets of the page in millimetres, the page driver's to set.
    double LeftX = 0;
    double TopY = 0;
    std::filesystem::path log_path_;
    Notifier* notifier_ = nullptr;
    std::vector<std::string> log_entries_;
};

}  // namespace nimbara
