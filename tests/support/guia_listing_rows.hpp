#pragma once
// Four Guias of two clients over two years, for the listing tests: their numbers, dates, weights and
// services are chosen so that every filter and order gives a different sequence of lines.
//
//   N_Req  client          N_Req2  date                 lines (weight)  services a line
//   10     1001 Zé d'...   2       2024-03-05 09:00     2 (50)          2
//   11     1001            1       2023-12-31 23:59:59  1 (100)         1
//   12     1002 Alfa, "Lda"  1       2024-12-01 00:00     3 (20)          1
//   13     1002            2       2024-03-31 10:00     1 (20)          0
// Line n has the quantity 100 * n.
#include <memory>
#include <stdexcept>
#include <string>

#include "support/sample_entities.hpp"

namespace nimbara::testing {

inline void store_listing_guias(const std::shared_ptr<Database>& db)
{
    store_client(db, 1, "Zé d'Almeida");
    store_client(db, 2, "Alfa, \"Lda\"");
    struct Stored { int client; std::int32_t n_req, n_req2; Timestamp date; int lines, weight, services; };
    const Stored guias[] = {
        {1, 10, 2, {2024, 3, 5, 9, 0, 0}, 2, 50, 2},
        {1, 11, 1, {2023, 12, 31, 23, 59, 59}, 1, 100, 1},
        {2, 12, 1, {2024, 12, 1, 0, 0, 0}, 3, 20, 1},
        {2, 13, 2, {2024, 3, 31, 10, 0, 0}, 1, 20, 0},
    };
    for (const auto& s : guias) {
        auto g = new_guia(db, s.client, s.lines, s.services, s.n_req);
        g->vNReq2 = s.n_req2;
        g->vNIDReqAnual = s.n_req - 5;
        g->vDReq = s.date;
        for (std::size_t n = 1; n <= g->mColLinha.Count(); ++n) {
            g->mColLinha.Item(n).vC_Escalao = s.weight;
            g->mColLinha.Item(n).vCodigo_Campanha = "CAMP";
        }
        g->DoSave();
        if (!g->LastError().empty()) throw std::runtime_error("cannot store Guia " + std::to_string(s.n_req) + ": " + g->LastError());
    }
}

}  // namespace nimbara::testing
