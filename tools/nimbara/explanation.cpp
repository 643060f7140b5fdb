#include "explanation.hpp"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <vector>

#include "nimbara/catalogue_codes.hpp"

namespace nimbara::cli {
namespace {

// The façade trims what it is given, so the explanation reads the values as it does.
std::string trimmed(const std::string& text)
{
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::optional<std::int64_t> whole(const std::string& text)
{
    const std::string t = trimmed(text);
    std::int64_t v = 0;
    const auto [end, ec] = std::from_chars(t.data(), t.data() + t.size(), v);
    if (t.empty() || ec != std::errc{} || end != t.data() + t.size()) return std::nullopt;
    return v;
}

std::string line_name(const GuiaProduto& line, std::size_t row)
{
    const std::string n = trimmed(line.N_Linha);
    return "line " + (n.empty() ? "at /produtos/" + std::to_string(row) : n);
}

std::string service_named(const std::string& code)
{
    for (const auto& s : CatalogueCodes(CodeKind::Service))
        if (s.code == code && !s.designation.empty()) return code + " (" + s.designation + ")";
    return code;
}

// A service rule of a product whose list names what the line lacks, not what it has wrong.
struct MissingService {
    std::string needed;
    std::string beside;
};

const std::map<std::int32_t, MissingService>& missing_services()
{
    static const std::map<std::int32_t, MissingService> m = {
        {-11, {"06", "service 02, 04 or 05"}}, {-12, {"01", "service 02, 04 or 05"}}, {-16, {"06", "service 02"}},
        {-22, {"02", "service 10"}},           {-23, {"10", "service 07 in zone 01"}},
    };
    return m;
}

std::optional<std::string> explain_line(const ErrorArray& error, const GuiaProduto& line)
{
    const std::string product = trimmed(line.B_Produto);
    if (error.number == -100) {
        if (!CatalogueHasProduct(product))
            return "product \"" + product + "\" is not in the catalogue (no active rule), which the system reports as "
                   "an error reading XML; nimbara codes product lists the products";
        if (!whole(line.PreTratamento))
            return "PreTratamento \"" + trimmed(line.PreTratamento) + "\" is not a whole number";
        return std::nullopt;
    }
    if (const auto it = missing_services().find(error.number); it != missing_services().end())
        return "service " + service_named(it->second.needed) + " is missing: product " + product + " needs it beside " +
               it->second.beside + "; the report lists it among \"Servicos Especiais Errados\", but it is the service "
               "to add, not a wrong one";
    if (error.number == -14 || error.number == -15)
        return "product " + product + " in zone " + trimmed(line.A_Zona_Taxacao) + " with special services needs " +
               (error.number == -14 ? "service 03 or 13" : "service 02, 04 or 13") +
               " on the line; the services listed as wrong are the ones to choose from";
    return std::nullopt;
}

// A rule of the whole Guia that asks for a least quantity of a product, summed over its lines.
struct Minimum {
    std::string product;
    std::int64_t least = 0;
    std::vector<std::string> zones;  // only the lines in these zones count; all when empty
    std::string which;               // what those zones are
};

const std::map<std::int32_t, Minimum>& minimums()
{
    static const std::map<std::int32_t, Minimum> m = {
        {-1, {"C03", 250, {}, "every zone, as a line of it is in zone 01"}},
        {-2, {"C07", 100, {"01", "33", "34"}, "national mail"}},
        {-13, {"C07", 100, {"02", "05", "44", "42", "45"}, "international mail"}},
        {-3, {"C21", 100, {}, ""}},
        {-4, {"C22", 250, {}, ""}},
        {-7, {"C23", 100, {}, ""}},
        {-10, {"C42", 100, {}, ""}},
        {-11, {"C43", 100, {}, ""}},
        {-12, {"C44", 100, {}, ""}},
        {-14, {"C47", 100, {}, ""}},
    };
    return m;
}

std::string explain_minimum(const Minimum& rule, const GuiaFile& file)
{
    std::int64_t sum = 0;
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < file.produtos.size(); ++i) {
        const auto& line = file.produtos[i];
        if (trimmed(line.B_Produto) != rule.product) continue;
        if (!rule.zones.empty() &&
            std::find(rule.zones.begin(), rule.zones.end(), trimmed(line.A_Zona_Taxacao)) == rule.zones.end())
            continue;
        const auto quantity = whole(line.D_Quantidade);
        if (!quantity)
            return line_name(line, i) + ": D_Quantidade \"" + trimmed(line.D_Quantidade) + "\" is not a whole number, "
                   "which fails the minimum of " + std::to_string(rule.least) + " objects of product " + rule.product;
        sum += *quantity;
        lines.push_back(trimmed(line.N_Linha));
    }
    std::string named;
    for (std::size_t i = 0; i < lines.size(); ++i) named += (i == 0 ? "" : i + 1 == lines.size() ? " and " : ", ") + lines[i];
    return "product " + rule.product + (rule.which.empty() ? "" : " (" + rule.which + ")") + ": the D_Quantidade of " +
           (lines.size() == 1 ? "line " + named + " is " : "lines " + named + " sum to ") + std::to_string(sum) +
           " objects, below the minimum of " + std::to_string(rule.least);
}

std::optional<std::string> explain_guia(const ErrorArray& error, const GuiaFile& file)
{
    if (const auto it = minimums().find(error.number); it != minimums().end()) return explain_minimum(it->second, file);
    const std::string access = trimmed(file.cabecalho.cb_TipoAcesso);
    for (std::size_t i = 0; i < file.produtos.size(); ++i) {
        const std::string product = trimmed(file.produtos[i].B_Produto);
        const bool network = product.starts_with('P');
        if (error.number == -15 && !network)
            return "cb_TipoAcesso " + access + " (network access) allows only products beginning with P, not only P01; " +
                   line_name(file.produtos[i], i) + " has " + product;
        if (error.number == -16 && network)
            return "cb_TipoAcesso " + (access.empty() ? std::string("0") : access) +
                   " allows no product beginning with P (those are for network access, cb_TipoAcesso 2); " +
                   line_name(file.produtos[i], i) + " has " + product;
    }
    if (error.number == -8) return "a C25 insert line must come right after a line of C05, C03 or C50";
    if (error.number == -6)
        return "a C25 insert line must have the zone, speed and quantity of the line right before it";
    return std::nullopt;
}

}  // namespace

std::optional<std::string> explanation(const ErrorArray& error, const GuiaFile& file, std::optional<int> row)
{
    if (!row) return explain_guia(error, file);
    if (*row < 0 || static_cast<std::size_t>(*row) >= file.produtos.size()) return std::nullopt;
    return explain_line(error, file.produtos[static_cast<std::size_t>(*row)]);
}

}  // namespace nimbara::cli
