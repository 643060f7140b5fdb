#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "nimbara/guia_symbol.hpp"
#include "nimbara/version.hpp"
#include "printing/barcode_payload.hpp"
#include "support/symbol_corpus.hpp"

using namespace nimbara;
using nimbara::testing::NamedGuia;

namespace {

// The payload written again from what was read, by printing's own functions: reading is right when
// this gives back every character.
std::string write_again(const SymbolPayload& p)
{
    const bool array = p.head.edition == SymbolEdition::Array;
    cab::Table head;
    const auto set = [&head](cab::Field f, const std::string& v) { head.set(f, 0, v); };
    set(cab::TipoAcesso, p.head.access == "OP" ? "2" : "0");
    set(cab::CodContrato, p.head.contract);
    set(cab::CodCliente, p.head.client);
    set(cab::CodTerceiro, p.head.third_party);
    set(cab::Drqjul, p.head.day_code);
    set(array ? cab::IDReqAnual : cab::N_Req, p.head.request_number);
    set(cab::Pagamento, p.head.payment.value_or("3"));
    set(cab::JppCredenciado, p.head.credentialed ? "1" : "0");
    set(cab::NCredencial, p.head.credential_number);
    set(cab::NCompromisso, p.head.commitment);
    set(cab::Unused20, "0");
    std::string items;
    int count = 0;
    for (std::size_t i = 0; i < p.lines.size(); ++i) {
        const SymbolLine& line = p.lines[i];
        if (line.rides_along) continue;
        guia::Table row;
        for (const auto& f : printing::kItemFields) row.set(f.field, 0, std::string(line.value(f.name)));
        std::string services;
        for (const auto& s : line.services) services += printing::item_servico(s.CodServEsp, s.Valor);
        auto n = static_cast<std::int32_t>(line.services.size());
        if (i + 1 < p.lines.size() && p.lines[i + 1].rides_along) {
            services = "25" + printing::pad_zero(p.lines[i + 1].value("Escalao"), 7) + services;
            n = std::max(n, 1);
        }
        items += array ? printing::item_linha(row, 0, services, n) : printing::item_linha_db(row, 0, services, n);
        ++count;
    }
    if (array) {
        std::string h = printing::codigo_cabecalho(head, p.head.page, p.head.pages);
        return printing::finish_payload(h, p.head.page, count, items);
    }
    std::string h = printing::codigo_cabecalho_db(head, p.head.page, p.head.pages);
    return printing::finish_payload_db(h, p.head.page, p.line_count, items);
}

void expect_round_trip(const std::vector<NamedGuia>& guias, std::size_t& pages)
{
    for (const auto& g : guias)
        for (const Edition edition : {Edition::Array, Edition::Database})
            for (const auto& payload : nimbara::testing::page_payloads(g.arrays, edition)) {
                ++pages;
                try {
                    EXPECT_EQ(write_again(read_symbol_payload(payload)), payload) << g.name;
                } catch (const SymbolPayloadError& e) {
                    ADD_FAILURE() << g.name << ": " << e.what() << "\n" << payload;
                }
            }
}

const std::string kDbHead = std::string("CR01") + "000000300042" + "000000456" + "00000000" + "6327" + "0001" + "0101" +
                            "SNN" + "0000077" + std::string(15, '0');

}  // namespace

TEST(SymbolReading, ReadsBackEveryPrintedPage)
{
    std::size_t pages = 0;
    const auto examples = nimbara::testing::example_guias();
    ASSERT_FALSE(examples.empty());
    expect_round_trip(examples, pages);
    expect_round_trip(nimbara::testing::random_guias(150, 27), pages);
    EXPECT_GT(pages, 300u);
}

TEST(SymbolReading, DocumentedExample)
{
    const auto p = read_symbol_payload(kDbHead + "06" + "01C0100005000003000220010300000");
    EXPECT_EQ(p.head.edition, SymbolEdition::Database);
    EXPECT_EQ(p.head.contract, "300042");
    EXPECT_EQ(p.head.client, "456");
    EXPECT_EQ(p.head.day_code, "6327");
    EXPECT_EQ(p.head.request_number, "1");
    EXPECT_EQ(p.head.payment, "1");
    EXPECT_EQ(p.head.credential_number, "77");
    EXPECT_EQ(p.line_count, 6);
    ASSERT_EQ(p.lines.size(), 1u);
    const auto& l = p.lines[0];
    const std::pair<const char*, const char*> expected[] = {
        {"A_Zona_Taxacao", "01"}, {"B_Produto", "C01"}, {"Escalao", "50"},   {"D_Quantidade", "300"},
        {"E_Velocidade", "0"},    {"Formato", "02"},    {"PreTratamento", "1"}, {"Desconto", "0"},
        {"TaxEsp_Semana", "1"},   {"TaxEsp_Quantidade", "300"}, {"CodAmbitoDist", "0"}};
    for (const auto& [key, value] : expected) EXPECT_EQ(l.value(key), value) << key;
    EXPECT_EQ(l.service_list(), "0");
}

