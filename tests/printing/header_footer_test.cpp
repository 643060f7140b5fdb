#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "foundation/chars.hpp"
#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "printed_text.hpp"
#include "support/temp_folder.hpp"

using nimbara::cls_Impressao;
using nimbara::cls_ImpressaoA;
using nimbara::ImpressaoComum;
using nimbara::printing::RecordingSurface;
using namespace printing_test;

namespace {

struct Header {
    std::string contract = "123456789", morada = "Rua Direita 1", postal = "1000-001 Lisboa", obs, jpp = "False", payment = "9";
};

RecordingSurface header_of(ImpressaoComum& p, const Header& h)
{
    RecordingSurface s;
    p.ImprimeHeaderFooter(s, "T1", "456", h.contract, "PP9", "Cliente Lda", "501234567", h.morada, h.postal, h.obs,
                          h.jpp, h.payment);
    return s;
}

// Logs of these tests go to a file of their own.
template <class P>
P quiet()
{
    P p;
    p.set_log_path(std::filesystem::temp_directory_path() / ("nimbara-hf-" + std::to_string(::getpid()) + ".log"));
    return p;
}

std::vector<std::string> texts_at(const RecordingSurface& s, double x, double y)
{
    std::vector<std::string> out;
    for (const auto& t : printed_texts(s))
        if (t.x_mm == x && t.y_mm == y) out.push_back(t.text);
    return out;
}

}  // namespace

TEST(HeaderFooter, PlaceholderContractsStayEmptyInTheArrayEditionOnly)
{
    struct Case { const char* contract; bool array; bool printed; };
    const Case cases[] = {{"888888888", true, false}, {"777777777", true, false}, {" 888888888.0 ", true, false},
                          {"123", true, true},        {"888888888", false, true}, {"777777777", false, true}};
    for (const auto& c : cases) {
        auto a = quiet<cls_ImpressaoA>();
        auto d = quiet<cls_Impressao>();
        Header h;
        h.contract = c.contract;
        const auto s = c.array ? header_of(a, h) : header_of(d, h);
        EXPECT_EQ(texts_at(s, 62, 36.5).size(), c.printed ? 1u : 0u) << c.contract << " " << c.array;
        EXPECT_EQ(texts_at(s, 230, 36.5), std::vector<std::string>{"501234567"}) << "the rest is printed";
    }
}

TEST(HeaderFooter, NonNumericContractStopsTheArrayEditionBeforeTheRemarks)
{
    auto a = quiet<cls_ImpressaoA>();
    Header h;
    h.contract = "ABC";
    h.obs = "remarks";
    const auto s = header_of(a, h);
    EXPECT_FALSE(find_text(s, "remarks"));
    EXPECT_TRUE(find_text(s, "T1")) << "the fields before it are printed";
    EXPECT_NE(nimbara::testing::read_file(a.log_path()).find("ImprimeHeaderFooter-Erro:Type mismatch"), std::string::npos);
    std::filesystem::remove(a.log_path());
}

TEST(HeaderFooter, AddressLines)
{
    auto a = quiet<cls_ImpressaoA>();
    Header h;
    EXPECT_EQ(texts_at(header_of(a, h), 7.5, 130.1), std::vector<std::string>{" 1000-001 Lisboa"});
    h.morada = std::string(80, 'a') + "ééé" + "bc";  // characters, not bytes, are counted
    const auto s = header_of(a, h);
    EXPECT_EQ(texts_at(s, 7.5, 125.1), std::vector<std::string>{std::string(80, 'a') + "éé"});
    EXPECT_EQ(texts_at(s, 7.5, 130.1), std::vector<std::string>{"ébc 1000-001 Lisboa"});
}

TEST(HeaderFooter, PaymentMarks)
{
    struct Case {
        bool array;
        const char *jpp, *payment;
        std::vector<double> marks;  // x of each "X" at y 26.2
    };
    const Case cases[] = {
        {true, "False", "0", {46}},     {true, "True", "1", {81.1, 3}}, {true, "0", "2", {23}},
        {true, "-1", "3", {81.1}},      {false, "False", "0", {}},      {false, "true", "1", {42.9, 3}},
        {false, "False", "2", {23}},    {false, "False", "3", {}},
    };
    for (const auto& c : cases) {
        auto a = quiet<cls_ImpressaoA>();
        auto d = quiet<cls_Impressao>();
        Header h;
        h.jpp = c.jpp;
        h.payment = c.payment;
        const auto s = c.array ? header_of(a, h) : header_of(d, h);
        std::vector<double> marks;
        for (const auto& t : printed_texts(s))
            if (t.text == "X") {
                EXPECT_EQ(t.y_mm, 26.2);
                marks.push_back(t.x_mm);
            }
        EXPECT_EQ(marks, c.marks) << c.array << " " << c.jpp << " " << c.payment;
    }
}

