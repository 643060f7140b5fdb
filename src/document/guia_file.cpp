#include "nimbara/guia_file.hpp"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "foundation/text.hpp"
#include "foundation/utf8.hpp"
#include "platform/json_document.hpp"

namespace nimbara {
namespace {

using platform::JsonValue;

class Reader {
public:
    explicit Reader(std::string_view source) : source_(source) {}

    [[noreturn]] void fail(const std::string& place, const std::string& what) const
    {
        throw GuiaFileError(source_ + ": " + (place.empty() ? "/" : place) + ": " + what);
    }

    // The values of one object into the struct's named fields; a key not among them is refused.
    template <class Args, std::size_t N>
    Args arguments(const JsonValue& object, const std::string& place, const std::array<FieldName<Args>, N>& names) const
    {
        if (object.kind != JsonValue::Kind::Object) fail(place, "expected an object, found " + kind(object));
        Args args;
        for (const auto& [key, value] : object.members) {
            const auto* field = find(names, key);
            if (!field) fail(place, "unknown key \"" + key + "\"; known keys: " + joined(names));
            args.*(field->member) = text(value, place + "/" + key);
        }
        return args;
    }

    template <class Args, std::size_t N>
    std::vector<Args> rows(const JsonValue& array, const std::string& place,
                           const std::array<FieldName<Args>, N>& names) const
    {
        if (array.kind != JsonValue::Kind::Array) fail(place, "expected an array, found " + kind(array));
        std::vector<Args> out;
        out.reserve(array.items.size());
        for (std::size_t i = 0; i < array.items.size(); ++i)
            out.push_back(arguments(array.items[i], place + "/" + std::to_string(i), names));
        return out;
    }

private:
    static std::string kind(const JsonValue& v) { return std::string(v.kind_name()); }

    std::string text(const JsonValue& value, const std::string& place) const
    {
        if (value.kind == JsonValue::Kind::Text || value.kind == JsonValue::Kind::Number) return value.text;
        fail(place, "expected text or a number, found " + kind(value));
    }

    template <class Args, std::size_t N>
    static const FieldName<Args>* find(const std::array<FieldName<Args>, N>& names, std::string_view key)
    {
        for (const auto& n : names)
            if (n.name == key) return &n;
        return nullptr;
    }

    template <class Args, std::size_t N>
    static std::string joined(const std::array<FieldName<Args>, N>& names)
    {
        std::string out;
        for (const auto& n : names) (out += out.empty() ? "" : ", ") += n.name;
        return out;
    }

