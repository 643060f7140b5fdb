// The pages of one Guia found among the symbols of a scan: the same head, numbered 1 to the number
// of pages. Copies print the same symbols, so a page found twice alike is a copy, not a fault.
#include <algorithm>
#include <map>

#include "nimbara/guia_symbol.hpp"

namespace nimbara {
namespace {

struct Gathered {
    SymbolHead head;
    std::map<int, std::pair<FoundSymbol, SymbolPayload>> pages;
    std::vector<int> repeated, conflicting;
};

void add_once(std::vector<int>& list, int page)
{
    if (std::find(list.begin(), list.end(), page) == list.end()) list.push_back(page);
}

}  // namespace

AssembledScan assemble_guias(const std::vector<FoundSymbol>& symbols)
{
    AssembledScan scan;
    std::vector<Gathered> gathered;
    for (const auto& symbol : symbols) {
        SymbolPayload payload;
        try {
            payload = read_symbol_payload(symbol.text);
        } catch (const SymbolPayloadError& e) {
            scan.unread.push_back({symbol.where, symbol.text, e.what()});
            continue;
        }
        auto it = std::find_if(gathered.begin(), gathered.end(),
                               [&](const Gathered& g) { return g.head.identity == payload.head.identity; });
        if (it == gathered.end()) {
            gathered.push_back({payload.head, {}, {}, {}});
            it = std::prev(gathered.end());
        }
        const int page = payload.head.page;
        const auto present = it->pages.find(page);
        if (present == it->pages.end()) {
            it->pages.emplace(page, std::make_pair(symbol, std::move(payload)));
        } else if (present->second.first.text == symbol.text) {
            add_once(it->repeated, page);
        } else {
            add_once(it->conflicting, page);
        }
    }
    for (auto& g : gathered) {
        AssembledGuia guia;
        guia.head = g.head;
        guia.head.page = 0;
        guia.page_sources.resize(static_cast<std::size_t>(g.head.pages));
        for (int page = 1; page <= g.head.pages; ++page) {
            const auto found = g.pages.find(page);
            if (found == g.pages.end()) {
                guia.missing.push_back(page);
                continue;
            }
            guia.page_sources[static_cast<std::size_t>(page - 1)] = found->second.first.where;
            for (auto& line : found->second.second.lines) guia.lines.push_back(std::move(line));
        }
        std::sort(g.repeated.begin(), g.repeated.end());
        std::sort(g.conflicting.begin(), g.conflicting.end());
        guia.repeated = std::move(g.repeated);
        guia.conflicting = std::move(g.conflicting);
        scan.guias.push_back(std::move(guia));
    }
    return scan;
}

}  // namespace nimbara
