#include <gtest/gtest.h>

#include "nimbara/cls_Parametro.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

class ParametroTest : public SeededStoreTest {
protected:
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