// A C25 line riding in a C03's item: alone it sets the count to 1; beside the line's own services
// the count leaves it out, and the length of the payload tells the readings apart.
TEST(SymbolReading, C25RidingAlong)
{
    const std::string head = "CR" + std::string("050315") + std::string(12, '0') + std::string(9, '0') +
                             std::string(8, '0') + "6327" + "0001" + "0101" + "SNNN" + std::string(7, '0') +
                             std::string(10, '0') + std::string(15, '0');
    const std::string item = std::string("01") + "C03" + "000100" + "0000100" + "021001" + "0100" + "0" +
                             std::string(13, '0') + "00" + "000000000";
    ASSERT_EQ(item.size(), 53u);
    struct Case { const char* what; std::string tail; std::vector<std::string> services; bool c25; };
    const Case cases[] = {
        {"alone", "01" "250000250", {}, true},
        {"with one own service", "01" "250000250" "020000150", {"02"}, true},
        {"with two own services", "02" "250000250" "020000150" "100000000", {"02", "10"}, true},
        {"no C25, one service 02", "01" "020000150", {"02"}, false},
    };
    for (const auto& c : cases) {
        const auto p = read_symbol_payload(head + "01" + item + c.tail);
        ASSERT_EQ(p.lines.size(), c.c25 ? 2u : 1u) << c.what;
        std::vector<std::string> codes;
        for (const auto& s : p.lines[0].services) codes.push_back(s.CodServEsp);
        EXPECT_EQ(codes, c.services) << c.what;
        if (c.c25) {
            EXPECT_TRUE(p.lines[1].rides_along);
            EXPECT_EQ(p.lines[1].value("Escalao"), "250") << c.what;
        }
    }
}

TEST(SymbolReading, RefusesWhatIsNotOurs)
{
    const std::string item = "01C0100005000003000220010300000";
    struct Case { const char* what; std::string text; std::size_t position; };
    const Case cases[] = {
        {"empty", "", 1},
        {"foreign text", "HELLO WORLD", 1},
        {"letter in the contract", "CR01000000X00042" + kDbHead.substr(16) + "06" + item, 11},
        {"page beyond the pages", kDbHead.substr(0, 41) + "0201" + kDbHead.substr(45) + "06" + item, 42},
        {"no pages", kDbHead.substr(0, 41) + "0100" + kDbHead.substr(45) + "06" + item, 44},
        {"payment flag not S or N", kDbHead.substr(0, 45) + "X" + kDbHead.substr(46) + "06" + item, 46},
        {"both payments", kDbHead.substr(0, 45) + "SS" + kDbHead.substr(47) + "06" + item, 46},
        {"closing zeros", kDbHead.substr(0, 69) + "1" + "06" + item, 56},
        {"cut inside an item", kDbHead + "06" + item.substr(0, 20), 93},
        {"service cut short", kDbHead + "06" + item.substr(0, 29) + "01" + "0200", 108},
        {"pre-treatment blank for C01", kDbHead + "06" + item.substr(0, 20) + " " + item.substr(21), 93},
        {"more items than the line count", kDbHead + "01" + item + item, 71},
        {"headless head cut short", "CR050315000", 12},
        {"neither CR nor OP", "RC050315" + std::string(77, '0') + "00", 1},
    };
    for (const auto& c : cases) {
        try {
            read_symbol_payload(c.text);
            ADD_FAILURE() << c.what << ": read";
        } catch (const SymbolPayloadError& e) {
            EXPECT_EQ(e.position(), c.position) << c.what << ": " << e.what();
        }
    }
}

TEST(SymbolPages, PutsGuiasTogether)
{
    const auto guias = nimbara::testing::random_guias(40, 5);
    std::vector<std::string> two_pages, other;
    for (const auto& g : guias) {
        auto pages = nimbara::testing::page_payloads(g.arrays, Edition::Array);
        if (pages.size() >= 2 && two_pages.empty()) two_pages = pages;
        else if (pages.size() == 1 && other.empty()) other = pages;
    }
    ASSERT_GE(two_pages.size(), 2u);
    ASSERT_EQ(other.size(), 1u);
    const int n = static_cast<int>(two_pages.size());

    // Pages out of order and interleaved with another Guia, the last page scanned twice.
    std::vector<FoundSymbol> found;
    for (int i = n - 1; i >= 0; --i) found.push_back({"scan.pdf:" + std::to_string(n - i), two_pages[static_cast<std::size_t>(i)]});
    found.insert(found.begin() + 1, {"other.png", other[0]});
    found.push_back({"again.png", two_pages.back()});
    found.push_back({"noise.png", "NOT A GUIA"});
    const AssembledScan scan = assemble_guias(found);
    ASSERT_EQ(scan.guias.size(), 2u);
    ASSERT_EQ(scan.unread.size(), 1u);
    EXPECT_EQ(scan.unread[0].where, "noise.png");
    const AssembledGuia& g = scan.guias[0];
    EXPECT_TRUE(g.complete());
    EXPECT_EQ(g.repeated, std::vector<int>{n});
    EXPECT_EQ(g.page_sources.front(), "scan.pdf:" + std::to_string(n));
    std::size_t lines = 0;
    for (const auto& p : two_pages) lines += read_symbol_payload(p).lines.size();
    EXPECT_EQ(g.lines.size(), lines);
    EXPECT_TRUE(scan.guias[1].complete());

    // A page missing, and a page whose two scans disagree.
    found = {{"a", two_pages[0]}};
    // Another quantity on the first line: the head stays, the symbol differs.
    std::string altered = two_pages[0];
    char& digit = altered[85 + 2 + 11];
    digit = digit == '1' ? '2' : '1';
    found.push_back({"b", altered});
    const AssembledGuia broken = assemble_guias(found).guias.at(0);
    EXPECT_FALSE(broken.complete());
    EXPECT_EQ(broken.conflicting, std::vector<int>{1});
    EXPECT_EQ(broken.missing.size(), static_cast<std::size_t>(n - 1));
}
