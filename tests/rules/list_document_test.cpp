#include <gtest/gtest.h>

#include "nimbara/GlobalXML.hpp"
#include "rules/list_document.hpp"

using nimbara::rules::ListDocument;

TEST(ListDocument, ReadsPlainAndCDataAndTellsAMissingTagFromAnEmptyOne)
{
    const auto doc = ListDocument::parse(
        "<LIST><ITEM><A>1</A><B><![CDATA[Não <x> & y]]></B></ITEM><ITEM><B></B><C>3</C><A>2</A><A>9</A></ITEM></LIST>");
    ASSERT_TRUE(doc);
    ASSERT_EQ(doc->rows(), 2u);
    const auto a = doc->column("A"), b = doc->column("B"), c = doc->column("C");
    ASSERT_TRUE(a && b && c);
    EXPECT_FALSE(doc->column("D"));

    struct Cell { std::size_t row, column; std::optional<std::string_view> value; };
    const Cell cells[] = {
        {0, *a, "1"}, {0, *b, "Não <x> & y"}, {0, *c, std::nullopt},  // the first row has no C
        {1, *a, "2"},                                                  // the first of a repeated tag
        {1, *b, ""},  {1, *c, "3"},
    };
    for (const auto& cell : cells) EXPECT_EQ(doc->value(cell.row, cell.column), cell.value) << cell.row << "," << cell.column;
}

TEST(ListDocument, RefusesWhatTheCatalogueNeverWrites)
{
    const char* refused[] = {
        "",
        "<LIST><ITEM><A>1</ITEM></LIST>",           // unclosed element
        "<LIST><ITEM><A>1</B></ITEM></LIST>",       // mismatched close
        "<LIST><ITEM><A>a &amp; b</A></ITEM></LIST>",  // entities
        "<LIST><ITEM><A x=\"1\">1</A></ITEM></LIST>",  // attributes
        "<LIST><ITEM></ITEM></LIST>trailing",
        "<LIST><ITEM><A><![CDATA[open</A></ITEM></LIST>",
    };
    for (const auto text : refused) EXPECT_FALSE(ListDocument::parse(text)) << text;
    EXPECT_EQ(ListDocument::parse("<LIST></LIST>")->rows(), 0u);
}

TEST(ListDocument, ReadsEveryCatalogueDocument)
{
    for (const auto name : nimbara::GlobalXML::document_names()) {
        const auto doc = ListDocument::parse(*nimbara::GlobalXML::document(name));
        ASSERT_TRUE(doc) << name;
        EXPECT_GT(doc->rows(), 0u) << name;
    }
}
