#include "nimbara/client_store.hpp"

#include <set>
#include <stdexcept>

#include "nimbara/cls_Cliente.hpp"

namespace nimbara {
namespace {

// Client and contract numbers are whole numbers written in digits.
std::int64_t whole_number(const std::string& text, const std::string& place)
{
    const bool digits = !text.empty() && text.size() <= 9 && text.find_first_not_of("0123456789") == std::string::npos;
    if (!digits) throw std::invalid_argument(place + ": \"" + text + "\" is no whole number");
    return std::stoll(text);
}

}  // namespace

std::int32_t save_client(const std::shared_ptr<Database>& db, const ClientFields& client)
{
    const auto cod = whole_number(client.vCod_Cliente, "/vCod_Cliente");
    std::set<std::int64_t> seen;
    for (std::size_t i = 0; i < client.contratos.size(); ++i) {
        const std::string place = "/contratos/" + std::to_string(i) + "/vCodContrato";
        if (!seen.insert(whole_number(client.contratos[i].vCodContrato, place)).second)
            throw std::invalid_argument(place + ": contract " + client.contratos[i].vCodContrato + " is given twice");
    }

    cls_Cliente c(db);
    std::string lookup = client.vCod_Cliente;
    if (c.Busca_Cliente(lookup)) c.SelectMeByCod_Cliente(static_cast<std::int32_t>(cod));
    c.vCod_Cliente = client.vCod_Cliente;
    c.vNome = client.vNome;
    c.iTipoCliente = client.iTipoCliente;
    c.vMorada = client.vMorada;
    c.vLocalidade = client.vLocalidade;
    c.vCodPostal = client.vCodPostal;
    c.vDesigPostal = client.vDesigPostal;
    c.vNIF = client.vNIF;
    c.vObservacoes = client.vObservacoes;
    c.iAcessoRede = client.iAcessoRede;
    for (const auto& k : client.contratos) {
        const auto code = std::stoll(k.vCodContrato);
        std::size_t found = 0;
        for (std::size_t j = 1; j <= c.mColContrato.Count(); ++j)
            if (FieldValue(c.mColContrato.Item(j).vCodContrato).integer() == code) found = j;
        if (found)
            c.UpdateListContrato(static_cast<std::int32_t>(found), k.vCodContrato, k.vDesignacao, k.vJppCredenciado,
                                 k.vCodCredencial, k.vValidacao, k.vDescricao, k.bActivo,
                                 c.mColContrato.Item(found).dDataActividade);
        else
            c.AddContrato(c.iId_Cliente, k.vCodContrato, k.vDesignacao, k.vJppCredenciado, k.vCodCredencial,
                          k.vValidacao, k.vDescricao, k.bActivo, cls_Contrato(db).dDataActividade);
    }

    // A new contract is stored active; the second save within the same transaction writes the
    // active mark the host gave.
    Transaction t(*db, TransactionMode::Numbering);
    if (!c.DoSaveNumerado()) throw DatabaseError("nothing was stored: " + c.LastError());
    c.vIsNew = false;
    for (std::size_t j = 1; j <= c.mColContrato.Count(); ++j) c.mColContrato.Item(j).vIsNew = false;
    c.DoSave();
    if (!c.LastError().empty()) throw DatabaseError("nothing was stored: " + c.LastError());
    t.commit();
    return c.iId_Cliente;
}

std::optional<ClientFields> load_client(const std::shared_ptr<Database>& db, std::int32_t cod_cliente)
{
    cls_Cliente c(db);
    std::string number = std::to_string(cod_cliente);
    if (!c.Busca_Cliente(number)) return std::nullopt;
    c.SelectMeByCod_Cliente(cod_cliente);
    ClientFields out{c.vCod_Cliente, c.vNome,   c.iTipoCliente, c.vMorada,     c.vLocalidade, c.vCodPostal,
                     c.vDesigPostal, c.vNIF,    c.vObservacoes, c.iAcessoRede, {}};
    for (std::size_t j = 1; j <= c.mColContrato.Count(); ++j) {
        const cls_Contrato& k = c.mColContrato.Item(j);
        out.contratos.push_back(
            {k.vCodContrato, k.vDesignacao, k.vJppCredenciado, k.vCodCredencial, k.vValidacao, k.vDescricao, k.bActivo});
    }
    return out;
}

}  // namespace nimbara