    std::string source_;
};

// A value as JSON text; one that is not UTF-8 (stored before the values were checked) is named
// rather than written as something else.
std::string quoted_value(std::string_view value, const std::string& place)
{
    if (const auto at = chars::invalid_utf8_at(value))
        throw GuiaFileError(place + ": not UTF-8 text (byte " + std::to_string(*at + 1) +
                            "), which a Guia file cannot hold");
    return platform::json_quote(value);
}

template <class Args, std::size_t N>
void write_fields(std::string& out, const Args& args, const std::array<FieldName<Args>, N>& names,
                  const std::string& place)
{
    out += '{';
    bool first = true;
    for (const auto& n : names) {
        const std::string& value = args.*(n.member);
        if (value.empty()) continue;
        if (!first) out += ", ";
        first = false;
        out += platform::json_quote(n.name) + ": " + quoted_value(value, place + "/" + std::string(n.name));
    }
    out += '}';
}

template <class Args, std::size_t N>
void write_rows(std::string& out, const std::vector<Args>& rows, const std::array<FieldName<Args>, N>& names,
                const std::string& place)
{
    out += '[';
    for (std::size_t i = 0; i < rows.size(); ++i) {
        out += i ? ",\n    " : "\n    ";
        write_fields(out, rows[i], names, place + "/" + std::to_string(i));
    }
    out += rows.empty() ? "]" : "\n  ]";
}

}  // namespace

GuiaFile parse_guia_file(std::string_view content, std::string_view source)
{
    const Reader reader(source);
    if (content.size() > kMaxGuiaFileBytes)
        reader.fail("", "larger than " + std::to_string(kMaxGuiaFileBytes) + " bytes");
    JsonValue root;
    try {
        root = platform::parse_json(content);
    } catch (const platform::JsonError& e) {
        throw GuiaFileError(std::string(source) + ": " + e.what());
    }
    if (root.kind != JsonValue::Kind::Object) reader.fail("", "expected an object, found " + std::string(root.kind_name()));

    GuiaFile file;
    for (const auto& [key, value] : root.members) {
        if (key == "cabecalho") file.cabecalho = reader.arguments(value, "/cabecalho", kCabecalhoFields);
        else if (key == "parametros") file.parametros = reader.arguments(value, "/parametros", kParametrosFields);
        else if (key == "produtos") file.produtos = reader.rows(value, "/produtos", kProdutoFields);
        else if (key == "servicos") file.servicos = reader.rows(value, "/servicos", kServicoFields);
        else reader.fail("", "unknown key \"" + key + "\"; known keys: cabecalho, parametros, produtos, servicos");
    }
    return file;
}

GuiaFile read_guia_file(const std::filesystem::path& path)
{
    const auto refuse = [&](const std::string& why) { throw GuiaFileError(path.string() + ": " + why); };
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec)) refuse("is a folder, not a file");
    std::ifstream in(path, std::ios::binary);
    if (!in) refuse(std::string("cannot open the file: ") + std::strerror(errno));
    std::string content;
    char buffer[65536];
    while (in.read(buffer, sizeof buffer) || in.gcount() > 0) {
        content.append(buffer, static_cast<std::size_t>(in.gcount()));
        if (content.size() > kMaxGuiaFileBytes) refuse("larger than " + std::to_string(kMaxGuiaFileBytes) + " bytes");
    }
    if (in.bad()) refuse(std::string("cannot read the file: ") + std::strerror(errno));
    return parse_guia_file(content, path.string());
}

std::string write_guia_file(const GuiaFile& guia)
{
    std::string out = "{\n  \"cabecalho\": ";
    write_fields(out, guia.cabecalho, kCabecalhoFields, "/cabecalho");
    out += ",\n  \"parametros\": ";
    write_fields(out, guia.parametros, kParametrosFields, "/parametros");
    out += ",\n  \"produtos\": ";
    write_rows(out, guia.produtos, kProdutoFields, "/produtos");
    out += ",\n  \"servicos\": ";
    write_rows(out, guia.servicos, kServicoFields, "/servicos");
    out += "\n}\n";
    return out;
}

std::optional<std::string> fill_guia(cls_ValProdutosA& guia, const GuiaFile& file)
{
    const auto refused = [&](const std::string& place) {
        const auto& e = guia.LastError();
        return place + ": " + (e ? e->where + " refused it: " + e->cause : std::string("refused"));
    };
    if (guia.PreencheCabecalho(file.cabecalho) != 0) return refused("/cabecalho");
    if (guia.PreencheParametros(file.parametros)) return refused("/parametros");
    for (std::size_t i = 0; i < file.produtos.size(); ++i)
        if (guia.PreencheProduto(file.produtos[i])) return refused("/produtos/" + std::to_string(i));
    for (std::size_t i = 0; i < file.servicos.size(); ++i)
        if (guia.PreencheServico(file.servicos[i])) return refused("/servicos/" + std::to_string(i));
    return std::nullopt;
}

std::optional<std::int32_t> read_weight(std::string_view value)
{
    const auto first = value.find_first_not_of(' ');
    if (first == std::string_view::npos) return std::nullopt;
    return text::parse_int32(value.substr(first, value.find_last_not_of(' ') - first + 1));
}

}  // namespace nimbara
