#pragma once
// The printing class of the database road: the same page, fed from the database.
#include <cstdint>
#include <memory>
#include <string>

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
};

}  // namespace nimbara
