#include "nimbara/cls_ImpressaoA.hpp"

#include <array>

#include "printing/page.hpp"

namespace nimbara {

std::int32_t cls_ImpressaoA::Imprime_NumPaginas(const std::string& NDoc, PageSurface& impressora2, std::int32_t pag,
                                                std::int32_t TotPaginas, const std::string& NCompromisso)
{
    const printing::Page page(*this);
    page.guarded("Imprime_NumPaginas", [&] { page.printPageNumbers(impressora2, NDoc, pag, TotPaginas, &NCompromisso); });
    return 0;
}

void cls_ImpressaoA::ReimprimirObservacoes(PageSurface& impressora2, const std::string& sObservacoes)
{
    // Its own slices, which differ from the header's in the second and third lines.
    static constexpr std::array<printing::Slice, 5> kSlices = {{{1, 130}, {131, 120}, {250, 130}, {393, 130}, {524, 130}}};
    const printing::Page page(*this);
    page.guarded("ReimprimirObservacoes", [&] {
        page.setFont(impressora2, "Times New Roman", 8, false);
        page.printRemarks(impressora2, MyReplaceSpace(sObservacoes, 130), kSlices);
    });
}

std::string cls_ImpressaoA::MyReplaceSpace(std::string_view sString, std::int16_t iChars)
{
    return printing::replace_breaks(sString, iChars);
}

}  // namespace nimbara
