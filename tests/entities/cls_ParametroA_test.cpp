#include <gtest/gtest.h>

#include "nimbara/cls_ParametroA.hpp"

using nimbara::cls_ParametroA;
namespace param = nimbara::param;
using nimbara::ParametroError;

TEST(cls_ParametroA, FillsFromTheFirstRowOrTheDefaults)
{
    cls_ParametroA defaults;
    defaults.PreencheObjecto(param::Table{});
    EXPECT_EQ(defaults.vCod2DErroLevel, "1");
    EXPECT_EQ(defaults.vGuiaNVias, "1");
    EXPECT_EQ(defaults.VCod2DFonteSize, "0");

    param::Table table;
    table.set(param::VCod2DFonteSize, 0, std::string("3"));
    table.set(param::vGuiaNVias, 1, std::string("5"));  // a second row is never read
    cls_ParametroA p;
    p.PreencheObjecto(table);
    EXPECT_EQ(p.VCod2DFonteSize, "3");
    EXPECT_EQ(p.vGuiaNVias, "") << "an empty cell is the empty text";
}

TEST(cls_ParametroA, ValidateReportsTheFirstFault)
{
    struct Case { const char* vias; const char* columns; const char* level; const char* message; };
    const Case cases[] = {
        {"1", "32", "1", nullptr},
        {"1", "0", "8", nullptr},
        {"0", "33", "9", "O nº de Guias não pode ser inferior a 1."},
        {"1", "33", "0", "Nº de colunas não pode ser superior a 32."},
        {"1", "32", "9", "Error level deve estar entre 1 e 8."},
    };
    for (const auto& c : cases) {
        cls_ParametroA p;
        p.vGuiaNVias = c.vias, p.vCod2DNColunas = c.columns, p.vCod2DErroLevel = c.level;
        if (!c.message) {
            EXPECT_TRUE(p.Validate());
            continue;
        }
        try {
            p.Validate();
            ADD_FAILURE() << c.message;
        } catch (const ParametroError& e) {
            EXPECT_STREQ(e.what(), c.message);
            EXPECT_EQ(e.number(), static_cast<std::int32_t>(0x80040201u));
        }
    }
}
