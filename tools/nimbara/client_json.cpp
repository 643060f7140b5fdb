#include "client_json.hpp"

#include <limits>
#include <vector>

#include "db_command.hpp"
#include "delimited.hpp"
#include "nimbara/cls_Cliente.hpp"

namespace nimbara::cli {
namespace {

using nlohmann::ordered_json;

// Reads the keys of one object into the properties they name; a key of no property, or a value of
// the wrong type, is refused with its place.
class ObjectReader {
public:
    ObjectReader(const ordered_json& object, std::string source, std::string place)
        : object_(object), source_(std::move(source)), place_(std::move(place))
    {
        if (!object.is_object()) refuse(place_, "expected an object");
    }
    // A number given where text stands keeps its digits as written, however large.
    void text(const char* key, std::string& into)
    {
        if (auto* v = take(key)) {
            if (v->is_string()) into = v->get<std::string>();
            else if (v->is_number_unsigned()) into = std::to_string(v->get<std::uint64_t>());
            else if (v->is_number_integer()) into = std::to_string(v->get<std::int64_t>());
            else refuse(place_ + "/" + key, "expected text");
        }
    }
    // Read without a wrap: a number beyond 64 bits with a sign is never taken for a small one.
    template <class T>
    void number(const char* key, T& into)
    {
        if (auto* v = take(key)) {
            const bool in_range =
                v->is_number_unsigned()
                    ? v->get<std::uint64_t>() <= static_cast<std::uint64_t>(std::numeric_limits<T>::max())
                    : v->is_number_integer() && v->get<std::int64_t>() >= std::numeric_limits<T>::min() &&
                          v->get<std::int64_t>() <= std::numeric_limits<T>::max();
            if (!in_range)
                refuse(place_ + "/" + key, "expected a whole number from " +
                                               std::to_string(std::numeric_limits<T>::min()) + " to " +
                                               std::to_string(std::numeric_limits<T>::max()) + ", found " + v->dump());
            into = static_cast<T>(v->get<std::int64_t>());
        }
    }
    void yes_no(const char* key, bool& into)
    {
        if (auto* v = take(key)) {
            if (!v->is_boolean()) refuse(place_ + "/" + key, "expected true or false");
            into = v->get<bool>();
        }
    }
    const ordered_json* take(const char* key)
    {
        if (!object_.contains(key)) return nullptr;
        ++taken_;
        return &object_[key];
    }
    // Every key must have been taken by now.
    void done() const
    {
        if (taken_ == object_.size()) return;
        for (const auto& [key, value] : object_.items())
            if (!known(key))
                throw FieldError(source_ + ": " + (place_.empty() ? "/" : place_) + ": unknown key \"" + key + "\"",
                                 place_ + "/" + key);
    }
    void know(std::initializer_list<const char*> keys) { known_.assign(keys.begin(), keys.end()); }
    [[noreturn]] void refuse(const std::string& place, const std::string& why) const
    {
        throw FieldError(source_ + ": " + (place.empty() ? "/" : place) + ": " + why, place.empty() ? "/" : place);
    }

private:
    bool known(const std::string& key) const
    {
        for (const auto& k : known_)
            if (key == k) return true;
        return false;
    }
    const ordered_json& object_;
    std::string source_;
    std::string place_;
    std::size_t taken_ = 0;
    std::vector<std::string> known_;
};

// Client and contract numbers are whole numbers written in digits.
void require_whole(const std::string& text, const std::string& source, const std::string& place)
{
    const bool digits = !text.empty() && text.size() <= 9 &&
                        text.find_first_not_of("0123456789") == std::string::npos;
    if (!digits) throw FieldError(source + ": " + place + ": \"" + text + "\" is no whole number", place);
}

}  // namespace

ordered_json contract_json(const ContractFields& k)
{
    return {{"vCodContrato", k.vCodContrato}, {"vDesignacao", k.vDesignacao},
            {"vJppCredenciado", k.vJppCredenciado}, {"vCodCredencial", k.vCodCredencial},
            {"vValidacao", k.vValidacao}, {"vDescricao", k.vDescricao}, {"bActivo", k.bActivo}};
}

ordered_json client_json(const ClientFields& c)
{
    ordered_json out = {{"vCod_Cliente", c.vCod_Cliente}, {"vNome", c.vNome}, {"iTipoCliente", c.iTipoCliente},
                        {"vMorada", c.vMorada}, {"vLocalidade", c.vLocalidade}, {"vCodPostal", c.vCodPostal},
                        {"vDesigPostal", c.vDesigPostal}, {"vNIF", c.vNIF}, {"vObservacoes", c.vObservacoes},
                        {"iAcessoRede", c.iAcessoRede}};
    out["contratos"] = ordered_json::array();
    for (const auto& k : c.contratos) out["contratos"].push_back(contract_json(k));
    return out;
}

ordered_json client_rows(const std::shared_ptr<Database>& db)
{
    cls_Cliente c(db);
    Recordset rs;
    c.SelectAll(rs);
    const char* columns[] = {"Id_Cliente", "Cod_Cliente", "Nome", "iTipoCliente", "Morada", "Localidade",
                             "Cod_Postal", "Desig_Postal", "NContribuinte", "Observacoes", "IAcessoRede"};
    auto rows = ordered_json::array();
    for (; !rs.IsEOF(); rs.MoveNext()) {
        ordered_json row;
        for (const char* column : columns) row[column] = json_value(rs[column]);
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string client_number(const ordered_json& root, const std::string& source)
{
    ObjectReader r(root, source, "");
    std::string cod;
    r.text("vCod_Cliente", cod);
    require_whole(cod, source, "/vCod_Cliente");
    return cod;
}

ContractFields read_contract_json(const ordered_json& object, const std::string& source, const std::string& place)
{
    ObjectReader cr(object, source, place);
    cr.know({"vCodContrato", "vDesignacao", "vJppCredenciado", "vCodCredencial", "vValidacao", "vDescricao",
             "bActivo"});
    if (!object.contains("vCodContrato"))
        throw FieldError(source + ": " + place + ": vCodContrato is missing: a contract needs its code",
                         place + "/vCodContrato");
    ContractFields k;
    cr.text("vCodContrato", k.vCodContrato);
    require_whole(k.vCodContrato, source, place + "/vCodContrato");
    cr.text("vDesignacao", k.vDesignacao);
    cr.yes_no("vJppCredenciado", k.vJppCredenciado);
    cr.text("vCodCredencial", k.vCodCredencial);
    cr.text("vValidacao", k.vValidacao);
    cr.text("vDescricao", k.vDescricao);
    cr.yes_no("bActivo", k.bActivo);
    cr.done();
    return k;
}

void read_client_json(const ordered_json& root, const std::string& source, ClientFields& c)
{
    ObjectReader r(root, source, "");
    r.know({"vCod_Cliente", "vNome", "iTipoCliente", "vMorada", "vLocalidade", "vCodPostal", "vDesigPostal", "vNIF",
            "vObservacoes", "iAcessoRede", "contratos"});
    r.text("vCod_Cliente", c.vCod_Cliente);
    require_whole(c.vCod_Cliente, source, "/vCod_Cliente");
    c.contratos.clear();
    r.text("vNome", c.vNome);
    r.number("iTipoCliente", c.iTipoCliente);
    r.text("vMorada", c.vMorada);
    r.text("vLocalidade", c.vLocalidade);
    r.text("vCodPostal", c.vCodPostal);
    r.text("vDesigPostal", c.vDesigPostal);
    r.text("vNIF", c.vNIF);
    r.text("vObservacoes", c.vObservacoes);
    r.number("iAcessoRede", c.iAcessoRede);
    if (const auto* list = r.take("contratos")) {
        if (!list->is_array()) r.refuse("/contratos", "expected a list");
        for (std::size_t i = 0; i < list->size(); ++i)
            c.contratos.push_back(read_contract_json((*list)[i], source, "/contratos/" + std::to_string(i)));
    }
    r.done();
}

// The rows are counted in the delete's own transaction, so they are what it removed.
ordered_json delete_client(const std::shared_ptr<Database>& db, std::int32_t cod, bool commit)
{
    Transaction t(*db);
    cls_Cliente c(db);
    std::string number = std::to_string(cod);
    if (!c.Busca_Cliente(number)) throw NotFoundError("no client " + number);
    c.SelectMeByCod_Cliente(cod);
    const FieldValue id = c.iId_Cliente;
    const auto count = [&](const std::string& sql) { return db->open(sql, {id})[std::size_t{0}].integer(); };
    constexpr const char* kOfClient = " WHERE N_Req IN (SELECT N_Req FROM Tbl_Cab WHERE Id_Cliente = ?)";
    const std::int64_t contracts = count("SELECT COUNT(*) FROM Tbl_Contrato WHERE Id_Cliente = ?");
    const std::int64_t lines = count(std::string("SELECT COUNT(*) FROM Tbl_Linha") + kOfClient);
    const std::int64_t services = count(std::string("SELECT COUNT(*) FROM Tbl_Linha_ServicoEspecial") + kOfClient);
    std::vector<std::int64_t> guias;
    for (Recordset rs = db->open("SELECT N_Req FROM Tbl_Cab WHERE Id_Cliente = ? ORDER BY N_Req", {id}); !rs.IsEOF();
         rs.MoveNext())
        guias.push_back(rs[std::size_t{0}].integer());
    if (commit) {
        c.DeleteRegs(std::to_string(c.iId_Cliente));
        if (!c.LastError().empty()) throw CommandError("nothing was deleted: " + c.LastError());
        t.commit();
    }
    return {{"cod_cliente", c.vCod_Cliente}, {"nome", c.vNome}, {"contracts", contracts}, {"guias", guias.size()},
            {"n_req", guias}, {"lines", lines}, {"services", services}};
}

}  // namespace nimbara::cli
