#include <gtest/gtest.h>

#include <functional>

#include "validation/possible_values.hpp"

namespace nv = nimbara::validation;

namespace {

using Values = std::vector<nv::CodeLabel>;

struct Case {
    const char* what;
    std::function<nv::PossibleValues()> call;
    nv::PossibleValues expected;
};

const nv::CodeLabel kZero{"0", "Vazio"};
const nv::CodeLabel kNotSelected{"0", "Não Seleccionar"};

// The weight steps of C01 and the services of P14 are pinned by the validation report's listings.
const std::vector<Case>& cases()
{
    static const std::vector<Case> c = {
        {"unknown product: no zone", [] { return nv::GetPossibleValues_ZonaTaxacao("X99"); }, Values{}},
        {"product in small letters: no zone", [] { return nv::GetPossibleValues_ZonaTaxacao("c31"); }, Values{}},
        {"three rules of C31 share one zone row", [] { return nv::GetPossibleValues_ZonaTaxacao("C31"); },
         Values{{"01", "Continente, Açores e Madeira"}}},
        {"rows of rules 101 and 137 in zone 42 are not in the document", [] { return nv::GetPossibleValues_Peso("P01", "42"); },
         Values{{"0", "50"}}},
        {"speed label as stored, empty for 0", [] { return nv::GetPossibleValues_Velocidade("C01", "01", 50); },
         Values{{"0", ""}}},
        {"the minimum is outside the range", [] { return nv::GetPossibleValues_Velocidade("C01", "01", 0); }, Values{}},
        {"above every maximum", [] { return nv::GetPossibleValues_Velocidade("C02", "03", 40000); }, Values{}},
        {"C10 is tested on its minimum alone", [] { return nv::GetPossibleValues_Velocidade("C10", "03", 40000); },
         Values{{"02", "Normal"}, {"03", "Económico - Superficie"}}},
        {"format 0 reads Vazio", [] { return nv::GetPossibleValues_Formato("C03", "01", "0", 100); }, Values{kZero}},
        {"formats of rule 1", [] { return nv::GetPossibleValues_Formato("C01", "01", "0", 50); },
         Values{{"01", "Normalizado"}, {"02", "Não Normalizado"}, {"03", "Pacote Postal"}}},
        {"a value under three rules comes three times", [] { return nv::GetPossibleValues_Formato("C31", "01", "0", 50); },
         Values{kZero, kZero, kZero}},
        {"pre-treatment never reads TRUE", [] { return nv::GetPossibleValues_PreTratamento("C01", "01", "0", "02", 50); },
         Values{kNotSelected, kNotSelected}},
        {"discounts with their labels", [] { return nv::GetPossibleValues_Desconto("C07", "01", "0", "0", "1", 30); },
         Values{{"01", "Objectos  RSF incluido"}, {"02", "Não"}}},
        {"the scope procedure lists discount codes", [] {
             return nv::GetPossibleValues_AmbitoDistribuicao("C07", "01", "0", "0", "1", 30);
         },
         Values{{"01", ""}, {"02", ""}}},
        {"sampling fails on the shifted document", [] {
             return nv::GetPossibleValues_AmostraDireta("C31", "01", "0", "0", "1", "02", 50);
         },
         nv::PossibleValuesFailed{}},
        {"sampling fails whatever the arguments", [] { return nv::GetPossibleValues_AmostraDireta("", "", "", "", "", "", 0); },
         nv::PossibleValuesFailed{}},
        {"the repeated last row counts twice", [] {
             return nv::GetPossibleValues_ServicosEspeciais("P14", "57", "0", "03", "9", "03", 150);
         },
         Values{kZero, {"02", "Aviso de Recepção"}, {"02", "Aviso de Recepção"}}},
    };
    return c;
}

}  // namespace

TEST(PossibleValues, AnswersOfTheNineProcedures)
{
    for (const auto& c : cases()) EXPECT_EQ(c.call(), c.expected) << c.what;
}
