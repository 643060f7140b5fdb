#include "nimbara/cls_ImpressaoA.hpp"

#include <array>

namespace nimbara {

std::int32_t cls_ImpressaoA::Imprime_NumPaginas(const std::string& NDoc, PageSurface& impressora2, std::int32_t pag,
                                                std::int32_t TotPaginas, const std::string& NCompromisso)
{
    guarded("Imprime_NumPaginas", [&] { printPageNumbers(impressora2, NDoc, pag, TotPaginas, &NCompromisso); });
    return 0;
}

void cls_ImpressaoA::ReimprimirObservacoes(PageSurface& impressora2, const std::string& sObservacoes)
{
    // Its own slices, which differ from the header's in the second and third lines.
    static constexpr std::array<Slice, 5> kSlices = {{{1, 130}, {131, 120}, {250, 130}, {393, 130}, {524, 130}}};
    guarded("ReimprimirObservacoes", [&] {
        setFont(impressora2, "Times New Roman", 8, false);
        printRemarks(impressora2, MyReplaceSpace(sObservacoes, 130), kSlices);
    });
}

}  // namespace nimbara
