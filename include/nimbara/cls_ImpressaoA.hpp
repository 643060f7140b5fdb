#pragma once
// The printing class of the headless road: prints a Guia from the four in-memory tables.
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/guia_arrays.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

class NIMBARA_API cls_ImpressaoA : public ImpressaoComum {
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

    // Turns line breaks into blanks up to the next multiple of iChars characters, so that fixed
    // slices of iChars fall on the text's own lines.
    static std::string MyReplaceSpace(std::string_view sString, std::int16_t iChars);

    // ---- Detail lines ---------------------------------------------------------------------------

    // The slots of the codes and values of one row of special services, 0 to 10 (0 stays unused).
    using ServiceSlots = std::array<std::string, 11>;

    // One product line in its row of the table at y var_cont: each field whole or its last character
    // at its column. A special-rate quantity that is no number ends the row after the quantity.
    // Answers the empty text.
    std::string PrintaParteDetail(PageSurface& impressora, const std::string& CampoA, const std::string& CampoB,
                                  const std::string& CampoC, const std::string& CampoD, const std::string& CampoE,
                                  const std::string& CampoF, const std::string& CampoG, const std::string& CampoH,
                                  const std::string& CampoKMVexora, const std::string& CampoK,
                                  const std::string& CampoL, const std::string& CampoM, const std::string& CampoN,
                                  const std::string& CampoO, const std::string& CampoP, std::int32_t var_cont);

    // One row of special services: the codes right to left from x 134 and the amounts at x 154
    // (cents, with the comma and the euro sign). Without slots (counts 0) the row holds ServEsp and
    // Valor alone. Answers the empty text.
    std::string PrintaSEParteDetail(PageSurface& impressora, std::string ServEsp, std::string Valor,
                                    std::int32_t var_cont, const ServiceSlots* Array_valor = nullptr,
                                    std::int32_t tamanho = 0, std::int32_t tamanho2 = 0,
                                    const ServiceSlots* Array_valorEsp = nullptr);

    // How many of a line's services (as getArrServEspByLinha gives them) carry a value above 0.
    static std::int16_t CountSEspeciaisComValor(const serv::Table& myArray);

    // ---- Barcode ---------------------------------------------------------------------------------

    // The page's PDF417 symbol, encoded with the settings of arrParametros, right-aligned to 261 mm
    // and 2 mm below TopY. A failure is logged and the page goes on without it.
    void PrintCreatedPDF(PageSurface& impressora, const std::string& DataToEncode);

    // ---- Page driver -----------------------------------------------------------------------------

    // Prints one copy of the Guia from first to last page as one print job: twelve rows a page,
    // service rows, page turns, each page's symbol. DuplOrig 0 marks the original. A failure is
    // logged and ends the copy; the job is ended all the same.
    void Imprime_Parte_Variavel(const std::string& varCodCliente, std::int32_t varNReq, std::int16_t N_Via,
                                PageSurface& impressora2, const FormImpressao& imagens, double TopY,
                                double LeftX, std::int32_t DuplOrig, const std::string& dtRequisicao,
                                const std::string& NGUIA);

    // The pages foretold from the rows the lines and their services need; it knows nothing of a
    // line moved off the last row, so it may fall short of the pages printed.
    std::int32_t Calcula_TotalidadePaginas(std::int32_t varNReq);

    // Overprints the product line just printed on the twelfth row with blanks. Answers the empty text.
    std::string Apaga_RegsUltima_linha(PageSurface& impressora);
};

}  // namespace nimbara
