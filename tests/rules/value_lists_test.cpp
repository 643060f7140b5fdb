#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "nimbara/GlobalXML.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "support/rule_table_file.hpp"

namespace xml = nimbara::GlobalXML;

namespace {

struct ListRow {
    std::string code, label, remarks, active;
    bool operator==(const ListRow&) const = default;
};

std::vector<ListRow> list_rows(std::string_view text)
{
    std::vector<ListRow> rows;
    for (const auto& item : nimbara::testing::read_items(text)) {
        EXPECT_EQ(item.size(), 4u);
        if (item.size() != 4) continue;
        const std::vector<std::string> tags = {item[0].first, item[1].first, item[2].first, item[3].first};
        EXPECT_EQ(tags, (std::vector<std::string>{"CODIGO", "DESIGNACAO", "OBSERVACOES", "ACTIVO"}));
        rows.push_back({item[0].second, item[1].second, item[2].second, item[3].second});
    }
    return rows;
}

std::set<std::string> codes(const std::vector<ListRow>& rows, const char* active)
{
    std::set<std::string> out;
    for (const auto& r : rows)
        if (r.active == active && r.code != "0") out.insert(r.code);
    return out;
}

std::set<std::string> words(const std::string& s)
{
    std::istringstream in(s);
    return {std::istream_iterator<std::string>(in), {}};
}

using Getter = std::string_view (nimbara::cls_ValProdutosA::*)() const;
struct ListCase { std::string_view function; Getter getter; std::size_t rows; bool repeats_last; };
const ListCase kLists[] = {
    {"getXML_ProdutoLOV", &nimbara::cls_ValProdutosA::getProdutoLOV, 58, true},
    {"getXML_VelocidadeLOV", &nimbara::cls_ValProdutosA::getVelocidadeLOV, 5, true},
    {"getXML_FormatoLOV", &nimbara::cls_ValProdutosA::getFormatoLOV, 5, true},
    {"getXML_DescontosLOV", &nimbara::cls_ValProdutosA::getDescontosLOV, 5, true},
    {"getXML_SEspeciaisLOV", &nimbara::cls_ValProdutosA::getSEspeciaisLOV, 16, false},
    {"getXML_EntregaSamplingLOV", &nimbara::cls_ValProdutosA::getEntregaSamplingLOV, 5, true},
    {"getXML_AmbitoDistribuicaoLOV", &nimbara::cls_ValProdutosA::getAmbitoDistribuicaoLOV, 5, true},
    {"getXML_ZonaTaxacaoLOV", &nimbara::cls_ValProdutosA::getZonaTaxacaoLOV, 5, true},
};

}  // namespace

TEST(ValueLists, ShapeOfEveryList)
{
    const nimbara::cls_ValProdutosA facade;
    for (const auto& l : kLists) {
        const std::string_view text = *xml::document(l.function);
        EXPECT_EQ((facade.*l.getter)(), text) << l.function << ": the getter hands the list out unchanged";
        EXPECT_NE(text.find("<DESIGNACAO><![CDATA["), std::string_view::npos) << l.function;
        EXPECT_NE(text.find("<ACTIVO>TRUE</ACTIVO>"), std::string_view::npos) << l.function << ": flags in capitals";
        const auto rows = list_rows(text);
        ASSERT_EQ(rows.size(), l.rows) << l.function;
        EXPECT_EQ(rows.front(), (ListRow{"0", "", "", "TRUE"})) << l.function;
        EXPECT_EQ(rows[rows.size() - 1] == rows[rows.size() - 2], l.repeats_last) << l.function;
        for (const auto& r : rows) EXPECT_EQ(r.remarks, "") << l.function;
    }
}

TEST(ValueLists, FourListsShareTheDiscountRows)
{
    const auto discounts = list_rows(xml::getXML_DescontosLOV());
    EXPECT_EQ(discounts, (std::vector<ListRow>{{"0", "", "", "TRUE"},
                                               {"01", "Objectos  RSF incluido", "", "TRUE"},
                                               {"02", "Não", "", "TRUE"},
                                               {"03", "Produção Própria de Código de barras", "", "TRUE"},
                                               {"03", "Produção Própria de Código de barras", "", "TRUE"}}));
    for (const auto text : {xml::getXML_VelocidadeLOV(), xml::getXML_FormatoLOV(), xml::getXML_EntregaSamplingLOV()})
        EXPECT_EQ(text, xml::getXML_ZonaTaxacaoLOV());
    auto shared = list_rows(xml::getXML_ZonaTaxacaoLOV());
    EXPECT_EQ(shared[2].code, "02");
    EXPECT_EQ(shared[2].active, "FALSE");
    EXPECT_NE(shared[2].label, "Não");
    shared[2] = discounts[2];
    EXPECT_EQ(shared, discounts) << "only row 02 differs";
}

TEST(ValueLists, ProductsScopesAndServices)
{
    const auto products = list_rows(xml::getXML_ProdutoLOV());
    EXPECT_EQ(codes(products, "TRUE"), words("C01 C02 C03 C05 C06 C07 C10 C12 C13 C14 C16 C17 C18 C19 C20 C21 C23 C24 C31 "
                                             "C36 C37 C40 C41 C42 C43 C44 C45 C46 C47 C50 E01 E04 E07 P01 P09 P10 P11 P12 P13 P14"));
    EXPECT_EQ(codes(products, "FALSE"), words("C04 C11 C15 C22 C25 C27 C28 C38 C39 E02 E03 E05 E06 P02 P03 P04"));
    for (const auto& p : products) EXPECT_EQ(p.label.empty(), p.code == "0") << p.code;

    const auto scopes = list_rows(xml::getXML_AmbitoDistribuicaoLOV());
    EXPECT_EQ(scopes[1], (ListRow{"01", "Local", "", "FALSE"}));
    EXPECT_EQ(scopes[2], (ListRow{"02", "Standard", "", "TRUE"}));
    EXPECT_EQ(scopes[3], (ListRow{"03", "Dia Certo", "", "FALSE"}));

    const auto services = list_rows(xml::getXML_SEspeciaisLOV());
    EXPECT_EQ(codes(services, "TRUE"), words("01 02 03 04 05 06 07 10 12 13 15"));
    EXPECT_EQ(codes(services, "FALSE"), words("08 09 11 14"));
    EXPECT_EQ(services[2].label, "Aviso de Recepção");
    EXPECT_EQ(services.back().label, "Tratamento sobre objetos");
}
