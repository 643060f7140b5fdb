// What belongs to the Guia as a whole, printed into the cells of the fixed form: the header
// fields, the sender's address, the remarks and the payment marks.
#include <algorithm>
#include <stdexcept>

#include "foundation/run_time_errors.hpp"
#include "foundation/chars.hpp"
#include "foundation/required_numbers.hpp"
#include "foundation/text.hpp"
#include "nimbara/ImpressaoComum.hpp"
#include "printing/edition_layout.hpp"
#include "printing/page.hpp"

namespace nimbara {

std::int32_t ImpressaoComum::ImprimeHeaderFooter(
    PageSurface& impressora2, const std::string& CAMPO_CodTerceiro, const std::string& CAMPO_Ncliente,
    const std::string& CAMPO_Ncontr, const std::string& CAMPO_PortePago, const std::string& CAMPO_ClienteExp,
    const std::string& CAMPO_NFiscal, const std::string& CAMPO_Morada, const std::string& CAMPO_CPostal,
    const std::string& CAMPO_Obs, const std::string& CAMPO_Jpp, const std::string& CAMPO_PPagDif)
{
    const printing::Page page(*this);
    page.guarded("ImprimeHeaderFooter", [&] {
        auto& s = impressora2;
        const printing::EditionLayout& layout = printing::edition_layout(edition_);
        page.setFont(s, "Times New Roman", 8, false);
        page.printAt(s, 5, 36.5, CAMPO_CodTerceiro);
        page.printAt(s, 34, 36.5, CAMPO_Ncliente);
        // Placeholder contract numbers leave the cell empty; only an edition that has them reads the number.
        const auto hidden = [&] {
            if (layout.hidden_contracts.empty()) return false;
            const double contract = text::require_number(CAMPO_Ncontr);
            return std::find(layout.hidden_contracts.begin(), layout.hidden_contracts.end(), contract) !=
                   layout.hidden_contracts.end();
        };
        if (!hidden()) page.printAt(s, 62, 36.5, CAMPO_Ncontr);
        page.printAt(s, 92, 36.5, CAMPO_PortePago);
        page.printAt(s, 125, 36.5, CAMPO_ClienteExp);
        page.printAt(s, 230, 36.5, CAMPO_NFiscal);
        page.printAt(s, 7.5, 125.1, chars::left(CAMPO_Morada, 82));
        page.printAt(s, 7.5, 130.1, chars::mid(CAMPO_Morada, 83, 82) + " " + CAMPO_CPostal);

        page.printRemarks(s, layout.remarks_line ? printing::replace_breaks(CAMPO_Obs, *layout.remarks_line) : CAMPO_Obs,
                     layout.remarks);

        s.setCurrentX(page.twipsX(layout.jpp_mark_x));
        s.setCurrentY(page.twipsY(26.2));
        if (printing::as_boolean(CAMPO_Jpp)) s.Print("X");

        const double kind = text::require_number(CAMPO_PPagDif);
        if (kind == 0 || kind == 1 || kind == 2)
            if (const auto x = layout.payment_mark_x[static_cast<std::size_t>(kind)]) page.printAt(s, *x, 26.2, "X");
    });
    return 0;
}

}  // namespace nimbara
