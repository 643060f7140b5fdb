#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "foundation/text.hpp"
#include "nimbara/GlobalXML.hpp"
#include "rules/catalogue.hpp"
#include "rules/possible_value_key.hpp"
#include "support/rule_table_file.hpp"

namespace {

using Row = std::map<std::string, std::string>;  // tag -> text

struct Document { std::vector<Row> rows; std::vector<std::vector<std::string>> tag_orders; };

Document read(std::string_view text)
{
    Document d;
    for (const auto& item : nimbara::testing::read_items(text)) {
        d.rows.emplace_back(item.begin(), item.end());
        auto& order = d.tag_orders.emplace_back();
        for (const auto& [tag, value] : item) order.push_back(tag);
    }
    return d;
}

// Columns of data/rules.tsv.
enum Column { Id = 0, Prod = 1, Min = 3, Zones = 5, Speed, Format, Pre, Disc, Scope, Sampl, Serv, Max = 4 };

struct Case {
    std::string_view function;
    std::size_t rows;
    std::size_t left_out;  // rows of P01 under rules 101 and 137 that the join gives and the document lacks
    std::vector<std::string> tags;
    std::vector<std::pair<std::string, Column>> key;  // where each value of the join stands
    std::set<std::string> plain;
    std::string labelled;  // the tag whose code DESIGNACAO labels
};

const std::vector<std::string> kLead = {"CODPRODUTO", "CODZTAXACAO", "CODVELOCIDADE", "CODFORMATO", "PRETRATAMENTO"};
std::vector<std::string> lead(std::initializer_list<std::string> rest)
{
    auto tags = kLead;
    tags.insert(tags.end(), rest);
    return tags;
}
const std::vector<std::pair<std::string, Column>> kLeadKey = {
    {"CODPRODUTO", Prod}, {"CODZTAXACAO", Zones}, {"CODVELOCIDADE", Speed}, {"CODFORMATO", Format}, {"PRETRATAMENTO", Pre}};
std::vector<std::pair<std::string, Column>> lead_key(std::initializer_list<std::pair<std::string, Column>> rest)
{
    auto key = kLeadKey;
    key.insert(key.end(), rest);
    return key;
}

const std::vector<Case>& cases()
{
    static const std::vector<Case> c = {
        {"GetXMLPossibleValues_ZonaTaxacao", 256, 0, {"CODPRODUTO", "CODZTAXACAO", "DESIGNACAO"},
         {{"CODPRODUTO", Prod}, {"CODZTAXACAO", Zones}}, {}, "CODZTAXACAO"},
        {"GetXMLPossibleValues_Peso", 324, 4,
         {"CODVALIDACAO", "CODPRODUTO", "CODZTAXACAO", "DESIGNACAO", "CESCALAOMIN", "CESCALAOMAX"},
         {{"CODVALIDACAO", Id}, {"CODPRODUTO", Prod}, {"CODZTAXACAO", Zones}, {"CESCALAOMIN", Min}, {"CESCALAOMAX", Max}},
         {"CODVALIDACAO"}, "CODZTAXACAO"},
        {"GetXMLPossibleValues_Velocidade", 351, 4,
         {"CODPRODUTO", "CODZTAXACAO", "CODVELOCIDADE", "DESIGNACAO", "CESCALAOMIN", "CESCALAOMAX"},
         {{"CODPRODUTO", Prod}, {"CODZTAXACAO", Zones}, {"CODVELOCIDADE", Speed}, {"CESCALAOMIN", Min}, {"CESCALAOMAX", Max}},
         {}, "CODVELOCIDADE"},
        {"GetXMLPossibleValues_Formato", 454, 7,
         {"CODPRODUTO", "CODZTAXACAO", "CODVELOCIDADE", "CODFORMATO", "DESIGNACAO", "CESCALAOMIN", "CESCALAOMAX"},
         {{"CODPRODUTO", Prod}, {"CODZTAXACAO", Zones}, {"CODVELOCIDADE", Speed}, {"CODFORMATO", Format},
          {"CESCALAOMIN", Min}, {"CESCALAOMAX", Max}},
         {"CODPRODUTO"}, "CODFORMATO"},
        {"GetXMLPossibleValues_PreTratamento", 543, 12, lead({"CESCALAOMIN", "CESCALAOMAX"}),
         lead_key({{"CESCALAOMIN", Min}, {"CESCALAOMAX", Max}}), {"CODFORMATO"}, ""},
        {"GetXMLPossibleValues_Desconto", 621, 18, lead({"CODDESCONTO", "DESIGNACAO", "CESCALAOMIN", "CESCALAOMAX"}),
         lead_key({{"CODDESCONTO", Disc}, {"CESCALAOMIN", Min}, {"CESCALAOMAX", Max}}), {"CODPRODUTO"}, "CODDESCONTO"},
        {"GetXMLPossibleValues_AmbitoDistribuicao", 641, 18,
         lead({"CODDESCONTO", "CODAMBITODIST", "DESIGNACAO", "CESCALAOMIN", "CESCALAOMAX"}),
         lead_key({{"CODDESCONTO", Disc}, {"CODAMBITODIST", Scope}, {"CESCALAOMIN", Min}, {"CESCALAOMAX", Max}}),
         {"CODPRODUTO"}, "CODAMBITODIST"},
        // Shifted one field to the right from the scope on, the maximum lost off the end.
        {"GetXMLPossibleValues_EntregaSampling", 651, 12,
         lead({"CODDESCONTO", "CODAMBITODIST", "CODSERVICOE", "DESIGNACAO", "CESCALAOMIN", "CESCALAOMAX"}),
         lead_key({{"CODDESCONTO", Disc}, {"CODSERVICOE", Scope}, {"DESIGNACAO", Sampl}, {"CESCALAOMAX", Min}}),
         {"CODPRODUTO"}, ""},
        {"GetXMLPossibleValues_ServicosEspeciais", 947, 4,
         lead({"CODDESCONTO", "CODAMBITODIST", "CODSERVICOE", "DESIGNACAO", "CESCALAOMIN", "CESCALAOMAX"}),
         lead_key({{"CODDESCONTO", Disc}, {"CODAMBITODIST", Scope}, {"CODSERVICOE", Serv}, {"CESCALAOMIN", Min},
                   {"CESCALAOMAX", Max}}),
         {"CODFORMATO"}, "CODSERVICOE"},
    };
    return c;
}

// The join of the rule table over the key's columns, for every rule of the rule list: one tuple per combination.
std::set<std::vector<std::string>> join(const std::vector<std::pair<std::string, Column>>& key)
{
    std::set<std::vector<std::string>> out;
    for (const auto& t : nimbara::testing::read_rule_table_file()) {
        if (t.f[2] == "-") continue;
        std::vector<std::vector<std::string>> choices;
        for (const auto& [tag, column] : key)
            choices.push_back(column >= Zones ? nimbara::testing::split_blanks(t.f[column]) : std::vector{t.f[column]});
        std::vector<std::vector<std::string>> partial{{}};
        for (const auto& options : choices) {
            std::vector<std::vector<std::string>> next;
            for (const auto& p : partial)
                for (const auto& o : options) {
                    next.push_back(p);
                    next.back().push_back(o);
                }
            partial = std::move(next);
        }
        out.insert(partial.begin(), partial.end());
    }
    return out;
}

}  // namespace

