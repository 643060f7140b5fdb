#include "nimbara/cls_Impressao.hpp"

#include "printing/page.hpp"

namespace nimbara {

std::int32_t cls_Impressao::Imprime_NumPaginas(const std::string& NDoc, PageSurface& impressora2, std::int32_t pag,
                                               std::int32_t TotPaginas)
{
    const printing::Page page(*this);
    page.guarded("Imprime_NumPaginas", [&] { page.printPageNumbers(impressora2, NDoc, pag, TotPaginas, nullptr); });
    return 0;
}

}  // namespace nimbara
