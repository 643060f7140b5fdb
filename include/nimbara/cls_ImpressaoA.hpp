#pragma once
// The printing class of the headless road: prints a Guia from the four in-memory tables.
#include <cstdint>
#include <string>

#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/guia_arrays.hpp"

namespace nimbara {

class cls_ImpressaoA : public ImpressaoComum {
public:
    cls_ImpressaoA() : ImpressaoComum(Edition::Array) {}

    // arrCabecalho, arrGuia, arrServEsp and arrParametros, as the façade hands them over.
    GuiaArrays arrays;

    // The document number, the page count and number, the commitment number, and on the last
    // page the total's caption and comb. Answers 0.
    std::int32_t Imprime_NumPaginas(const std::string& NDoc, PageSurface& impressora2, std::int32_t pag,
                                    std::int32_t TotPaginas, const std::string& NCompromisso);

    // Prints the remarks again over the frame, with slices of its own.
    void ReimprimirObservacoes(PageSurface& impressora2, const std::string& sObservacoes);

    using ImpressaoComum::MyReplaceSpace;
};

}  // namespace nimbara
