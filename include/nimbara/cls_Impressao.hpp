#pragma once
// The printing class of the database road: the same page, fed from the database.
#include <cstdint>
#include <string>

#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

class NIMBARA_API cls_Impressao : public ImpressaoComum {
public:
    cls_Impressao() : ImpressaoComum(Edition::Database) {}

    // The document number, the page number and count, and on the last page the total's caption and
    // comb. Answers 0.
    std::int32_t Imprime_NumPaginas(const std::string& NDoc, PageSurface& impressora2, std::int32_t pag,
                                    std::int32_t TotPaginas);
};

}  // namespace nimbara
