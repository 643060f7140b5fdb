#include "support/symbol_corpus.hpp"

#include <algorithm>
#include <filesystem>
#include <random>
#include <variant>

#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "printing/guia_source.hpp"
#include "printing/page_plan.hpp"
#include "support/sample_guia.hpp"

namespace nimbara::testing {

std::vector<NamedGuia> example_guias()
{
    std::vector<NamedGuia> out;
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(NIMBARA_SOURCE_DIR) / "examples"))
        if (entry.path().extension() == ".json" && entry.path().filename() != "client.json") files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        cls_ValProdutosA guia;
        if (fill_guia(guia, read_guia_file(file))) continue;
        if (page_payloads(guia.arrays(), Edition::Array).empty()) continue;
        out.push_back({file.filename().string(), guia.arrays()});
    }
    return out;
}

std::vector<NamedGuia> random_guias(int count, std::uint32_t seed)
{
    std::mt19937 rng(seed);
    const auto pick = [&rng](int from, int to) { return std::uniform_int_distribution<int>(from, to)(rng); };
    const auto digits = [&](int max_width) {
        std::string s = std::to_string(pick(0, 9));
        const int width = pick(1, max_width);
        while (static_cast<int>(s.size()) < width) s += static_cast<char>('0' + pick(0, 9));
        return s;
    };
    const auto capitals = [&](int max_width) {
        std::string s;
        const int width = pick(1, max_width);
        while (static_cast<int>(s.size()) < width) s += pick(0, 1) ? static_cast<char>('A' + pick(0, 25)) : static_cast<char>('0' + pick(0, 9));
        return s;
    };
    static const char* const kProducts[] = {"C01", "C02", "C03", "C05", "C07", "C10", "C13", "C20", "C50", "E01", "E04", "P09"};
    std::vector<NamedGuia> out;
    for (int n = 0; n < count; ++n) {
        GuiaArrays g = sample_guia();
        const auto head = [&](cab::Field f, std::string v) { g.arrCabecalho.set(f, 0, std::move(v)); };
        head(cab::CodContrato, digits(12));
        head(cab::CodCliente, digits(9));
        head(cab::CodTerceiro, pick(0, 1) ? digits(8) : "0");
        head(cab::Drqjul, std::to_string(pick(0, 9)) + std::to_string(pick(100, 365)));
        head(cab::IDReqAnual, digits(4));
        head(cab::N_Req, digits(4));
        head(cab::TipoAcesso, std::to_string(pick(0, 2)));
        head(cab::Pagamento, std::to_string(pick(0, 2)));
        head(cab::JppCredenciado, std::to_string(pick(0, 1)));
        head(cab::NCredencial, digits(7));
        head(cab::NCompromisso, pick(0, 1) ? digits(15) : "");
        const int lines = pick(1, 30);
        for (int i = 0; i < lines; ++i) {
            LineShape shape;
            shape.product = kProducts[pick(0, 11)];
            shape.quantity = digits(7);
            shape.zone = std::to_string(pick(0, 9)) + std::to_string(pick(0, 9));
            shape.weight = digits(5);
            shape.format = pick(0, 1) ? "0" : "0" + std::to_string(pick(1, 3));
            shape.tax_quantity = digits(4);
            if (pick(0, 3) == 0) shape.campaign = capitals(13);
            const int line = add_line(g, shape);
            const int row = line - 1;
            g.arrGuia.set(guia::E_Velocidade, row, pick(0, 1) ? "0" : "0" + std::to_string(pick(1, 3)));
            g.arrGuia.set(guia::Desconto, row, std::to_string(pick(0, 3)));
            g.arrGuia.set(guia::PreTratamento, row, std::to_string(pick(0, 1)));
            g.arrGuia.set(guia::Entrega_Sampling, row, std::to_string(pick(0, 3)));
            if (pick(0, 3) == 0) g.arrGuia.set(guia::refClie, row, capitals(9));
            if (pick(0, 4) == 0) g.arrGuia.set(guia::caracte, row, std::to_string(pick(1, 9)));
            const int services = pick(0, 3) == 0 ? pick(1, 4) : 0;
            for (int s = 0; s < services; ++s) add_service(g, line, std::to_string(pick(1, 15)), pick(0, 1) ? "0" : digits(5));
            const std::string product = shape.product;
            if ((product == "C03" || product == "C05" || product == "C50") && pick(0, 1) && i + 1 < lines) {
                add_line(g, {.product = "C25", .quantity = digits(4), .weight = digits(4)});
                ++i;
            }
        }
        out.push_back({"random-" + std::to_string(seed) + "-" + std::to_string(n), std::move(g)});
    }
    return out;
}

std::vector<std::string> page_payloads(const GuiaArrays& guia, Edition edition)
{
    const printing::ArraySource source(guia);
    const printing::PagePlan plan = printing::plan_pages(source, edition);
    std::vector<std::string> out;
    if (plan.failure) return out;
    for (const auto& page : plan.pages)
        for (const auto& step : page.steps)
            if (const auto* symbol = std::get_if<printing::step::Symbol>(&step)) out.push_back(symbol->payload);
    return out;
}

}  // namespace nimbara::testing
