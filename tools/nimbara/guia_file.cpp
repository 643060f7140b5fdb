#include "guia_file.hpp"

#include <nlohmann/json.hpp>

#include <fstream>
#include <iterator>
#include <string_view>
#include <tuple>

namespace nimbara::cli {
namespace {

using nlohmann::json;

constexpr std::array<std::string_view, 20> kCabecalho = {
    "cb_N_Req", "cb_CodTerceiro", "cb_CodCliente", "cb_CodContrato", "cb_CodCredencial", "cb_Nome",
    "cb_NContribuinte", "cb_Morada", "cb_CodPostal", "cb_DesigPostal", "cb_Obs", "cb_JppCredenciado",
    "cb_Pagamento", "cb_NCredencial", "cb_Drqjul", "cb_DataRequisicao", "cb_NDoc", "cb_IDReqAnual",
    "cb_NCompromisso", "cb_TipoAcesso"};
constexpr std::array<std::string_view, 12> kParametros = {
    "VCod2DFonteSize", "vCod2DRatio", "vCod2DNColunas", "vCod2DNLinhas", "vCod2DErroLevel", "vCod2DPDFMode",
    "VCod2DTruncatedRuncated", "vCod2DApplyTilde", "vGuiaNVias", "vGuiaMargensTopo", "vGuiaMargensEsquerda",
    "vCodTerceiro"};
constexpr std::array<std::string_view, 20> kProduto = {
    "A_Zona_Taxacao", "B_Produto", "E_Velocidade", "D_Quantidade", "N_Linha", "ListaServesp", "CodAmbitoDist",
    "Escalao", "Formato", "PreTratamento", "Desconto", "TaxEsp_Quantidade", "TaxEsp_Semana", "Entrega_Sampling",
    "Vexora", "DivisaoRemetente", "CodigoCampanha", "N_Req", "caracte", "refClie"};
constexpr std::array<std::string_view, 3> kServico = {"N_Linha", "CodServEsp", "Valor"};
constexpr std::array<std::string_view, 4> kSections = {"cabecalho", "parametros", "produtos", "servicos"};

class Reader {
public:
    explicit Reader(std::string file) : file_(std::move(file)) {}

    [[noreturn]] void fail(const std::string& place, const std::string& what) const
    {
        throw GuiaFileError(file_ + ": " + (place.empty() ? "/" : place) + ": " + what);
    }

    // The values of one object, in the order of `names`; a key not in `names` is refused.
    template <std::size_t N>
    std::array<std::string, N> arguments(const json& object, const std::string& place,
                                         const std::array<std::string_view, N>& names) const
    {
        if (!object.is_object()) fail(place, std::string("expected an object, found ") + object.type_name());
        std::array<std::string, N> values;
        for (const auto& [key, value] : object.items()) {
            std::size_t i = 0;
            while (i < N && names[i] != key) ++i;
            if (i == N) fail(place, "unknown key \"" + key + "\"; known keys: " + joined(names));
            values[i] = text(value, place + "/" + key);
        }
        return values;
    }

    template <std::size_t N>
    std::vector<std::array<std::string, N>> rows(const json& array, const std::string& place,
                                                 const std::array<std::string_view, N>& names) const
    {
        if (!array.is_array()) fail(place, std::string("expected an array, found ") + array.type_name());
        std::vector<std::array<std::string, N>> out;
        out.reserve(array.size());
        for (std::size_t i = 0; i < array.size(); ++i)
            out.push_back(arguments(array[i], place + "/" + std::to_string(i), names));
        return out;
    }

private:
    std::string text(const json& value, const std::string& place) const
    {
        switch (value.type()) {
        case json::value_t::string: return value.get<std::string>();
        case json::value_t::number_integer: return std::to_string(value.get<std::int64_t>());
        case json::value_t::number_unsigned: return std::to_string(value.get<std::uint64_t>());
        case json::value_t::number_float: return value.dump();
        default: fail(place, std::string("expected text or a number, found ") + value.type_name());
        }
    }

    template <std::size_t N>
    static std::string joined(const std::array<std::string_view, N>& names)
    {
        std::string out;
        for (const auto n : names) (out += out.empty() ? "" : ", ") += n;
        return out;
    }

