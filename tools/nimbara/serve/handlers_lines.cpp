// The clerk's help while filling a line: the codes, the values accepted given what is filled, and
// one line's verdict with its explanation, as the program's line batches give them.
#include <algorithm>
#include <sstream>

#include "codes_json.hpp"
#include "explanation.hpp"
#include "handlers.hpp"
#include "handlers_input.hpp"
#include "nimbara/accepted_values.hpp"
#include "nimbara/catalogue_codes.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/line_batch.hpp"
#include "verdict_json.hpp"

namespace nimbara::serve {
namespace {

using nlohmann::ordered_json;

// A place of the Guia file made of one line is a place of the line the request gave.
std::string line_place(const std::string& place)
{
    if (place.starts_with("/produtos/0")) return place.size() == 11 ? "/" : place.substr(11);
    if (place.starts_with("/cabecalho")) return "/header" + place.substr(10);
    return place;
}

// The request's line (and header) read by the Guia file's own reader, so that the keys and values
// are checked as a Guia file's are.
GuiaFile line_file(const ApiRequest& request)
{
    ordered_json line = json_body(request);
    ordered_json file = {{"produtos", ordered_json::array()}};
    if (line.contains("header")) {
        file["cabecalho"] = line["header"];
        line.erase("header");
    }
    file["produtos"].push_back(std::move(line));
    try {
        return parse_guia_file(file.dump(), "body");
    } catch (const GuiaFileError& e) {
        const std::string place = line_place(place_in_message(e.what()));
        std::string message = e.what();
        if (const auto at = message.find(": /"); at != std::string::npos)
            message = "body: " + place + message.substr(message.find(':', at + 2));
        throw InputError(422, message, place);
    }
}

}  // namespace

ApiResponse get_codes(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"kind", "product"});
        std::vector<std::string> kinds;
        if (const auto text = query_text(request, "kind")) {
            const auto known = cli::code_kind_names();
            std::stringstream words(*text);
            for (std::string kind; std::getline(words, kind, ',');) {
                if (std::find(known.begin(), known.end(), kind) == known.end())
                    throw InputError(400, "kind: \"" + kind + "\" is no kind of code", "kind");
                kinds.push_back(kind);
            }
        }
        try {
            return json_response(200, cli::codes_document(kinds, query_text(request, "product")));
        } catch (const std::runtime_error& e) {
            throw InputError(422, e.what(), "product");
        }
    });
}

// The values the field accepts given the line's fields so far, as the report lists them for a failed line.
ApiResponse get_possible_values(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {"field", "B_Produto", "A_Zona_Taxacao", "Escalao", "E_Velocidade", "Formato",
                              "PreTratamento", "Desconto", "CodAmbitoDist"});
        const std::string field = query_text(request, "field").value_or("");
        const auto given = [&](const char* name) { return query_text(request, name).value_or(""); };
        if (field == "B_Produto") {
            auto values = ordered_json::array();
            for (const auto& c : CatalogueCodes(CodeKind::Product))
                values.push_back({{"code", c.code}, {"designation", c.designation}});
            return json_response(200, {{"status", 0}, {"field", field}, {"possible_values", values}});
        }
        static const std::pair<const char*, LineField> fields[] = {
            {"A_Zona_Taxacao", LineField::Zone},      {"Escalao", LineField::Weight},
            {"E_Velocidade", LineField::Speed},       {"Formato", LineField::Format},
            {"PreTratamento", LineField::PreTreatment}, {"Desconto", LineField::Discount},
            {"CodAmbitoDist", LineField::Scope},      {"Entrega_Sampling", LineField::Sampling},
            {"ListaServesp", LineField::Services}};
        const auto found = std::find_if(std::begin(fields), std::end(fields),
                                        [&](const auto& f) { return field == f.first; });
        if (found == std::end(fields))
            throw InputError(400, "field: \"" + field + "\" is no field of a line that has accepted values", "field");
        if (given("B_Produto").empty())
            throw InputError(400, "B_Produto: the line's product comes first: the values depend on it", "B_Produto");
        LineSoFar line{given("B_Produto"), given("A_Zona_Taxacao"), given("E_Velocidade"), given("Formato"),
                       given("PreTratamento"), given("Desconto"), given("CodAmbitoDist")};
        if (const auto weight = given("Escalao"); !weight.empty()) {
            const auto read = read_weight(weight);
            if (!read) throw InputError(400, "Escalao: \"" + weight + "\" is not a whole number of 32 bits", "Escalao");
            line.weight = *read;
        }
        const auto values = AcceptedValues(found->second, line);
        return json_response(200, {{"status", 0},
                                   {"field", field},
                                   {"possible_values", values ? ordered_json(cli::possible_values_json(
                                                                    *values, found->second == LineField::Weight))
                                                              : ordered_json::array()}});
    });
}

ApiResponse check_line(const ApiRequest& request)
{
    return answer([&] {
        allow_query(request, {});
        const GuiaFile file = line_file(request);
        const GuiaProduto& p = file.produtos.front();
        if (!p.Escalao.empty() && !read_weight(p.Escalao))
            throw InputError(422, "body: /Escalao: \"" + p.Escalao + "\" is not a whole number of 32 bits", "/Escalao");
        // One row of a line batch: a value may not carry the batch's separators.
        const std::pair<const char*, const std::string*> fields[] = {
            {"/B_Produto", &p.B_Produto}, {"/A_Zona_Taxacao", &p.A_Zona_Taxacao}, {"/Escalao", &p.Escalao},
            {"/E_Velocidade", &p.E_Velocidade}, {"/Formato", &p.Formato}, {"/PreTratamento", &p.PreTratamento},
            {"/Desconto", &p.Desconto}, {"/CodAmbitoDist", &p.CodAmbitoDist}, {"/Entrega_Sampling", &p.Entrega_Sampling},
            {"/ListaServesp", &p.ListaServesp}};
        std::string row;
        for (std::size_t i = 0; i < std::size(fields); ++i) {
            const auto& [place, value] = fields[i];
            if (value->find_first_of("\t\r\n") != std::string::npos)
                throw InputError(422, std::string("body: ") + place + ": a code holds no tab or line break", place);
            if (i > 0) row += '\t';
            // A weight not given is 0, as the façade reads an empty cell.
            row += (i == 2 && value->empty()) ? "0" : *value;
        }
        std::istringstream in(row + '\n');
        std::ostringstream messages;
        std::optional<BatchLineResult> result;
        check_line_batch(in, [&](const BatchLineResult& r) { result = r; }, messages, "body");
        if (!result || result->refused)
            throw InputError(422, result && result->refused ? *result->refused : messages.str());
        ordered_json verdict = ordered_json(cli::batch_result_json(*result));
        verdict.erase("line");
        if (result->result)
            if (const auto x = cli::explanation(*result->result, file, 0)) verdict["explanation"] = *x;
        ordered_json document = {{"status", 0}};
        document.update(verdict);
        return json_response(200, document);
    });
}

}  // namespace nimbara::serve
