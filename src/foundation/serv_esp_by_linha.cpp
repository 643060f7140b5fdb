#include "foundation/cell_values.hpp"
#include "nimbara/guia_arrays.hpp"

namespace nimbara::GlobalXML {

serv::Table getArrServEspByLinha(const serv::Table& arrServEsp, std::int32_t lngLinha)
{
    serv::Table result;
    for (int row = 0; row < arrServEsp.row_count(); ++row) {
        // Line numbers compare as numbers, so "01" and "1" name the same line and an empty cell
        // names line 0; text that is no number names no line.
        const auto number = cell_number(arrServEsp.at(serv::N_Linha, row));
        if (!number || *number != lngLinha) continue;
        const int added = result.add_row();
        for (const auto field : serv::Table::fields()) result.set(field, added, arrServEsp.at(field, row));
    }
    return result;
}

}  // namespace nimbara::GlobalXML
