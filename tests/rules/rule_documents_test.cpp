#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "nimbara/GlobalXML.hpp"
#include "support/rule_table_file.hpp"

namespace xml = nimbara::GlobalXML;

namespace {

using Row = std::vector<std::string>;  // the texts in tag order

std::vector<Row> rows_of(std::string_view text, std::vector<std::string>* tags = nullptr)
{
    std::vector<Row> rows;
    for (const auto& item : nimbara::testing::read_items(text)) {
        Row& r = rows.emplace_back();
        if (tags) tags->clear();
        for (const auto& [tag, value] : item) {
            r.push_back(value);
            if (tags) tags->push_back(tag);
        }
    }
    return rows;
}

using nimbara::testing::read_rule_table_file;
using nimbara::testing::split_blanks;

struct DimensionDoc { std::string_view function; std::string value_tag; int column; std::size_t rows; };
const DimensionDoc kDimensionDocs[] = {
    {"getXML_DoValZonaTaxacao", "CODZTAXACAO", 5, 328},
    {"getXML_DoValVelocidade", "CODVELOCIDADE", 6, 154},
    {"getXML_DoValFormato", "CODFORMATO", 7, 192},
    {"getXML_DoValPreTratamento", "PRETRATAMENTO", 8, 166},
    {"getXML_DoValDesconto", "CODDESCONTO", 9, 169},
    {"getXML_DoValAmbitoDist", "CODDAMBITODIST", 10, 142},
    {"getXML_DoValEntrega_Sampling", "CODDENTREGASAMPLING", 11, 143},
    {"getXML_DoValServEsp", "CODSERVICOE", 12, 214},
};

std::vector<std::string_view> rule_document_names()
{
    std::vector<std::string_view> names{"getXML_getIDCodValidacao", "getXML_DoValPeso"};
    for (const auto& d : kDimensionDocs) names.push_back(d.function);
    return names;
}

}  // namespace

TEST(RuleDocuments, TextShape)
{
    for (const auto name : xml::document_names()) {
        const std::string_view text = *xml::document(name);
        EXPECT_TRUE(text.starts_with("<LIST><ITEM>")) << name;
        EXPECT_TRUE(text.ends_with("</ITEM></LIST>")) << name;
        EXPECT_EQ(text.find_first_of("\t\r\n"), std::string_view::npos) << name << ": line breaks";
        EXPECT_EQ(text.find("> <"), std::string_view::npos) << name << ": blanks between tags";
        EXPECT_EQ(text.find("<?xml"), std::string_view::npos) << name;
    }
    // Only the rule documents pass through the upper-casing; the lists keep their mixed case.
    for (const auto name : rule_document_names()) {
        const std::string_view text = *xml::document(name);
        for (char c : text) ASSERT_FALSE(c >= 'a' && c <= 'z') << name << " is not in capitals";
    }
}

// The rule list and the weight document follow the table row for row, in its order; the weight
// document writes its last row twice.
TEST(RuleDocuments, RuleListAndWeightsFollowTheTableInOrder)
{
    std::vector<Row> rules, weights;
    for (const auto& t : read_rule_table_file()) {
        if (t.f[2] == "-") continue;
        rules.push_back({t.f[0], t.f[1], t.f[2] == "Y" ? "TRUE" : "FALSE"});
        weights.push_back({t.f[0], t.f[3], t.f[4], t.f[1]});
    }
    weights.push_back(weights.back());

    std::vector<std::string> tags;
    const auto rows = rows_of(xml::getXML_getIDCodValidacao(), &tags);
    EXPECT_EQ(tags, (std::vector<std::string>{"CODVALIDACAO", "CODPRODUTO", "ACTIVO"}));
    ASSERT_EQ(rows.size(), 141u);
    EXPECT_EQ(rows, rules);
    EXPECT_EQ(rows.front(), (Row{"0", "", "TRUE"}));
    EXPECT_EQ(std::ranges::count(rows, "FALSE", [](const Row& r) { return r[2]; }), 13);

    EXPECT_EQ(rows_of(xml::getXML_DoValPeso(), &tags), weights);
    EXPECT_EQ(tags, (std::vector<std::string>{"CODVALIDACAO", "CESCALAOMIN", "CESCALAOMAX", "CODPRODUTO"}));
    EXPECT_EQ(weights.size(), 142u);
}

TEST(RuleDocuments, DimensionDocumentsMatchTheTableRowForRow)
{
    const auto table = read_rule_table_file();
    for (const auto& d : kDimensionDocs) {
        std::vector<std::string> tags;
        const auto rows = rows_of(*xml::document(d.function), &tags);
        EXPECT_EQ(tags, (std::vector<std::string>{d.value_tag, "CODVALIDACAO"})) << d.function;
        EXPECT_EQ(rows.size(), d.rows) << d.function;
        ASSERT_GE(rows.size(), 2u);
        EXPECT_EQ(rows[rows.size() - 1], rows[rows.size() - 2]) << d.function << ": last row is not repeated";

        // Same rows as the table (order aside), each once, plus the repeated one.
        std::multiset<Row> got(rows.begin(), rows.end() - 1), expected;
        for (const auto& t : table)
            for (const auto& code : split_blanks(t.f[static_cast<std::size_t>(d.column)])) expected.insert({code, t.f[0]});
        EXPECT_EQ(got, expected) << d.function;
    }
}

TEST(RuleDocuments, DeliberateFactsOfTheData)
{
    // The services document repeats rule 132's "0", so that rule admits "0" twice.
    const auto services = rows_of(xml::getXML_DoValServEsp());
    EXPECT_EQ(services.back(), (Row{"0", "132"}));

    // Pre-treatment rows exist for rule 74, which is not in the rule list.
    const auto pre = rows_of(xml::getXML_DoValPreTratamento());
    std::set<std::string> for74;
    for (const auto& r : pre)
        if (r[1] == "74") for74.insert(r[0]);
    EXPECT_EQ(for74, (std::set<std::string>{"1", "2"}));
    for (const auto& r : rows_of(xml::getXML_getIDCodValidacao())) EXPECT_NE(r[0], "74");

    // Rule 79 has rows in no dimension document.
    for (const auto& d : kDimensionDocs)
        for (const auto& r : rows_of(*xml::document(d.function))) EXPECT_NE(r[1], "79") << d.function;

    // No rule document names C38 or C39.
    for (const auto name : rule_document_names()) {
        EXPECT_EQ(xml::document(name)->find("C38"), std::string_view::npos);
        EXPECT_EQ(xml::document(name)->find("C39"), std::string_view::npos);
    }
}