// Per document: its rows, tags and forms, and its rows against the join of the rule table.
TEST(PossibleValueDocuments, CountsTagsFormsAndTheJoinOfTheRuleTable)
{
    std::size_t total = 0;
    for (const auto& c : cases()) {
        const std::string_view text = *nimbara::GlobalXML::document(c.function);
        const auto doc = read(text);
        total += doc.rows.size();
        ASSERT_EQ(doc.rows.size(), c.rows) << c.function;
        EXPECT_EQ(doc.rows[c.rows - 1], doc.rows[c.rows - 2]) << c.function << ": the last row is written twice";
        EXPECT_EQ(*std::ranges::max_element(doc.tag_orders, {}, &std::vector<std::string>::size), c.tags) << c.function;
        for (const auto& tag : c.tags) {
            if (tag == "CESCALAOMIN" && c.function.ends_with("Sampling")) continue;
            const bool cdata = text.find("<" + tag + "><![CDATA[") != std::string_view::npos;
            EXPECT_EQ(cdata, !c.plain.count(tag)) << c.function << " " << tag;
        }

        std::set<std::vector<std::string>> got;
        for (std::size_t r = 0; r + 1 < doc.rows.size(); ++r) {
            std::vector<std::string> tuple;
            for (const auto& [tag, column] : c.key) tuple.push_back(doc.rows[r].at(tag));
            EXPECT_TRUE(got.insert(tuple).second) << c.function << ": row " << r << " is there twice";
        }
        const auto expected = join(c.key);
        std::vector<std::vector<std::string>> extra, missing;
        std::ranges::set_difference(got, expected, std::back_inserter(extra));
        std::ranges::set_difference(expected, got, std::back_inserter(missing));
        EXPECT_TRUE(extra.empty()) << c.function << ": rows the rule table does not give";
        EXPECT_EQ(missing.size(), c.left_out) << c.function;
        const auto prod = std::ranges::find(c.key, std::pair<std::string, Column>{"CODPRODUTO", Prod}) - c.key.begin();
        const auto zone = std::ranges::find(c.key, std::pair<std::string, Column>{"CODZTAXACAO", Zones}) - c.key.begin();
        for (const auto& m : missing) {
            EXPECT_EQ(m[prod], "P01") << c.function;
            EXPECT_TRUE(m[zone] == "05" || m[zone] == "42" || m[zone] == "45") << c.function << " zone " << m[zone];
        }
    }
    EXPECT_EQ(total, 4788u);
}

