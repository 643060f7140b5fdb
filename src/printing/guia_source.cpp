#include "printing/guia_source.hpp"

#include "foundation/required_numbers.hpp"
#include "nimbara/GlobalXML.hpp"

namespace nimbara::printing {

FieldTable printed_line(const GuiaSource& source, int index)
{
    FieldTable line = source.line(index);
    if (line.text(guia::B_Produto, 0) == "C07" && line.text(guia::Formato, 0) == "07")
        line.set(guia::Formato, 0, std::string("01"));
    return line;
}

FieldTable ArraySource::line(int index) const
{
    const FieldTable& g = arrays_.arrGuia;
    FieldTable line(g.field_count());
    for (int field = 0; field < g.field_count(); ++field) line.set(field, 0, g.at(field, index));
    return line;
}

FieldTable ArraySource::services(int index) const
{
    return GlobalXML::getArrServEspByLinha(arrays_.arrServEsp,
                                           text::require_cell_int32(arrays_.arrGuia.at(guia::N_Linha, index)));
}

}  // namespace nimbara::printing
