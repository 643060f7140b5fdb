#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "nimbara/cls_Impressao.hpp"
#include "nimbara/cls_ImpressaoA.hpp"
#include "printed_text.hpp"

using nimbara::cls_Impressao;
using nimbara::cls_ImpressaoA;
using nimbara::form_impressao;
using nimbara::ImpressaoComum;
using nimbara::printing::RecordingSurface;
using namespace printing_test;

namespace {

RecordingSurface form_of(ImpressaoComum& p, int copy = 0, const std::string& date = "2024-03-15")
{
    RecordingSurface s;
    p.PrintaParteFixaGuiaExp(s, form_impressao(), copy, date);
    return s;
}

std::vector<std::string> pictures(const RecordingSurface& s)
{
    std::vector<std::string> out;
    for (const auto& c : s.calls_of("PaintPicture")) out.push_back(c.text);
    return out;
}

bool has_box(const RecordingSurface& s, std::vector<long> corners)
{
    const auto all = boxes(s);
    return std::find(all.begin(), all.end(), corners) != all.end();
}

}  // namespace

TEST(FixedForm, FrameAndPicturesStartAtTheOriginAndOffsetsMoveEverything)
{
    cls_ImpressaoA a;
    const auto s = form_of(a);
    EXPECT_EQ(s.calls().front().op, "setScaleMode");
    EXPECT_TRUE(has_box(s, {0, 0, 14855, 19})) << "top side of the 262 x 32.1 frame";
    EXPECT_TRUE(has_box(s, {0, 0, 19, 1820})) << "left side";
    const auto at = [&](const std::string& name) {
        for (const auto& c : s.calls_of("PaintPicture"))
            if (c.text == name) return std::pair{mm(c.numbers[0]), mm(c.numbers[1])};
        return std::pair{-1.0, -1.0};
    };
    EXPECT_EQ(at("Pic_barra_ProcessadoComp"), (std::pair{0.0, 126.5}));
    EXPECT_EQ(at("Pic_Barra_A1"), (std::pair{0.0, 41.5}));

    a.SetPageOffsets(5, 3);
    const auto moved = form_of(a);
    const auto t = find_text(moved, "Código de Terceiro");
    ASSERT_TRUE(t);
    EXPECT_EQ(std::pair(t->x_mm, t->y_mm), std::pair(6.0, 35.5));
    // The offset is added before truncation: 5 + 0 mm is 283.5 twips, cut to 283.
    EXPECT_TRUE(has_box(moved, {283, 170, 15138, 189}));
}

TEST(FixedForm, CopyMarkAndVersion)
{
    struct Case { bool array; int copy; const char* mark; double mark_y, version_x, version_y; bool version_bold; };
    const Case cases[] = {
        {true, 0, "Original", 183, 5, 183, false},    {true, 1, "Duplicado 1", 183, 5, 183, false},
        {true, 2, "Duplicado 2", 183, 5, 183, false}, {false, 0, "Original", 182, 100, 182, true},
        {false, 12, "Duplicado 12", 182, 100, 182, true},
    };
    for (const auto& c : cases) {
        cls_ImpressaoA a;
        cls_Impressao d;
        const auto s = c.array ? form_of(a, c.copy) : form_of(d, c.copy);
        const auto mark = find_text(s, c.mark);
        ASSERT_TRUE(mark) << c.mark;
        EXPECT_EQ(mark->x_mm, 150);
        EXPECT_EQ(mark->y_mm, c.mark_y);
        EXPECT_TRUE(mark->bold);
        const auto version = find_text(s, "Versão 5.3.15");
        ASSERT_TRUE(version);
        EXPECT_EQ(std::pair(version->x_mm, version->y_mm), std::pair(c.version_x, c.version_y)) << c.array;
        EXPECT_EQ(version->bold, c.version_bold);
        EXPECT_EQ(version->font, "Arial");
        EXPECT_EQ(version->size, 7);
    }
}

