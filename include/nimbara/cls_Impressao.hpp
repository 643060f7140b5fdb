#pragma once
// The printing class of the database road: the same page, fed from the database.
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "nimbara/Database.hpp"
#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

class NIMBARA_API cls_Impressao : public ImpressaoComum {
public:
    // The feeds open the connection of the ini file when they first need one, so that an object
    // that only draws (a test page) needs no database.
    cls_Impressao() : ImpressaoComum(Edition::Database) {}
    // On the host's own connection.
    explicit cls_Impressao(std::shared_ptr<Database> db) : ImpressaoComum(Edition::Database), myConn(std::move(db)) {}

    std::shared_ptr<Database> myConn;
    Recordset rscab_ssql;  // the header's and the lines' feed, both
    Recordset rs_param;
    Recordset rsSe_ssql;

    // ---- Feeds from the database: each sets its Recordset argument only when rows were found ----

    // The row of Tbl_Parametro with the symbol's settings, the copies, the margins and the third
    // party's code. A failure reaches the caller.
    void Param_Parametros(Recordset& rs_Parametros);
    // The Guia's header with its client and contract, and D_Req_Jul computed from D_Req.
    void Param_Cabecalho(std::int32_t varNReq, Recordset& rs_p);
    // The stored Guia's lines (resulset 1, Query_ParteVariavel) or the copy made for a check
    // (any other value, Tbl_Temp_Val_Guia).
    void Param_Produto(std::int32_t varNReq, Recordset& rs_p, std::int16_t resulset);
    // A line's special services ordered by value and code: their codes appended to str_rs with
    // commas between (str_rs emptied when there are none), and with Imprime above 0 the rows,
    // on the first, in rs_ServEsp.
    void Param_ServicosEspeciais(std::int32_t varNReq, std::int32_t Linha, std::string& str_rs,
                                 Recordset* rs_ServEsp = nullptr, std::int16_t Imprime = 0);

    // The document number, the page number and count, and on the last page the total's caption and
    // comb. Answers 0.
    std::int32_t Imprime_NumPaginas(const std::string& NDoc, PageSurface& impressora2, std::int32_t pag,
                                    std::int32_t TotPaginas);

    // ---- Detail lines: the fields filled into the form's cells, one character a cell -------------

    using ServiceSlots = std::array<std::string, 11>;  // 0 to 10, as in the other edition

    // One product line at y var_cont: zone, product, weight step, quantity and special-rate quantity
    // digit by digit from their rightmost cells, the one-digit codes at their cells, and the
    // pre-treatment mark where the product takes one. Answers the empty text.
    std::string PrintaParteDetail(PageSurface& impressora, const std::string& CampoA, const std::string& CampoB,
                                  const std::string& CampoC, const std::string& CampoD, const std::string& CampoE,
                                  const std::string& CampoF, const std::string& CampoG, const std::string& CampoH,
                                  const std::string& CampoKMVexora, const std::string& CampoK,
                                  const std::string& CampoL, const std::string& CampoM, const std::string& CampoN,
                                  std::int32_t var_cont);
    // One row of special services: the codes' digits from x 172 leftwards, the values' digits from
    // x 205 leftwards (the form carries the comma and the euro sign). Answers the empty text.
    std::string PrintaSEParteDetail(PageSurface& impressora, std::string ServEsp, std::string Valor,
                                    std::int32_t var_cont, const ServiceSlots* Array_valor = nullptr,
                                    std::int32_t tamanho = 0, std::int32_t tamanho2 = 0,
                                    const ServiceSlots* Array_valorEsp = nullptr);

    // The page's PDF417 symbol, encoded with the settings of Tbl_Parametro. A failure is logged and
    // the page goes on without it.
    void PrintCreatedPDF(PageSurface& impressora, const std::string& DataToEncode);

    // What would keep the stored Guia varNReq from printing whole by this edition, with the
    // settings of Tbl_Parametro: every field that printing converts or the symbol carries at a fixed
    // width, named with its line. Empty when it prints. A Guia that is not there is one problem.
    std::vector<PrintProblem> PrintProblems(std::int32_t varNReq);

    // ---- Page driver -----------------------------------------------------------------------------

    // Prints one copy of the stored Guia varNReq from first to last page as one print job. DuplOrig
    // 0 marks the original. A failure is logged and ends the copy; the job is ended all the same.
    void Imprime_Parte_Variavel(const std::string& varCodCliente, std::int32_t varNReq, std::int16_t N_Via,
                                PageSurface& impressora2, const FormImpressao& imagens, double TopY,
                                double LeftX, std::int32_t DuplOrig, const std::string& dtRequisicao,
                                const std::string& NGUIA);
    // The pages of the stored Guia, by walking them without drawing; a failure is logged and the
    // pages walked until then are the answer.
    std::int32_t Calcula_TotalidadePaginas(std::int32_t varNReq);
    // Overprints the product line just printed on the twelfth row with blanks. Answers the empty text.
    std::string Apaga_RegsUltima_linha(PageSurface& impressora);
};

}  // namespace nimbara
