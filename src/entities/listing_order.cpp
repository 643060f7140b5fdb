#include "entities/listing_order.hpp"

#include <array>
#include <cctype>
#include <stdexcept>
#include <utility>
#include <vector>

#include "nimbara/cls_Guia.hpp"

namespace nimbara::entities {
namespace {

// In the order of replacement: no column put in place contains a later word in lower case.
constexpr std::array<std::pair<std::string_view, std::string_view>, 12> kColumns = {{
    {"guia", "Tbl_Cab.N_req2"},
    {"data", "Tbl_Cab.D_Req"},
    {"cliente", "Tbl_Cliente.Cod_Cliente"},
    {"nome", "Tbl_Cliente.Nome"},
    {"contrato", "Tbl_Contrato.Cod_Contrato"},
    {"velocidade", "Tbl_Linha.E_Velocidade"},
    {"produto", "Tbl_Linha.B_Produto"},
    {"zona", "Tbl_Linha.A_Zona_Taxacao"},
    {"peso", "Tbl_Linha.C_Escalao"},
    {"formato", "Tbl_Linha.F_Formato"},
    {"ambito", "Tbl_Linha.N_Ambito_Distrib"},
    {"quantidade", "Tbl_Linha.D_Quantidade"},
}};

bool is_column_word(std::string_view w)
{
    for (const auto& [word, column] : kColumns)
        if (w == word) return true;
    return false;
}

bool is_blank(char c) { return c == ' ' || c == '\t'; }

[[noreturn]] void refuse(std::string_view what, std::string_view order)
{
    throw std::invalid_argument("the order \"" + std::string(order) + "\" " + std::string(what) +
                                "; it takes column words (guia, data, cliente, nome, contrato, velocidade, produto, "
                                "zona, peso, formato, ambito, quantidade), each with asc or desc if wanted, "
                                "separated by commas");
}

// Checks each comma-separated item: one column word, then at most one direction word.
void check(const std::string& lower, std::string_view order)
{
    std::vector<std::string> words;
    const auto end_item = [&] {
        if (words.empty()) refuse("has an empty place where a column word belongs", order);
        if (!is_column_word(words[0])) refuse("has \"" + words[0] + "\" where a column word belongs", order);
        if (words.size() > 2) refuse("has \"" + words[2] + "\" after a direction", order);
        if (words.size() == 2 && words[1] != "asc" && words[1] != "desc")
            refuse("has \"" + words[1] + "\" where asc or desc belongs", order);
        words.clear();
    };
    std::size_t i = 0;
    while (i < lower.size()) {
        const char c = lower[i];
        if (is_blank(c)) {
            ++i;
        } else if (c == ',') {
            end_item();
            ++i;
        } else if (c >= 'a' && c <= 'z') {
            std::size_t j = i;
            while (j < lower.size() && lower[j] >= 'a' && lower[j] <= 'z') ++j;
            words.push_back(lower.substr(i, j - i));
            i = j;
        } else {
            std::size_t j = i;
            while (j < lower.size() && !is_blank(lower[j]) && lower[j] != ',') ++j;
            refuse("has \"" + std::string(order.substr(i, j - i)) + "\", which is no word", order);
        }
    }
    end_item();
}

}  // namespace

std::string listing_order_columns(std::string_view order)
{
    std::string lower(order);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    check(lower, order);
    // Every word is known now, so the replacements in their order give exactly the named columns.
    for (const auto& [word, column] : kColumns)
        lower = cls_Guia::Replace(lower, std::string(word), std::string(column));
    return lower;
}

}  // namespace nimbara::entities
