#include <gtest/gtest.h>

#include "nimbara/cls_Parametro.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

// The table as the old databases came: a new database holds the factory row, which goes first.
class ParametroTest : public SeededStoreTest {
protected:
    void SetUp() override
    {
        SeededStoreTest::SetUp();
        if (IsSkipped() || HasFailure()) return;
        db->execute("DELETE FROM Tbl_Parametro");
    }
    std::int64_t rows() { return count("Tbl_Parametro"); }
};
INSTANTIATE_TEST_SUITE_P(Stores, ParametroTest, kBothStores, store_name);

TEST_P(ParametroTest, AnEmptyTableGivesTheDefaultsAndTheFirstSaveInserts)
{
    cls_Parametro p(db);
    EXPECT_EQ(p.vGuiaNVias, "1");
    EXPECT_EQ(p.vCod2DErroLevel, "1");
    EXPECT_EQ(p.vCodTerceiro, "0");
    p.vCodTerceiro = "D'Ávila";
    p.DoSave();
    EXPECT_EQ(rows(), 1);
    EXPECT_EQ(cls_Parametro(db).vCodTerceiro, "D'Ávila");
}

TEST_P(ParametroTest, ASaveRewritesEveryRow)
{
    cls_Parametro(db).DoSave();
    cls_Parametro(db).DoSave();
    EXPECT_EQ(rows(), 1) << "the second save updates";
    db->execute("INSERT INTO Tbl_Parametro SELECT * FROM Tbl_Parametro");
    cls_Parametro p(db);
    p.vGuiaNVias = std::to_string(4);
    p.DoSave();
    Recordset all;
    p.SelectAll(all);
    ASSERT_EQ(all.RecordCount(), 2);
    for (; !all.IsEOF(); all.MoveNext()) EXPECT_EQ(all["GuiaNVias"].text(), "4");
}

TEST_P(ParametroTest, ARefusedValueSavesNothing)
{
    struct Case { const char* vias; const char* columns; const char* level; const char* message; };
    const Case cases[] = {
        {"0", "33", "9", "O nº de Guias não pode ser inferior a 1."},
        {"1", "33", "0", "Nº de colunas não pode ser superior a 32."},
        {"1", "32", "9", "Error level deve estar entre 1 e 8."},
        {"x", "1", "1", nullptr},  // no number: the conversion error
    };
    for (const auto& c : cases) {
        cls_Parametro p(db);
        p.vGuiaNVias = c.vias, p.vCod2DNColunas = c.columns, p.vCod2DErroLevel = c.level;
        try {
            p.DoSave();
            ADD_FAILURE() << c.vias << c.columns << c.level;
        } catch (const ParametroError& e) {
            EXPECT_STREQ(e.what(), c.message);
            EXPECT_EQ(e.number(), static_cast<std::int32_t>(0x80040201u));
        } catch (const std::invalid_argument&) {
            EXPECT_EQ(c.message, nullptr);
        }
        EXPECT_EQ(rows(), 0);
    }
}

// A setting that printing could not use is refused when it is saved, naming it, and nothing is saved.
TEST_P(ParametroTest, WhatWouldNotPrintIsRefusedWhenSaved)
{
    struct Case {
        std::string cls_Parametro::*setting;
        const char* value;
        const char* message;
    };
    const Case cases[] = {
        {&cls_Parametro::vGuiaMargensTopo, "abc", "vGuiaMargensTopo: \"abc\" is not a whole number of twips from 0 to 5670."},
        {&cls_Parametro::vGuiaMargensEsquerda, "1e999", "vGuiaMargensEsquerda: \"1e999\" is not a whole number of twips from 0 to 5670."},
        {&cls_Parametro::vGuiaMargensTopo, "-10", "vGuiaMargensTopo: \"-10\" is not a whole number of twips from 0 to 5670."},
        {&cls_Parametro::vCod2DNColunas, "31", "vCod2DNColunas: \"31\" is not a whole number from 0 to 30."},
        {&cls_Parametro::vCod2DNLinhas, "-1", "vCod2DNLinhas: \"-1\" is neither 0 (as many rows as needed) nor a whole number from 3 to 90."},
        {&cls_Parametro::vCod2DNLinhas, "2", "vCod2DNLinhas: \"2\" is neither 0 (as many rows as needed) nor a whole number from 3 to 90."},
        {&cls_Parametro::vCod2DPDFMode, "x", "vCod2DPDFMode: \"x\" is not a whole number from 0 to 2."},
        {&cls_Parametro::VCod2DFonteSize, "", "VCod2DFonteSize: \"\" is not a number from 0 to 100."},
        {&cls_Parametro::vCod2DTruncated, "yes", "vCod2DTruncated: \"yes\" is neither 0 nor 1."},
    };
    for (const auto& c : cases) {
        cls_Parametro p(db);
        p.*(c.setting) = c.value;
        try {
            p.DoSave();
            ADD_FAILURE() << c.message;
        } catch (const ParametroError& e) {
            EXPECT_STREQ(e.what(), c.message);
        }
        EXPECT_EQ(rows(), 0) << c.message;
    }
    cls_Parametro accepted(db);
    accepted.vCod2DNColunas = "30", accepted.vCod2DNLinhas = "90", accepted.vGuiaMargensTopo = "567";
    accepted.DoSave();
    EXPECT_EQ(rows(), 1);
}
