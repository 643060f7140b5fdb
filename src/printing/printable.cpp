#include "printing/printable.hpp"

#include <exception>

#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"
#include "foundation/text.hpp"
#include "nimbara/cls_ParametroA.hpp"
#include "printing/barcode_payload.hpp"

namespace nimbara::printing {
namespace {

class Collector {
public:
    std::vector<PrintProblem> problems;

    // Runs a conversion the printing will run, and notes its failure at the place.
    template <class Conversion>
    void converts(const std::string& place, std::string_view value, std::string_view kind, Conversion&& conversion)
    {
        try {
            conversion();
        } catch (const std::exception& e) {
            problems.push_back({place, "\"" + std::string(value) + "\" is not " + std::string(kind) + " (" + e.what() + ")"});
        }
    }

    void fits(const std::string& place, std::string_view value, int width)
    {
        const auto length = chars::length(value);
        if (length > static_cast<std::size_t>(width))
            problems.push_back({place, "\"" + std::string(value) + "\" has " + std::to_string(length) +
                                           " characters; the barcode carries " + std::to_string(width)});
    }
};

}  // namespace

std::vector<PrintProblem> printing_problems(const GuiaArrays& arrays)
{
    Collector c;
    const auto& cab = arrays.arrCabecalho;
    const auto header = [&](cab::Field f) { return std::string(cab.text(f, 0)); };
    c.converts("/cabecalho/cb_N_Req", header(cab::N_Req), "a whole number of 32 bits",
               [&] { text::require_cell_int32(cab.at(cab::N_Req, 0)); });
    c.converts("/cabecalho/cb_TipoAcesso", header(cab::TipoAcesso), "a number",
               [&] { text::require_cell_number(cab.at(cab::TipoAcesso, 0)); });
    // The header and footer read these as they stand: the empty text is no number there.
    c.converts("/cabecalho/cb_Pagamento", header(cab::Pagamento), "a number",
               [&] { text::require_number(header(cab::Pagamento)); });
    c.converts("/cabecalho/cb_CodContrato", header(cab::CodContrato), "a number",
               [&] { text::require_number(header(cab::CodContrato)); });
    const std::string jpp = text::to_upper(text::trim(header(cab::JppCredenciado)));
    if (jpp != "TRUE" && jpp != "FALSE")
        c.converts("/cabecalho/cb_JppCredenciado", header(cab::JppCredenciado), "True, False or a number",
                   [&] { text::require_number(header(cab::JppCredenciado)); });
    for (const auto& f : kHeadFields) c.fits("/cabecalho/" + std::string(f.name), header(f.field), f.width);
    // The head's fields stand at fixed places after the Julian date, which goes in as it stands.
    if (chars::length(header(cab::Drqjul)) != 4)
        c.problems.push_back({"/cabecalho/cb_Drqjul", "\"" + header(cab::Drqjul) +
                                                          "\" is not 4 characters, as the barcode carries it"});

    // The settings as printing reads them: a Guia without parameters prints with the defaults.
    cls_ParametroA par;
    par.PreencheObjecto(arrays.arrParametros);
    c.converts("/parametros/vGuiaNVias", par.vGuiaNVias, "a whole number from 1 to 32767", [&] {
        if (text::require_int16(par.vGuiaNVias) < 1) throw std::out_of_range("no copy");
    });
    struct Setting {
        std::string cls_ParametroA::*member;
        const char* name;
        bool whole;
    };
    for (const Setting& setting : {Setting{&cls_ParametroA::vGuiaMargensTopo, "vGuiaMargensTopo", false},
                                              Setting{&cls_ParametroA::vGuiaMargensEsquerda, "vGuiaMargensEsquerda", false},
                                              Setting{&cls_ParametroA::VCod2DFonteSize, "VCod2DFonteSize", false},
                                              Setting{&cls_ParametroA::vCod2DRatio, "vCod2DRatio", false},
                                              Setting{&cls_ParametroA::vCod2DErroLevel, "vCod2DErroLevel", true},
                                              Setting{&cls_ParametroA::vCod2DNColunas, "vCod2DNColunas", true},
                                              Setting{&cls_ParametroA::vCod2DNLinhas, "vCod2DNLinhas", true},
                                              Setting{&cls_ParametroA::vCod2DPDFMode, "vCod2DPDFMode", true}}) {
        const std::string& value = par.*(setting.member);
        const bool whole = setting.whole;
        c.converts("/parametros/" + std::string(setting.name), value, whole ? "a whole number" : "a number", [&] {
            if (whole) text::require_int32(value);
            else text::require_number(value);
        });
    }

    const auto& lines = arrays.arrGuia;
    for (int row = 0; row < lines.row_count(); ++row) {
        const std::string at = "/produtos/" + std::to_string(row) + "/";
        const std::string number(lines.text(guia::N_Linha, row));
        c.converts(at + "N_Linha", number, "a whole number of 32 bits",
                   [&] { text::require_cell_int32(lines.at(guia::N_Linha, row)); });
        const std::string quantity(lines.text(guia::D_Quantidade, row));
        if (!quantity.empty())
            c.converts(at + "D_Quantidade", quantity, "a whole number of 32 bits", [&] { text::require_int32(quantity); });
        // The row's right-hand columns depend on it: "0" when there is none.
        const std::string weekly(lines.text(guia::TaxEsp_Quantidade, row));
        c.converts(at + "TaxEsp_Quantidade", weekly, "a whole number of 16 bits", [&] { text::require_int16(weekly); });
        for (const auto& f : kItemFields) {
            const std::string value(lines.text(f.field, row));
            if (!f.digit) {
                c.fits(at + std::string(f.name), value, f.width);
                continue;
            }
            c.converts(at + std::string(f.name), value, "a one-digit number", [&] {
                if (lines.at(f.field, row)) pad_zero(std::to_string(text::require_int16(value)), 1);
            });
        }
    }

    const auto& services = arrays.arrServEsp;
    for (int row = 0; row < services.row_count(); ++row) {
        const std::string at = "/servicos/" + std::to_string(row) + "/";
        c.fits(at + "CodServEsp", services.text(serv::CodServEsp, row), kServiceCodeWidth);
        c.fits(at + "Valor", services.text(serv::Valor, row), kServiceValueWidth);
        c.converts(at + "Valor", services.text(serv::Valor, row), "a whole number of 32 bits",
                   [&] { text::require_cell_int32(services.at(serv::Valor, row)); });
        c.converts(at + "CodServEsp", services.text(serv::CodServEsp, row), "a whole number of 32 bits",
                   [&] { text::require_cell_int32(services.at(serv::CodServEsp, row)); });
        c.converts(at + "N_Linha", services.text(serv::N_Linha, row), "a whole number of 32 bits",
                   [&] { text::require_cell_int32(services.at(serv::N_Linha, row)); });
    }
    return c.problems;
}

}  // namespace nimbara::printing
