// The Guia file behind a nimbara_guia: read, written and filled by named fields.
#include <algorithm>

#include "capi/fields.hpp"
#include "capi/handles.hpp"
#include "capi/texts.hpp"

namespace nimbara::capi {

void fill_section(GuiaFile& file, nimbara_section section, const nimbara_field* fields, std::size_t count)
{
    switch (section) {
    case NIMBARA_CABECALHO: set_fields(file.cabecalho, kCabecalhoFields, fields, count, "cabecalho"); return;
    case NIMBARA_PARAMETROS: set_fields(file.parametros, kParametrosFields, fields, count, "parametros"); return;
    case NIMBARA_PRODUTO: {
        GuiaProduto line;
        set_fields(line, kProdutoFields, fields, count, "produtos");
        file.produtos.push_back(std::move(line));
        return;
    }
    case NIMBARA_SERVICO: {
        GuiaServico service;
        set_fields(service, kServicoFields, fields, count, "servicos");
        file.servicos.push_back(std::move(service));
        return;
    }
    }
}

}  // namespace nimbara::capi

using namespace nimbara::capi;

extern "C" {

nimbara_status nimbara_guia_create(nimbara_guia** guia)
{
    return guarded([&] { required(guia, "guia") = new nimbara_guia{}; });
}

void nimbara_guia_destroy(nimbara_guia* guia) { delete guia; }

nimbara_status nimbara_guia_from_file(const char* path, size_t path_size, nimbara_guia** guia)
{
    return guarded([&] {
        required(guia, "guia");
        const std::filesystem::path file(text_in(path, path_size, "path"));
        std::error_code ec;
        if (!std::filesystem::exists(file, ec))
            throw Refusal(NIMBARA_NOT_FOUND, "no Guia file \"" + file.string() + "\"");
        *guia = new nimbara_guia{nimbara::read_guia_file(file)};
    });
}

nimbara_status nimbara_guia_from_json(const char* json, size_t json_size, nimbara_guia** guia)
{
    return guarded([&] {
        required(guia, "guia");
        *guia = new nimbara_guia{nimbara::parse_guia_file(text_in(json, json_size, "json"), "the Guia text")};
    });
}

nimbara_status nimbara_guia_to_json(const nimbara_guia* guia, char** json, size_t* json_size)
{
    return guarded([&] { text_out(nimbara::write_guia_file(required(guia, "guia").file), json, json_size, "json"); });
}

nimbara_status nimbara_guia_fill(nimbara_guia* guia, nimbara_section section, const nimbara_field* fields, size_t count)
{
    return guarded([&] {
        fill_section(required(guia, "guia").file, enumerator(section, NIMBARA_SERVICO, "section"), fields, count);
    });
}

}
