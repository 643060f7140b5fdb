#pragma once
// The stored Guia as the page driver reads it, fetched once through the database edition's feeds:
// the header with its client and contract, the lines of Query_ParteVariavel in their order, each
// line's special services ordered by value, and the symbol's settings of Tbl_Parametro.
#include <optional>
#include <vector>

#include "nimbara/Recordset.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "printing/guia_source.hpp"

namespace nimbara::printing {

// The symbol's settings from the first row of Tbl_Parametro, every column read as text; throws
// std::exception when there is no row or a setting is no number.
SymbolSettings symbol_settings_of(Recordset& parametros);
// The twelve settings of the first row of Tbl_Parametro as text (Null is the empty text); nothing
// when the table has no row.
std::optional<cls_ParametroA> parameters_of(Recordset& parametros);

class DatabaseSource final : public GuiaSource {
public:
    // Reads the Guia varNReq through the printer's feeds, which log their own failures: a Guia that
    // could not be read has no header or no lines, and its walk stops at once.
    DatabaseSource(cls_Impressao& printer, std::int32_t varNReq);

    const cab::Table& header() const override { return header_; }
    int line_count() const override { return static_cast<int>(lines_.size()); }
    guia::Table line(int index) const override { return lines_.at(static_cast<std::size_t>(index)); }
    serv::Table services(int index) const override;
    SymbolSettings symbol_settings() const override;
    std::optional<cls_ParametroA> parameters() const override;

private:
    cls_Impressao& printer_;
    cab::Table header_;
    std::vector<guia::Table> lines_;
    std::vector<std::optional<serv::Table>> services_;  // nothing for a line whose number is no number
};

}  // namespace nimbara::printing