// Each difference between the editions' forms, as text placed or left out.
TEST(FixedForm, EditionsDiffer)
{
    struct Expected { const char* text; double x, y; bool bold; };
    struct Case { bool array; std::vector<Expected> present; std::vector<const char*> absent; };
    const Case cases[] = {
        {true,
         {{"OBJETOS POSTAIS", 40, 6.5, true},
          {"Pré-Ativo", 28, 26, true},
          {"Crédito", 51, 26, true},
          {"JPP Credenciado", 85.5, 26, true},
          {"Observações", 195, 114.5, false},
          {"Por", 193.5, 151.5, false},
          {"Doc. Nº", 190, 159, false},
          {"Nº de  Páginas", 190, 167, false},
          {"Página Nº", 190, 175, false},
          {"Pedido / Compromisso", 190, 183, false},
          {"Guia Nimbara ", 40, 11.5, true}},
         {"OBJECTOS POSTAIS", "Diferido", "Conta Corrente ", "Nº de Requisição", ","}},
        {false,
         {{"OBJECTOS POSTAIS", 40, 6.5, true},
          {"Diferido", 28, 26, true},
          {"JPP Credenciados", 49, 26, true},
          {"Conta Corrente ", 85.5, 26, true},
          {"Observações", 195, 114.5, true},
          {"Por", 193.5, 151.5, true},
          {"Doc. Nº", 210, 160, true},
          {"Página Nº", 210, 170, true},
          {"Nº de  Páginas", 210, 180, true},
          {"Nº de Requisição", 186.5, 16, true}},
         {"OBJETOS POSTAIS", "Pré-Ativo", "Crédito", "Pedido / Compromisso"}},
    };
    for (const auto& c : cases) {
        cls_ImpressaoA a;
        cls_Impressao d;
        const auto s = c.array ? form_of(a) : form_of(d);
        const auto all = printed_texts(s);
        for (const auto& e : c.present) {
            // "Observações" is printed twice, under the remarks frame too; the one asked for is at (x, y).
            const auto it = std::find_if(all.begin(), all.end(),
                                         [&](const PrintedText& p) { return p.text == e.text && p.x_mm == e.x && p.y_mm == e.y; });
            ASSERT_NE(it, all.end()) << e.text << " in edition " << c.array;
            EXPECT_EQ(it->bold, e.bold) << e.text;
        }
        for (const auto* t : c.absent) EXPECT_FALSE(find_text(s, t)) << t << " in edition " << c.array;
    }
}

TEST(FixedForm, DatabaseEditionPlacesThreeLabelsAfterTheDate)
{
    cls_Impressao d;
    const auto s = form_of(d);
    EXPECT_LT(index_of(s, "Conta Corrente "), index_of(s, "Data da Requisição"));
    EXPECT_GT(index_of(s, "a Pronto"), index_of(s, "2024-03-15"));
    cls_ImpressaoA a;
    const auto sa = form_of(a);
    EXPECT_LT(index_of(sa, "a Pronto"), index_of(sa, "Data da Requisição"));
}

TEST(FixedForm, PaymentBoxesRowsAndStrips)
{
    cls_ImpressaoA a;
    cls_Impressao d;
    const auto sa = form_of(a), sd = form_of(d);
    // The third payment box: x 45 in the array edition, 42 in the database edition (y 26 is 1474).
    EXPECT_TRUE(has_box(sa, {2551, 1474, 2777, 1479}));
    EXPECT_TRUE(has_box(sd, {2381, 1474, 2607, 1479}));
    EXPECT_FALSE(has_box(sa, {2381, 1474, 2607, 1479}));

    // Rows: the array edition rules each row across 255 mm; the database edition draws cells
    // with a decimal comma in the amount.
    const auto row_rules = [](const RecordingSurface& s) {
        const auto all = boxes(s);
        return std::count_if(all.begin(), all.end(), [](const auto& b) { return b[2] - b[0] == 14458; }) / 2;
    };
    EXPECT_EQ(row_rules(sa), 12);
    EXPECT_EQ(row_rules(sd), 0);
    const auto commas = printed_texts(sd);
    EXPECT_EQ(std::count_if(commas.begin(), commas.end(), [](const PrintedText& p) { return p.text == ","; }), 12);
    const auto first_comma = find_text(sd, ",");
    EXPECT_EQ(std::pair(first_comma->x_mm, first_comma->y_mm), std::pair(199.5, 45.1));
    EXPECT_EQ(first_comma->size, 8);

    const auto pa = pictures(sa), pd = pictures(sd);
    EXPECT_EQ(std::count_if(pa.begin(), pa.end(), [](const std::string& n) { return n.find("arra") != std::string::npos; }), 17);
    EXPECT_EQ(std::count_if(pd.begin(), pd.end(), [](const std::string& n) { return n.find("arra") != std::string::npos; }), 15);
    EXPECT_EQ(std::count(pd.begin(), pd.end(), "pic_barraO1"), 0);
    EXPECT_EQ(pa.back(), "pic_barraP1");
    EXPECT_EQ(pd.back(), "pic_barraN1");
}

TEST(FixedForm, EmptyDateChangesNothingElse)
{
    cls_ImpressaoA a;
    auto with = form_of(a, 0, "2024-03-15").calls(), without = form_of(a, 0, "").calls();
    ASSERT_EQ(with.size(), without.size());
    int differences = 0;
    for (std::size_t i = 0; i < with.size(); ++i)
        if (with[i].op != without[i].op || with[i].numbers != without[i].numbers || with[i].text != without[i].text) {
            ++differences;
            EXPECT_EQ(with[i].text, "2024-03-15");
            EXPECT_EQ(without[i].text, "");
        }
    EXPECT_EQ(differences, 1);
}
