#include <gtest/gtest.h>

#include <set>
#include <string>

#include "nimbara/catalogue_codes.hpp"
#include "nimbara/cls_ValProdutosA.hpp"

using nimbara::CatalogueCodes;
using nimbara::CodeKind;

namespace {

std::vector<std::string> codes_of(CodeKind kind, std::optional<std::string_view> product = {})
{
    std::vector<std::string> out;
    for (const auto& c : CatalogueCodes(kind, product)) out.push_back(c.code);
    return out;
}

}  // namespace

TEST(CatalogueCodes, ByKindAndProduct)
{
    struct Case {
        CodeKind kind;
        const char* product;
        std::vector<std::string> codes;
    };
    const Case cases[] = {
        {CodeKind::Zone, "C01", {"01", "05", "44", "45", "49"}},
        {CodeKind::Format, "C01", {"01", "02", "03"}},
        {CodeKind::Speed, "C03", {"0", "02", "03"}},
        {CodeKind::Service, "C06", {"0", "02", "04", "05", "06"}},
        {CodeKind::PreTreatment, "C01", {"0", "1"}},
        {CodeKind::PreTreatment, "C10", {"0"}},  // no rule of C10 offers it
        {CodeKind::PreTreatment, "X99", {}},
        {CodeKind::Zone, "X99", {}},
    };
    for (const auto& c : cases) EXPECT_EQ(codes_of(c.kind, c.product), c.codes) << c.product;
}

// What the zone list of a product says is what the validator does: a zone outside it fails the line
// on its zone (-2), a zone in it never does.
TEST(CatalogueCodes, ZonesAgreeWithTheValidatorForEveryProduct)
{
    const nimbara::cls_ValProdutosA validator;
    const auto every_zone = codes_of(CodeKind::Zone);
    ASSERT_GT(every_zone.size(), 40u);
    for (const auto& product : codes_of(CodeKind::Product)) {
        const auto accepted = codes_of(CodeKind::Zone, product);
        const std::set<std::string> zones(accepted.begin(), accepted.end());
        for (const auto& zone : every_zone) {
            const auto result = validator.DoValidaProduto(product, zone, 1, "0", "0", "0", "0", "0", "0", "0");
            const bool zone_refused = result && result->number == -2;
            EXPECT_EQ(zone_refused, !zones.contains(zone)) << product << " " << zone;
        }
    }
}

TEST(CatalogueCodes, DesignationsAndWeightSteps)
{
    const auto zones = CatalogueCodes(CodeKind::Zone);
    ASSERT_FALSE(zones.empty());
    EXPECT_EQ(zones.front(), (nimbara::CatalogueCode{"01", "Continente, Açores e Madeira"}));
    for (const auto& z : zones) EXPECT_FALSE(z.designation.empty()) << z.code;
    EXPECT_EQ(CatalogueCodes(CodeKind::Scope, "C01").front(), (nimbara::CatalogueCode{"0", ""}));

    const std::vector<nimbara::WeightStep> c01 = {{"C01", 0, 50}, {"C01", 50, 100}, {"C01", 100, 2000}};
    EXPECT_EQ(nimbara::CatalogueWeightSteps("C01"), c01);
    EXPECT_TRUE(nimbara::CatalogueHasProduct("C01"));
    EXPECT_FALSE(nimbara::CatalogueHasProduct("X99"));
    EXPECT_FALSE(nimbara::CatalogueHasProduct(""));
}
