#include "printing/guia_source.hpp"

#include "foundation/required_numbers.hpp"
#include "nimbara/cls_ParametroA.hpp"

namespace nimbara::printing {

guia::Table printed_line(const GuiaSource& source, int index)
{
    guia::Table line = source.line(index);
    if (line.text(guia::B_Produto, 0) == "C07" && line.text(guia::Formato, 0) == "07")
        line.set(guia::Formato, 0, std::string("01"));
    return line;
}

guia::Table ArraySource::line(int index) const
{
    guia::Table line;
    for (const auto field : guia::Table::fields()) line.set(field, 0, arrays_.arrGuia.at(field, index));
    return line;
}

serv::Table ArraySource::services(int index) const
{
    return GlobalXML::getArrServEspByLinha(arrays_.arrServEsp,
                                           text::require_cell_int32(arrays_.arrGuia.at(guia::N_Linha, index)));
}

std::optional<cls_ParametroA> ArraySource::parameters() const
{
    cls_ParametroA parametros;
    parametros.PreencheObjecto(arrays_.arrParametros);
    return parametros;
}

SymbolSettings ArraySource::symbol_settings() const { return symbol_settings_of(*parameters()); }

SymbolSettings symbol_settings_of(const cls_ParametroA& parametros)
{
    return {{text::require_int32(parametros.vCod2DErroLevel), text::require_int32(parametros.vCod2DNColunas),
             text::require_int32(parametros.vCod2DNLinhas), parametros.vCod2DTruncated == "1",
             text::require_int32(parametros.vCod2DPDFMode), parametros.vCod2DApplyTilde == "1"},
            text::require_number(parametros.VCod2DFonteSize),
            text::require_number(parametros.vCod2DRatio)};
}

}  // namespace nimbara::printing
