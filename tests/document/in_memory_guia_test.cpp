#include <gtest/gtest.h>

#include <optional>

#include "nimbara/GlobalXML.hpp"
#include "nimbara/cls_ValProdutosA.hpp"

using nimbara::Cell;
using nimbara::cls_ValProdutosA;
namespace guia = nimbara::guia;
namespace cab = nimbara::cab;

namespace {

// A product line whose every argument names its own place in the call, but for the fields that
// steer the pre-treatment.
cls_ValProdutosA::FillAnswer add_line(cls_ValProdutosA& g, std::string_view zone, std::string_view product,
                                      std::string_view pre)
{
    return g.PreencheProduto(zone, product, "a3", "a4", "a5", "a6", "a7", "a8", "a9", pre, "a11", "a12", "a13", "a14",
                             "a15", "a16", "a17", "a18", "a19", "a20");
}

std::int32_t fill_header(cls_ValProdutosA& g, std::string_view nome, std::string_view obs)
{
    return g.PreencheCabecalho("1", "2", "3", "4", "5", nome, "7", "8", "9", "10", obs, "12", "13", "14", "15", "16",
                               "17", "18", "19", "20");
}

}  // namespace

TEST(InMemoryGuia, PreTreatmentIsNormalisedBeforeTheLineIsStored)
{
    struct Case { std::string_view zone, product, pre; bool added; Cell stored; };
    const Case cases[] = {
        {"01", "C01", "0", true, std::nullopt},
        {"01", "C01", "0.0", true, std::nullopt},
        {"01", "C01", "1", true, "1"},
        {"01", "C01", " 2 ", true, "2"},
        {"01", "P01", "0", true, "0"},
        {"01", "P01", "9", true, "0"},
        {"02", "P01", "0", true, std::nullopt},
        {"01", "C01", "", false, {}},
        {"01", "C01", "x", false, {}},
        {"01", "P01", "x", false, {}},
    };
    for (const auto& c : cases) {
        cls_ValProdutosA g;
        const auto answer = add_line(g, c.zone, c.product, c.pre);
        const std::string what = std::string(c.product) + " " + std::string(c.zone) + " \"" + std::string(c.pre) + '"';
        if (!c.added) {
            EXPECT_EQ(answer, -1) << what;
            EXPECT_TRUE(g.arrGuia().empty()) << what;
            continue;
        }
        EXPECT_EQ(answer, std::nullopt) << what;
        EXPECT_EQ(g.arrGuia().at(guia::PreTratamento, 0), c.stored) << what;
    }
}

TEST(InMemoryGuia, ArgumentsLandInTheirFields)
{
    cls_ValProdutosA g;
    ASSERT_EQ(add_line(g, "a1", "a2", "a10"), -1) << "a pre-treatment that is no number drops the line";
    ASSERT_EQ(add_line(g, "a1", "a2", "1"), std::nullopt);
    ASSERT_EQ(add_line(g, " 05 ", "C01", "1"), std::nullopt);
    const auto& t = g.arrGuia();
    ASSERT_EQ(t.row_count(), 2);
    // Field by field, the place of the argument that fills it (0: none).
    const int place[guia::kFields] = {1, 2, 3, 4, 5, 0, 9, 10, 11, 7, 6, 8, 15, 14, 13, 12, 18, 17, 16, 19, 20};
    for (const auto field : nimbara::guia::Table::fields()) {
        const int place_of = place[static_cast<int>(field)];
        if (place_of == 0) {
            EXPECT_EQ(t.at(field, 0), std::nullopt) << static_cast<int>(field);
        } else if (field != guia::PreTratamento) {
            std::string expected = std::to_string(place_of);
            expected.insert(0, 1, 'a');  // built in place: GCC 12 misreads "a" + to_string as overlapping
            EXPECT_EQ(t.at(field, 0), expected) << static_cast<int>(field);
        }
    }
    EXPECT_EQ(t.at(guia::A_Zona_Taxacao, 1), "05") << "values are trimmed";
}

TEST(InMemoryGuia, EmptyCellsBlanksAndHeaderOverwrites)
{
    cls_ValProdutosA g;
    EXPECT_EQ(g.PreencheServico("1", "02", "150"), std::nullopt) << "a service before any line is accepted";
    EXPECT_EQ(g.PreencheServico("1", "   ", ""), std::nullopt);
    EXPECT_EQ(g.arrServEsp().at(nimbara::serv::CodServEsp, 1), "") << "blanks are stored as the empty text";
    EXPECT_EQ(g.arrServEsp().at(nimbara::serv::Valor, 1), std::nullopt) << "the empty text leaves the cell empty";

    EXPECT_EQ(fill_header(g, "Ana", "first"), 0);
    EXPECT_EQ(fill_header(g, "", "second"), 0);
    const auto& h = g.arrCabecalho();
    EXPECT_EQ(h.row_count(), 2);
    EXPECT_EQ(h.at(cab::Nome, 0), "Ana") << "an empty argument keeps the stored value";
    EXPECT_EQ(h.at(cab::Obs, 0), "second");
    EXPECT_EQ(h.at(cab::Unused20, 0), std::nullopt);
    EXPECT_EQ(h.at(cab::Unused21, 0), std::nullopt);
    EXPECT_EQ(h.at(cab::Nome, 1), std::nullopt);

    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(g.PreencheParametros(std::to_string(i), "", "", "", "", "", "", "", "", "", "", ""), std::nullopt);
    EXPECT_EQ(g.arrParametros().row_count(), 2) << "parameters grow per call";
    EXPECT_EQ(g.arrParametros().at(nimbara::param::VCod2DFonteSize, 0), "0");
}

TEST(GetArrServEspByLinha, PicksTheLinesServicesInOrder)
{
    cls_ValProdutosA g;
    g.PreencheServico("1", "02", "150");
    g.PreencheServico("2", "06", "");
    g.PreencheServico("01", "04", "30");
    g.PreencheServico("x", "07", "");
    g.PreencheServico("", "10", "");

    const auto one = nimbara::GlobalXML::getArrServEspByLinha(g.arrServEsp(), 1);
    ASSERT_EQ(one.row_count(), 2);
    EXPECT_EQ(one.at(nimbara::serv::CodServEsp, 0), "02");
    EXPECT_EQ(one.at(nimbara::serv::CodServEsp, 1), "04");
    EXPECT_EQ(one.at(nimbara::serv::Valor, 1), "30");
    EXPECT_EQ(one.at(nimbara::serv::Valor, 0), "150");

    EXPECT_TRUE(nimbara::GlobalXML::getArrServEspByLinha(g.arrServEsp(), 3).empty());
    EXPECT_EQ(nimbara::GlobalXML::getArrServEspByLinha(g.arrServEsp(), 0).row_count(), 1)
        << "an unfilled line number reads as 0";
}
