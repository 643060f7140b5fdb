#include "scan_input.hpp"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <ostream>
#include <sstream>

#include "nimbara/line_batch.hpp"
#include "nimbara/scan_reading.hpp"
#include "verdict_json.hpp"

namespace nimbara::cli {
namespace {

std::string read_input(const std::string& file)
{
    if (file == "-") {
        std::string bytes;
        char block[1 << 16];
        std::size_t n = 0;
        while ((n = std::fread(block, 1, sizeof block, stdin)) > 0) bytes.append(block, n);
        if (std::ferror(stdin)) throw ScanError("-: standard input could not be read");
        return bytes;
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) throw ScanError(file + ": cannot be opened");
    std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) throw ScanError(file + ": cannot be read");
    return bytes;
}

std::string list(const std::vector<int>& pages)
{
    std::string out;
    for (const int p : pages) out += (out.empty() ? "" : ", ") + std::to_string(p);
    return out;
}

}  // namespace

bool ScanInput::whole() const
{
    if (!failures.empty() || !scan.unread.empty() || scan.guias.empty()) return false;
    for (const auto& g : scan.guias)
        if (!g.complete()) return false;
    return true;
}

ScanInput read_scan_inputs(const std::vector<std::string>& files)
{
    ScanInput input;
    std::vector<FoundSymbol> found;
    for (const auto& file : files) {
        std::vector<ScannedPage> pages;
        try {
            pages = read_scan(read_input(file), file);
        } catch (const ScanError& e) {
            input.failures.push_back({file, e.what()});
            continue;
        } catch (const std::exception& e) {
            input.failures.push_back({file, e.what()});
            continue;
        }
        std::size_t symbols = 0;
        for (const auto& page : pages) symbols += page.symbols.size();
        if (symbols == 0) {
            input.failures.push_back({file, file + ": no PDF417 symbol found"});
            continue;
        }
        for (const auto& page : pages) {
            if (page.symbols.empty()) input.blank_pages.push_back(page.where);
            for (const auto& s : page.symbols) found.push_back({page.where, s});
        }
    }
    input.scan = assemble_guias(found);
    return input;
}

std::vector<nlohmann::json> line_verdicts(const AssembledGuia& guia)
{
    // The lines go to check-lines' own batch, in its ten columns.
    std::string batch;
    std::vector<std::size_t> checked;
    for (std::size_t i = 0; i < guia.lines.size(); ++i) {
        const SymbolLine& l = guia.lines[i];
        if (l.rides_along) continue;
        for (const char* key : {"B_Produto", "A_Zona_Taxacao", "Escalao", "E_Velocidade", "Formato", "PreTratamento",
                                "Desconto", "CodAmbitoDist", "Entrega_Sampling"}) {
            std::string_view value = l.value(key);
            // The database edition carries no pre-treatment for the products that take none.
            if (std::string_view(key) == "PreTratamento" && value.empty()) value = "0";
            batch += value;
            batch += '\t';
        }
        batch += l.service_list();
        batch += '\n';
        checked.push_back(i);
    }
    std::vector<nlohmann::json> verdicts(guia.lines.size());
    std::istringstream in(batch);
    std::ostringstream err;
    std::size_t row = 0;
    check_line_batch(in, [&](const BatchLineResult& r) {
        nlohmann::json j;
        if (r.refused) {
            j = {{"passed", false}, {"refused", *r.refused}};
        } else {
            j = {{"passed", !r.result}};
            if (r.result) {
                j.update(error_json(*r.result));
                j["possible_values"] = possible_values_json(r.possible_values, r.weight_steps);
            }
        }
        verdicts[checked[row++]] = std::move(j);
    }, err, "symbol");
    return verdicts;
}

std::string guia_name(const SymbolHead& head)
{
    return "contract " + head.contract + ", client " + head.client + ", " +
           (head.edition == SymbolEdition::Array ? "yearly number " : "request number ") + head.request_number +
           ", day " + head.day_code;
}

std::vector<std::string> page_faults(const AssembledGuia& guia)
{
    std::vector<std::string> out;
    const std::string of = " of " + std::to_string(guia.head.pages);
    if (guia.missing.size() == 1) out.push_back("page " + list(guia.missing) + of + " is missing");
    if (guia.missing.size() > 1) out.push_back("pages " + list(guia.missing) + of + " are missing");
    if (!guia.conflicting.empty())
        out.push_back("page " + list(guia.conflicting) + " was found twice with different symbols");
    return out;
}

nlohmann::ordered_json guia_json(const AssembledGuia& guia, bool& passed)
{
    nlohmann::ordered_json j;
    j["edition"] = guia.head.edition == SymbolEdition::Array ? "array" : "database";
    if (!guia.head.version.empty()) j["version"] = guia.head.version;
    nlohmann::ordered_json head = nlohmann::ordered_json::object();
    for (const auto& [key, value] : head_fields(guia.head)) head[key] = value;
    j["cabecalho"] = head;
    j["pages"] = guia.head.pages;
    j["page_sources"] = guia.page_sources;
    j["missing_pages"] = guia.missing;
    j["repeated_pages"] = guia.repeated;
    j["conflicting_pages"] = guia.conflicting;
    const auto verdicts = line_verdicts(guia);
    passed = true;
    auto products = nlohmann::ordered_json::array();
    auto services = nlohmann::ordered_json::array();
    for (std::size_t i = 0; i < guia.lines.size(); ++i) {
        const SymbolLine& l = guia.lines[i];
        const std::string number = std::to_string(i + 1);
        nlohmann::ordered_json line;
        line["N_Linha"] = number;
        for (const auto& [key, value] : l.fields) line[key] = value;
        if (!l.rides_along) line["ListaServesp"] = l.service_list();
        if (l.rides_along) line["rides_along"] = true;
        line["verdict"] = verdicts[i];
        if (!verdicts[i].is_null() && !verdicts[i]["passed"].get<bool>()) passed = false;
        products.push_back(std::move(line));
        for (const auto& s : l.services)
            services.push_back({{"N_Linha", number}, {"CodServEsp", s.CodServEsp}, {"Valor", s.Valor}});
    }
    j["produtos"] = std::move(products);
    j["servicos"] = std::move(services);
    j["passed"] = passed;
    return j;
}

void add_scan_faults(nlohmann::ordered_json& document, const ScanInput& input)
{
    auto unreadable = nlohmann::ordered_json::array();
    for (const auto& f : input.failures) unreadable.push_back({{"input", f.input}, {"error", f.error}});
    auto not_ours = nlohmann::ordered_json::array();
    for (const auto& u : input.scan.unread) not_ours.push_back({{"where", u.where}, {"error", u.error}, {"text", u.text}});
    document["unreadable"] = std::move(unreadable);
    document["not_ours"] = std::move(not_ours);
    document["pages_without_symbol"] = input.blank_pages;
}

void report_scan_faults(std::ostream& err, const std::string& command, const ScanInput& input)
{
    const std::string who = "nimbara " + command + ": ";
    for (const auto& f : input.failures) err << who << f.error << '\n';
    for (const auto& u : input.scan.unread) err << who << u.where << ": a symbol that is no Guia of ours (" << u.error << ")\n";
    for (const auto& p : input.blank_pages) err << who << p << ": no symbol on this page\n";
    for (const auto& g : input.scan.guias)
        for (const auto& fault : page_faults(g)) err << who << "Guia of " << guia_name(g.head) << ": " << fault << '\n';
}

}  // namespace nimbara::cli