TEST(PossibleValueDocuments, ZonesAreSortedByProductAndZone)
{
    const auto doc = read(nimbara::GlobalXML::GetXMLPossibleValues_ZonaTaxacao());
    std::vector<std::pair<std::string, std::string>> keys;
    for (const auto& r : doc.rows) keys.emplace_back(r.at("CODPRODUTO"), r.at("CODZTAXACAO"));
    EXPECT_TRUE(std::ranges::is_sorted(keys));
}

TEST(PossibleValueDocuments, ACodeHasOneDesignationEverywhere)
{
    std::map<std::string, std::string> zones;
    for (const auto& c : cases()) {
        if (c.labelled.empty()) continue;
        std::map<std::string, std::string> labels;
        for (const auto& r : read(*nimbara::GlobalXML::document(c.function)).rows) {
            auto& seen = c.labelled == "CODZTAXACAO" ? zones : labels;
            const auto [it, fresh] = seen.emplace(r.at(c.labelled), r.at("DESIGNACAO"));
            EXPECT_EQ(it->second, r.at("DESIGNACAO")) << c.function << " " << r.at(c.labelled);
            EXPECT_EQ(r.at("DESIGNACAO").empty(), r.at(c.labelled) == "0") << c.function << " " << r.at(c.labelled);
        }
    }
    EXPECT_EQ(zones.at("01"), "Continente, Açores e Madeira");
    EXPECT_EQ(zones.at("45"), "Europa - Países extracomunitários");
    EXPECT_EQ(zones.at("57"), "Loja");
    EXPECT_FALSE(zones.at("16").empty());
}

TEST(PossibleValueDocuments, SamplingRowsCarryTheDeliveryLabelWhereTheMinimumBelongs)
{
    const auto doc = read(nimbara::GlobalXML::GetXMLPossibleValues_EntregaSampling());
    std::map<std::string, int> labelled;
    std::set<std::pair<std::string, std::string>> labels;
    for (const auto& r : doc.rows) {
        EXPECT_EQ(r.at("CODAMBITODIST"), "");
        if (!r.count("CESCALAOMIN")) continue;
        ++labelled[r.at("CODPRODUTO")];
        labels.emplace(r.at("DESIGNACAO"), r.at("CESCALAOMIN"));
    }
    EXPECT_EQ(doc.rows.size() - labelled["C31"] - labelled["P01"], 644u);
    EXPECT_EQ(labelled, (std::map<std::string, int>{{"C31", 5}, {"P01", 2}}));
    EXPECT_EQ(labels, (std::set<std::pair<std::string, std::string>>{
                          {"01", "Geral"}, {"02", "Segmentada"}, {"03", "Porta-Folhetos"}, {"04", "Plus"}, {"05", "Gold"}}));
}

TEST(PossibleValueDocuments, GeneratedRowsReadAsTheText)
{
    for (const auto& c : cases()) {
        const auto doc = read(*nimbara::GlobalXML::document(c.function));
        const nimbara::rules::PossibleValueTable* found = nullptr;
        for (std::size_t k = 0; k < nimbara::rules::kPossibleValueKeyCount; ++k) {
            const auto& t = nimbara::rules::possible_value_table(static_cast<nimbara::rules::PossibleValueKey>(k));
            if (t.function == c.function) found = &t;
        }
        ASSERT_NE(found, nullptr) << c.function;
        const auto& table = *found;
        ASSERT_EQ(table.rows(), doc.rows.size()) << c.function;
        for (std::size_t r = 0; r < table.rows(); ++r) {
            const auto number = [&](const std::string& tag) -> std::optional<std::int32_t> {
                const auto it = doc.rows[r].find(tag);
                return it == doc.rows[r].end() ? 0 : nimbara::text::to_int32(it->second);
            };
            EXPECT_EQ(table.bounds[r].min, number("CESCALAOMIN")) << c.function << " row " << r;
            EXPECT_EQ(table.bounds[r].max, number("CESCALAOMAX")) << c.function << " row " << r;
            for (std::size_t t = 0; t < table.tags.size(); ++t) {
                const auto it = doc.rows[r].find(std::string(table.tags[t]));
                const auto text = it == doc.rows[r].end() ? std::nullopt : std::optional<std::string_view>(it->second);
                EXPECT_EQ(table.cell(r, t), text) << c.function << " row " << r << " " << table.tags[t];
            }
        }
    }
}