TEST(HeaderFooter, MyReplaceSpacePadsLinesToTheirWidth)
{
    const std::string line130(130, 'x');
    struct Case { std::string in; std::string out; };
    const Case cases[] = {
        {"AB\r\nCD", "AB" + std::string(128, ' ') + "CD"},
        {line130 + "\r\nCD", line130 + std::string(130, ' ') + "CD"},
        {"\r\nCD", std::string(130, ' ') + "CD"},
        {"çã\rZ", "çã" + std::string(128, ' ') + "Z"},
        {"A\nB", "AB"},
    };
    for (const auto& c : cases) EXPECT_EQ(cls_ImpressaoA::MyReplaceSpace(c.in, 130), c.out) << c.in;
}

// The five lines of the remarks are fixed slices, each a font line below the one before.
TEST(HeaderFooter, RemarksSlices)
{
    std::string remarks;
    for (int i = 0; i < 700; ++i) remarks += static_cast<char>('A' + i % 26);
    struct Case { const char* what; std::vector<std::pair<int, int>> slices; };
    const Case cases[] = {
        {"array, header", {{1, 130}, {131, 130}, {262, 130}, {393, 130}, {524, 130}}},
        {"array, reprint", {{1, 130}, {131, 120}, {250, 130}, {393, 130}, {524, 130}}},
        {"database, header", {{1, 70}, {71, 70}, {142, 70}, {213, 50}, {222, 50}}},
    };
    for (const auto& c : cases) {
        auto a = quiet<cls_ImpressaoA>();
        auto d = quiet<cls_Impressao>();
        Header h;
        h.obs = remarks;
        RecordingSurface s;
        if (std::string(c.what) == "array, reprint")
            a.ReimprimirObservacoes(s, remarks);
        else
            s = std::string(c.what) == "array, header" ? header_of(a, h) : header_of(d, h);
        const auto all = printed_texts(s);
        const auto first = std::find_if(all.begin(), all.end(), [](const PrintedText& t) { return t.y_mm == 157.5; });
        ASSERT_NE(first, all.end()) << c.what;
        for (std::size_t i = 0; i < 5; ++i) {
            const auto& line = *(first + static_cast<std::ptrdiff_t>(i));
            EXPECT_EQ(line.text, remarks.substr(c.slices[i].first - 1, c.slices[i].second)) << c.what << " line " << i + 1;
            EXPECT_EQ(line.x_mm, 6.5);
            EXPECT_NEAR(line.y_mm, 157.5 + i * s.line_height() / 56.7, 0.01) << c.what << " line " << i + 1;
            EXPECT_EQ(line.font, "Times New Roman");
            EXPECT_EQ(line.size, 8);
        }
    }
}

TEST(HeaderFooter, PageNumbersAndTheTotalOnTheLastPageOnly)
{
    struct Case {
        bool array;
        int pag, total;
        std::vector<std::tuple<std::string, double, double>> numbers;
        bool total_row;
    };
    const Case cases[] = {
        {true, 1, 1, {{"D7", 230, 159}, {" 1", 230, 167}, {" 1", 230, 175}, {"C9", 230, 183}}, true},
        {true, 1, 2, {{"D7", 230, 159}, {" 2", 230, 167}, {" 1", 230, 175}, {"C9", 230, 183}}, false},
        {false, 3, 2, {{"D7", 236, 160.7}, {" 3", 236, 170.7}, {" 2", 236, 180.5}}, false},
    };
    for (const auto& c : cases) {
        auto a = quiet<cls_ImpressaoA>();
        auto d = quiet<cls_Impressao>();
        RecordingSurface s;
        if (c.array)
            a.Imprime_NumPaginas("D7", s, c.pag, c.total, "C9");
        else
            d.Imprime_NumPaginas("D7", s, c.pag, c.total);
        const auto all = printed_texts(s);
        ASSERT_GE(all.size(), c.numbers.size());
        for (std::size_t i = 0; i < c.numbers.size(); ++i) {
            EXPECT_EQ(std::tuple(all[i].text, all[i].x_mm, all[i].y_mm), c.numbers[i]) << c.array << " " << i;
            EXPECT_TRUE(all[i].bold);
            EXPECT_EQ(all[i].size, 9);
        }
        const auto total = find_text(s, "Total : ");
        EXPECT_EQ(total.has_value(), c.total_row) << c.array << " " << c.pag;
        EXPECT_EQ(s.calls_of("Line").size(), c.total_row ? 9u * 4 : 0u);
        if (total) {
            EXPECT_EQ(std::pair(total->x_mm, total->y_mm), std::pair(61.4, 115.0));
            EXPECT_EQ(total->font, "Arial");
            EXPECT_TRUE(total->bold) << "boldness stands as the numbers left it";
        }
    }
}