    std::string file_;
};

// nlohmann's messages start with an identifier in brackets that says nothing to a user.
std::string without_prefix(std::string_view message)
{
    if (message.starts_with('[')) {
        const auto close = message.find("] ");
        if (close != std::string_view::npos) message.remove_prefix(close + 2);
    }
    return std::string(message);
}

template <std::size_t N>
std::string argument_of(const std::array<std::string, N>& args, const std::array<std::string_view, N>& names,
                        std::string_view name)
{
    for (std::size_t i = 0; i < N; ++i)
        if (names[i] == name) return args[i];
    return {};
}

}  // namespace

GuiaFile read_guia_file(const std::filesystem::path& path)
{
    const Reader reader(path.string());
    std::ifstream in(path, std::ios::binary);
    if (!in || std::filesystem::is_directory(path)) throw GuiaFileError(path.string() + ": cannot open the file");
    const std::string content((std::istreambuf_iterator<char>(in)), {});
    if (in.bad()) throw GuiaFileError(path.string() + ": cannot read the file");

    json root;
    try {
        root = json::parse(content);
    } catch (const json::parse_error& e) {
        throw GuiaFileError(path.string() + ": " + without_prefix(e.what()));
    }
    if (!root.is_object()) reader.fail("", std::string("expected an object, found ") + root.type_name());
    for (const auto& [key, value] : root.items()) {
        bool known = false;
        for (const auto s : kSections) known = known || s == key;
        if (!known) reader.fail("", "unknown key \"" + key + "\"; known keys: cabecalho, parametros, produtos, servicos");
    }

    GuiaFile file;
    if (root.contains("cabecalho")) file.cabecalho = reader.arguments(root["cabecalho"], "/cabecalho", kCabecalho);
    if (root.contains("parametros")) file.parametros = reader.arguments(root["parametros"], "/parametros", kParametros);
    if (root.contains("produtos")) file.produtos = reader.rows(root["produtos"], "/produtos", kProduto);
    if (root.contains("servicos")) file.servicos = reader.rows(root["servicos"], "/servicos", kServico);
    return file;
}

std::string guia_file_json(const GuiaFile& file)
{
    // The ordered form keeps the arguments' order, as a reader expects them.
    nlohmann::ordered_json root;
    const auto ordered = [](const auto& values, const auto& names) {
        nlohmann::ordered_json o = nlohmann::ordered_json::object();
        for (std::size_t i = 0; i < names.size(); ++i) o[std::string(names[i])] = values[i];
        return o;
    };
    root["cabecalho"] = ordered(file.cabecalho, kCabecalho);
    root["parametros"] = ordered(file.parametros, kParametros);
    root["produtos"] = nlohmann::ordered_json::array();
    for (const auto& p : file.produtos) root["produtos"].push_back(ordered(p, kProduto));
    root["servicos"] = nlohmann::ordered_json::array();
    for (const auto& sv : file.servicos) root["servicos"].push_back(ordered(sv, kServico));
    return root.dump(2) + "\n";
}

std::optional<std::string> fill_guia(cls_ValProdutosA& guia, const GuiaFile& file)
{
    const auto call = [&](auto operation, const auto& args) {
        return std::apply([&](const auto&... a) { return (guia.*operation)(a...); }, args);
    };
    if (call(&cls_ValProdutosA::PreencheCabecalho, file.cabecalho) != 0)
        return "/cabecalho: PreencheCabecalho answered -1";
    if (call(&cls_ValProdutosA::PreencheParametros, file.parametros))
        return "/parametros: PreencheParametros answered -1";
    for (std::size_t i = 0; i < file.produtos.size(); ++i) {
        if (call(&cls_ValProdutosA::PreencheProduto, file.produtos[i]))
            return "/produtos/" + std::to_string(i) + ": the line was refused (PreencheProduto answered -1): " +
                   "PreTratamento must be a number, found \"" +
                   argument_of(file.produtos[i], kProduto, "PreTratamento") + '"';
    }
    for (std::size_t i = 0; i < file.servicos.size(); ++i) {
        if (call(&cls_ValProdutosA::PreencheServico, file.servicos[i]))
            return "/servicos/" + std::to_string(i) + ": PreencheServico answered -1";
    }
    return std::nullopt;
}

}  // namespace nimbara::cli
