// Code keys and the perfect hash over them: equal texts meet, different ones never do, and a key
// outside the set finds no id.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "validation/code_ids.hpp"

using nimbara::validation::code_key;
using nimbara::validation::CodeIds;
using nimbara::validation::CodeKey;
using nimbara::validation::tagged;

TEST(CodeKey, DifferentTextsNeverShareAKey)
{
    // Every length the key holds, and texts that differ only where the two loads of a key overlap.
    const std::vector<std::string> texts = {"",      "0",      "00",      std::string("0\0", 2), "01",     "10",
                                            "001",   "010",    "0001",    "1000",                "01234",  "01243",
                                            "11234", "012345", "012354",  "112345",              "0123456", "0123465",
                                            "1123456", "0023456", std::string("\0\0\0", 3)};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        ASSERT_TRUE(code_key(texts[i])) << i;
        EXPECT_EQ(code_key(texts[i]), code_key(std::string(texts[i]))) << i;
        for (std::size_t j = i + 1; j < texts.size(); ++j) EXPECT_NE(*code_key(texts[i]), *code_key(texts[j])) << i << " " << j;
    }
    EXPECT_FALSE(code_key("01234567"));
    EXPECT_NE(tagged(*code_key("01"), 1), tagged(*code_key("01"), 2));
}

TEST(CodeIds, FindsEachIdAndNothingElse)
{
    struct Case { const char* what; int keys; };
    const Case cases[] = {{"no key", 0}, {"one key", 1}, {"a rule table's worth", 150}, {"many", 5000}};
    for (const auto& c : cases) {
        std::vector<std::pair<CodeKey, std::uint32_t>> entries;
        for (int i = 0; i < c.keys; ++i) entries.emplace_back(tagged(*code_key(std::to_string(i * 7)), i % 9), i);
        const CodeIds ids(entries);
        for (const auto& [key, id] : entries) EXPECT_EQ(ids.find(key), id) << c.what;
        for (int i = 0; i < c.keys + 50; ++i) {
            // The same texts under another kind, and texts not in the set at all.
            EXPECT_EQ(ids.find(tagged(*code_key(std::to_string(i * 7)), i % 9 + 1)), CodeIds::kNone) << c.what << " " << i;
            EXPECT_EQ(ids.find(*code_key(std::to_string(i * 7 + 1))), CodeIds::kNone) << c.what << " " << i;
        }
    }
}

TEST(CodeIds, RefusesAKeyListedTwice)
{
    const std::pair<CodeKey, std::uint32_t> twice[] = {{*code_key("01"), 0}, {*code_key("01"), 1}};
    EXPECT_THROW(CodeIds{twice}, std::logic_error);
}
