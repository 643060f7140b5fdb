// Clients with their contracts behind a nimbara_client, stored and read through the library's
// client store.
#include <charconv>
#include <functional>
#include <limits>

#include "capi/handles.hpp"
#include "capi/texts.hpp"
#include "nimbara/client_store.hpp"

namespace nimbara::capi {
namespace {

std::int16_t small_number(std::string_view text, std::string_view name)
{
    std::int16_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        throw Refusal(NIMBARA_BAD_ARGUMENT, std::string(name) + ": \"" + std::string(text) +
                                                "\" is no whole number from -32768 to 32767");
    return value;
}

bool yes_no(std::string_view text, std::string_view name)
{
    if (text == "true" || text == "1") return true;
    if (text == "false" || text == "0") return false;
    throw Refusal(NIMBARA_BAD_ARGUMENT, std::string(name) + ": \"" + std::string(text) + "\" is not true or false");
}

template <class Fields>
struct Property {
    std::string_view name;
    std::function<void(Fields&, std::string_view, std::string_view)> set;
    std::function<std::string(const Fields&)> get;
};

template <class Fields>
Property<Fields> text(std::string_view name, std::string Fields::*member)
{
    return {name, [member](Fields& f, std::string_view v, std::string_view) { f.*member = std::string(v); },
            [member](const Fields& f) { return f.*member; }};
}

template <class Fields>
Property<Fields> number(std::string_view name, std::int16_t Fields::*member)
{
    return {name, [member](Fields& f, std::string_view v, std::string_view n) { f.*member = small_number(v, n); },
            [member](const Fields& f) { return std::to_string(f.*member); }};
}

template <class Fields>
Property<Fields> flag(std::string_view name, bool Fields::*member)
{
    return {name, [member](Fields& f, std::string_view v, std::string_view n) { f.*member = yes_no(v, n); },
            [member](const Fields& f) { return std::string(f.*member ? "true" : "false"); }};
}

const std::vector<Property<ClientFields>>& client_properties()
{
    static const std::vector<Property<ClientFields>> all = {
        text("vCod_Cliente", &ClientFields::vCod_Cliente),   text("vNome", &ClientFields::vNome),
        number("iTipoCliente", &ClientFields::iTipoCliente), text("vMorada", &ClientFields::vMorada),
        text("vLocalidade", &ClientFields::vLocalidade),     text("vCodPostal", &ClientFields::vCodPostal),
        text("vDesigPostal", &ClientFields::vDesigPostal),   text("vNIF", &ClientFields::vNIF),
        text("vObservacoes", &ClientFields::vObservacoes),   number("iAcessoRede", &ClientFields::iAcessoRede),
    };
    return all;
}

const std::vector<Property<ContractFields>>& contract_properties()
{
    static const std::vector<Property<ContractFields>> all = {
        text("vCodContrato", &ContractFields::vCodContrato),     text("vDesignacao", &ContractFields::vDesignacao),
        flag("vJppCredenciado", &ContractFields::vJppCredenciado), text("vCodCredencial", &ContractFields::vCodCredencial),
        text("vValidacao", &ContractFields::vValidacao),         text("vDescricao", &ContractFields::vDescricao),
        flag("bActivo", &ContractFields::bActivo),
    };
    return all;
}

template <class Fields>
const Property<Fields>& property(const std::vector<Property<Fields>>& all, std::string_view name, const char* of)
{
    for (const auto& p : all)
        if (p.name == name) return p;
    throw Refusal(NIMBARA_BAD_ARGUMENT, "\"" + std::string(name) + "\" is not a property of " + of);
}

// Sets every field on a copy, so that a refused one changes nothing.
template <class Fields>
void set_all(Fields& into, const std::vector<Property<Fields>>& all, const nimbara_field* fields, std::size_t count,
             const char* of)
{
    if (fields == nullptr && count != 0) throw Refusal(NIMBARA_BAD_ARGUMENT, "fields is NULL with a count");
    Fields changed = into;
    for (std::size_t i = 0; i < count; ++i) {
        const auto name = text_in(fields[i].name, fields[i].name_size, "a field's name");
        property(all, name, of).set(changed, text_in(fields[i].value, fields[i].value_size, "a field's value"), name);
    }
    into = std::move(changed);
}

}  // namespace
}  // namespace nimbara::capi

using namespace nimbara::capi;

extern "C" {

nimbara_status nimbara_client_create(nimbara_client** client)
{
    return guarded([&] { required(client, "client") = new nimbara_client{}; });
}

void nimbara_client_destroy(nimbara_client* client) { delete client; }

nimbara_status nimbara_client_set(nimbara_client* client, const nimbara_field* fields, size_t count)
{
    return guarded([&] { set_all(required(client, "client").fields, client_properties(), fields, count, "a client"); });
}

nimbara_status nimbara_client_add_contract(nimbara_client* client, const nimbara_field* fields, size_t count)
{
    return guarded([&] {
        nimbara::ContractFields contract;
        set_all(contract, contract_properties(), fields, count, "a contract");
        required(client, "client").fields.contratos.push_back(std::move(contract));
    });
}

size_t nimbara_client_contract_count(const nimbara_client* client)
{
    return client ? client->fields.contratos.size() : 0;
}

nimbara_status nimbara_client_get(nimbara_client* client, size_t contract, const char* name, size_t name_size,
                                  const char** text, size_t* text_size)
{
    return guarded([&] {
        auto& c = required(client, "client");
        required(text, "text");
        const auto wanted = text_in(name, name_size, "name");
        if (contract == NIMBARA_THE_CLIENT) {
            c.scratch = property(client_properties(), wanted, "a client").get(c.fields);
        } else if (contract < c.fields.contratos.size()) {
            c.scratch = property(contract_properties(), wanted, "a contract").get(c.fields.contratos[contract]);
        } else {
            throw Refusal(NIMBARA_BAD_ARGUMENT, "contract " + std::to_string(contract) + " of " +
                                                    std::to_string(c.fields.contratos.size()));
        }
        *text = c.scratch.c_str();
        if (text_size) *text_size = c.scratch.size();
    });
}

nimbara_status nimbara_store_save_client(nimbara_store* store, const nimbara_client* client, int32_t* id_cliente)
{
    return guarded([&] {
        required(store, "store");
        const auto id = nimbara::save_client(store->db, required(client, "client").fields);
        if (id_cliente) *id_cliente = id;
    });
}

nimbara_status nimbara_store_load_client(nimbara_store* store, int32_t cod_cliente, nimbara_client** client)
{
    return guarded([&] {
        required(store, "store");
        required(client, "client");
        auto found = nimbara::load_client(store->db, cod_cliente);
        if (!found) throw Refusal(NIMBARA_NOT_FOUND, "no client " + std::to_string(cod_cliente));
        *client = new nimbara_client{std::move(*found), {}};
    });
}

}
