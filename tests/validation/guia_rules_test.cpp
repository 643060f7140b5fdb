#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "validation/guia_rules.hpp"

using nimbara::Cell;
namespace guia = nimbara::guia;
namespace v = nimbara::validation;

namespace {

struct L {
    const char* product;
    const char* zone;
    Cell quantity;
    const char* speed = "0";
    const char* scope = "0";
    const char* division = "";
};

guia::Table lines(const std::vector<L>& ls)
{
    guia::Table t;
    for (const auto& l : ls) {
        const int row = t.add_row();
        t.set(guia::B_Produto, row, l.product);
        t.set(guia::A_Zona_Taxacao, row, l.zone);
        t.set(guia::D_Quantidade, row, l.quantity);
        t.set(guia::E_Velocidade, row, l.speed);
        t.set(guia::CodAmbitoDist, row, l.scope);
        if (*l.division) t.set(guia::DivisaoRemetente, row, l.division);
    }
    return t;
}

nimbara::cab::Table header(Cell access_type)
{
    nimbara::cab::Table t;
    t.ensure_rows(2);
    t.set(nimbara::cab::TipoAcesso, 0, std::move(access_type));
    return t;
}

}  // namespace

TEST(DoValidaGuia, ChecksInOrderFirstFailureWinsWithItsText)
{
    struct Case { const char* what; std::vector<L> ls; Cell access; int expected; const char* text = nullptr; };
    const Case cases[] = {
        {"no lines", {}, "0", 0},
        {"C03 abroad only has no minimum", {{"C03", "05", "10"}}, "0", 0},
        {"C03 summed over both zones reaches 250", {{"C03", "01", "10"}, {"C03", "05", "240"}}, "0", 0},
        {"C03 summed over both zones 249", {{"C03", "01", "10"}, {"C03", "05", "239"}}, "0", -1},
        {"C07 national first", {{"C07", "01", "60"}, {"C07", "02", "60"}}, "0", -2,
         "Erro Minimo de 100 Objectos, para correio nacional"},
        {"C07 international", {{"C07", "01", "100"}, {"C07", "42", "99"}}, "0", -13},
        {"C07 in a zone of neither list", {{"C07", "03", "1"}}, "0", 0},
        {"C21 at its minimum", {{"C21", "01", "100"}}, "0", 0},
        {"C21 before C42", {{"C42", "01", "5"}, {"C21", "01", "5"}}, "0", -3},
        {"C22", {{"C22", "01", "249"}}, "0", -4},
        {"C23", {{"C23", "01", "99"}}, "0", -7},
        {"C42", {{"C42", "01", "99"}}, "0", -10},
        {"C43", {{"C43", "01", "99"}}, "0", -11},
        {"C44", {{"C44", "01", "99"}}, "0", -12},
        {"C47", {{"C47", "02", "99"}}, "0", -14},
        {"negative sum passes", {{"C21", "01", "-5"}}, "0", 0},
        {"quantity no number fails the minimum", {{"C21", "01", "x"}}, "0", -3},
        {"empty quantity counts 0", {{"C21", "01", std::nullopt}}, "0", -3},
        {"C25 after C05 alike", {{"C05", "03", "10", "02"}, {"C25", "03", "10", "02"}}, "0", 0},
        {"C25 quantity compares as a number", {{"C05", "03", "10", "02"}, {"C25", "03", "10.0", "02"}}, "0", 0},
        {"C25 other quantity", {{"C05", "03", "10", "02"}, {"C25", "03", "11", "02"}}, "0", -6},
        {"C25 other speed", {{"C50", "03", "10", "02"}, {"C25", "03", "10", "03"}}, "0", -6},
        {"C25 after C01", {{"C01", "03", "10"}, {"C25", "03", "10"}}, "0", -8},
        {"C25 first", {{"C25", "03", "10"}}, "0", -8, "Erro Não Existem Produtos Associados ao C25"},
        {"two C25 in a row", {{"C03", "03", "10"}, {"C25", "03", "10"}, {"C25", "03", "10"}}, "0", -8},
        {"insert check failing passes", {{"C05", "03", "x"}, {"C25", "03", "11"}}, "0", 0},
        {"C25 after C01 with a quantity no number", {{"C01", "03", "10"}, {"C25", "03", "x"}}, "0", -8},
        {"access 2 with C01", {{"C01", "01", "1"}}, "2", -15},
        {"access 2 with P09", {{"P09", "01", "1"}}, "2", 0},
        {"access 1 with P01", {{"P01", "01", "1"}}, "1", -16},
        {"empty access type reads 0", {{"P01", "01", "1"}}, std::nullopt, -16},
        {"access type no number", {{"C01", "01", "1"}}, "x", -15},
        {"access 3 allows all", {{"P01", "01", "1"}, {"C01", "01", "1"}}, "3", 0},
    };
    for (const auto& c : cases) {
        const auto result = v::DoValidaGuia(lines(c.ls), header(c.access));
        EXPECT_EQ(result ? result->number : 0, c.expected) << c.what;
        if (c.text && result) {
            EXPECT_EQ(std::get<std::string>(result->description), c.text) << c.what;
        }
    }
    // Lines without a header cannot tell their access type, which fails the access check.
    const auto no_header = v::DoValidaGuia(lines({{"C01", "01", "1"}}), nimbara::cab::Table{});
    EXPECT_EQ(no_header ? no_header->number : 0, -15);
}

TEST(DoValidaGuia, ChecksNotCalledByTheGuia)
{
    const auto t = lines({{"C31", "01", "60", "0", "02", "1"}, {"C31", "01", "30", "0", "01"}});
    EXPECT_FALSE(v::DoValDMComAmbitoDistribuicao(t, "C31", 100, "02"));
    EXPECT_TRUE(v::DoValDMComAmbitoDistribuicao(t, "C31", 60, "02"));
    EXPECT_TRUE(v::DoValDMComAmbitoDistribuicao(t, "C31", 100, "03")) << "no line of that scope";

    EXPECT_FALSE(v::DoValDivisaoRemetente(t, header("0")));
    EXPECT_TRUE(v::DoValDivisaoRemetente(t, header("1")));
    EXPECT_TRUE(v::DoValDivisaoRemetente(lines({{"C31", "01", "1"}}), header("0")));
}
