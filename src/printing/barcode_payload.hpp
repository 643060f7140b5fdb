#pragma once
// The text in a page's PDF417 symbol: a fixed-width head, the count of the page's lines and one
// item per line, all left-padded with "0". A value longer than its field is refused, and the page
// driver gives up the copy, as the counter could not read such a page.
#include <cstdint>
#include <string>
#include <string_view>

#include "nimbara/guia_arrays.hpp"

namespace nimbara::printing {

// The value behind width - length "0"s; a value longer than the field throws std::out_of_range.
std::string pad_zero(std::string_view value, int width);

// The head as the page loop builds it, 95 characters, page number and total pages included; the
// finish keeps 85 of them. Throws when the header was never filled or a field does not fit.
std::string codigo_cabecalho(const cab::Table& arrCabecalho, std::int32_t pag, std::int32_t TotPaginas);

// One line's item: its fields at fixed widths and one-digit codes, then the service count and the
// service section the page driver gathered for it.
std::string item_linha(const guia::Table& arrGuia, int row, std::string_view Str_CodBarrasServEsp,
                       std::int32_t Total_Se_CodBarras);

// One service of the service section: its code in 2 characters, its value in 7.
std::string item_servico(std::string_view code, std::string_view value);

// Writes the page number into the head (which keeps its first 45 characters and the 38 from
// position 48) and answers the payload: the head, the line count in 2, the items.
std::string finish_payload(std::string& codigoCabecalho, std::int32_t pag, std::int32_t line_count,
                           std::string_view codigoLinhas);

}  // namespace nimbara::printing
