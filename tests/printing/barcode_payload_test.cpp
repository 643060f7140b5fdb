#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "printing/barcode_payload.hpp"
#include "support/sample_guia.hpp"

using namespace nimbara;
using namespace nimbara::printing;
using nimbara::testing::add_line;
using nimbara::testing::LineShape;
using nimbara::testing::sample_guia;

namespace {

// The head of the sample Guia, page 1 of 1, as the counter reads it (85 characters).
const std::string kHead = std::string("CR") + "050315" + "000000000123" + "000000456" + "00000000" + "5123" + "0007" +
                          "0101" + "SNNN" + "0000077" + "0000000000" + "000000000000000";

std::string head_with(cab::Field field, std::optional<std::string> value)
{
    auto g = sample_guia();
    g.arrCabecalho.set(field, 0, std::move(value));
    return codigo_cabecalho(g.arrCabecalho, 1, 1);
}

}  // namespace

TEST(BarcodeHead, FieldsAtTheirPlaces)
{
    struct Case { const char* what; std::string head; std::string expected; };
    const Case cases[] = {
        {"sample, with the two fields the finish cuts off", head_with(cab::Nome, "x"), kHead + "S" + "000000000"},
        {"empty payment counts as 0", head_with(cab::Pagamento, std::nullopt), kHead.substr(0, 49) + "NSNN" + kHead.substr(53) + "S000000000"},
        {"payment 2, credentialed", [] { auto g = sample_guia(); g.arrCabecalho.set(cab::Pagamento, 0, std::string("2"));
                                          g.arrCabecalho.set(cab::JppCredenciado, 0, std::string("1"));
                                          return codigo_cabecalho(g.arrCabecalho, 1, 1); }(),
         kHead.substr(0, 49) + "NNSS" + kHead.substr(53) + "S000000000"},
        {"access type 2", head_with(cab::TipoAcesso, "2"), "OP" + kHead.substr(2) + "S000000000"},
        {"access type 3 leaves the head short", head_with(cab::TipoAcesso, "3"), kHead.substr(2) + "S000000000"},
        {"third party given", head_with(cab::CodTerceiro, "4321"), kHead.substr(0, 29) + "00004321" + kHead.substr(37) + "S000000000"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.head, c.expected) << c.what;
}

// The everyday line's item is pinned by the page driver's symbols; here the fields it leaves at zero.
TEST(BarcodeItem, OneItemPerLine)
{
    auto g = sample_guia();
    add_line(g, {});
    add_line(g, {.product = "C07", .quantity = "", .weight = "1000", .format = "07", .campaign = "CAMP1"});
    g.arrGuia.set(guia::refClie, 1, std::string("123456789"));
    g.arrGuia.set(guia::caracte, 1, std::string("7"));
    const std::string services = item_servico("2", "150") + item_servico("10", "0");
    EXPECT_EQ(services, "020000150100000000");
    EXPECT_EQ(item_linha(g.arrGuia, 1, services, 2),
              std::string("01") + "C07" + "001000" + "0000000" + "071001" + "0100" + "0" + "00000000CAMP1" + "0" + "7" +
                  "123456789" + "02" + services);
}

TEST(BarcodeItem, ValuesThatDoNotFitFail)
{
    struct Case { const char* what; guia::Field field; std::string value; };
    const Case cases[] = {
        {"quantity of eight digits", guia::D_Quantidade, "12345678"},
        {"one-digit field of 10", guia::Desconto, "10"},
        {"one-digit field below 0", guia::E_Velocidade, "-1"},
        {"one-digit field that is no number", guia::Formato, "x"},
        {"client's reference of ten", guia::refClie, "1234567890"},
    };
    for (const auto& c : cases) {
        auto g = sample_guia();
        add_line(g);
        g.arrGuia.set(c.field, 0, c.value);
        EXPECT_ANY_THROW(item_linha(g.arrGuia, 0, "", 0)) << c.what;
    }
    EXPECT_THROW(pad_zero("123", 2), std::out_of_range);
    EXPECT_THROW(codigo_cabecalho(cab::Table{}, 1, 1), std::invalid_argument) << "no header";
}
