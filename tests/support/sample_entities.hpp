#pragma once
// Clients and Guias for the database tests: a client with a contract, and a Guia of several lines
// with services, stored the way a host would store them.
#include <memory>
#include <string>

#include "nimbara/cls_Cliente.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"

namespace nimbara::testing {

// Stores client `id` (number 1000 + id) with contract 1.
inline void store_client(const std::shared_ptr<Database>& db, int id, const std::string& name = "Cliente")
{
    cls_Cliente c(db);
    c.iId_Cliente = id;
    c.vCod_Cliente = std::to_string(1000 + id);
    c.vNome = name;
    c.AddContrato(id, "1", "Contrato 1", false, "0", "", "", true, Timestamp::now());
    c.DoSave();
}

// A new Guia of client `id` with `lines` lines of `services` services each; the lines take the
// number `n_req` when they are added, as a host's lines do.
inline std::unique_ptr<cls_Guia_Cabecalho> new_guia(const std::shared_ptr<Database>& db, int id, int lines = 2,
                                                    int services = 1, std::int32_t n_req = 0)
{
    auto g = std::make_unique<cls_Guia_Cabecalho>(db);
    g->vNReq = n_req;
    g->iId_Cliente = id;
    g->vCodCliente = std::to_string(1000 + id);
    g->vCodContrato = "1";
    for (int n = 1; n <= lines; ++n) {
        std::string divisao = "Div " + std::to_string(n);
        auto& l = g->AddLinha(static_cast<std::int16_t>(n), "01", "C01", 20, 100 * n, "0", "01", "1", "0", "0", 0, 0,
                              "0", divisao, "", "12 Revistas", "");
        for (int s = 1; s <= services; ++s) l.AddSEspecial("0" + std::to_string(s), 150.0f * s);
    }
    return g;
}

}  // namespace nimbara::testing
