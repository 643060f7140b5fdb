#include "nimbara/stored_guia_check.hpp"

#include <algorithm>

#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_ValProdutos.hpp"

namespace nimbara {

bool StoredGuiaVerdict::passed() const
{
    return !guia && std::none_of(lines.begin(), lines.end(), [](const auto& l) { return l.result.has_value(); });
}

std::optional<StoredGuiaVerdict> check_stored_guia(const std::shared_ptr<Database>& db, std::int32_t n_req)
{
    if (db->open("SELECT N_Req FROM Tbl_Cab WHERE N_Req = ?", {n_req}).RecordCount() == 0) return std::nullopt;
    cls_Guia_Cabecalho guia(db);
    guia.SelectMe(n_req);
    guia.DoRemoveValTemp();
    if (!guia.LastError().empty()) throw DatabaseError("the working table could not be emptied: " + guia.LastError());
    guia.DoInsertValTemp();
    if (!guia.LastError().empty()) throw DatabaseError("the Guia could not be copied for checking: " + guia.LastError());

    cls_ValProdutos validator(db);
    StoredGuiaVerdict verdict;
    for (std::size_t i = 1; i <= guia.mColLinha.Count(); ++i) {
        const cls_Guia_Linha& l = guia.mColLinha.Item(i);
        ListArray services;
        for (std::size_t s = 1; s <= l.mColSEspecial.Count(); ++s)
            services.push_back(l.mColSEspecial.Item(s).vCodigoServicoEspecial);
        verdict.lines.push_back({l.vNLinha, validator.DoValidaProduto(l.vB_Produto, l.vA_Zona_Taxacao, l.vC_Escalao,
                                                                      l.vE_Velocidade, l.vF_Formato,
                                                                      l.vG_Pre_Tratamento > 0, l.vH_Descontos,
                                                                      l.vN_Ambito_Distrib, services)});
    }
    verdict.guia = validator.DoValidaGuia(n_req);
    return verdict;
}

}  // namespace nimbara
