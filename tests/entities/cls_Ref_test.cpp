#include <gtest/gtest.h>

#include <functional>

#include "nimbara/cls_Ref.hpp"
#include "support/test_database.hpp"

using namespace nimbara;
using nimbara::testing::kBothStores;
using nimbara::testing::store_name;
using nimbara::testing::SeededStoreTest;

class RefTest : public SeededStoreTest {};
INSTANTIATE_TEST_SUITE_P(Stores, RefTest, kBothStores, store_name);

TEST_P(RefTest, EachListReadsItsTable)
{
    using Make = std::function<std::unique_ptr<RefList>()>;
    struct Case { Make make; const char* code; const char* designation; bool active; };
    const auto of = [&]<class T>(T*) { return Make([this] { return std::make_unique<T>(db); }); };
    const Case cases[] = {
        {of((cls_Ref_ZTaxacao*)nullptr), "01", "Continente, Açores e Madeira", true},
        {of((cls_Ref_Produto*)nullptr), "C15", "Produto C15", false},
        {of((cls_Ref_Velocidade*)nullptr), "01", "Prioritário", true},
        {of((cls_Ref_Formato*)nullptr), "09", "Pré e pós mailing", true},
        {of((cls_Ref_PreTratamento*)nullptr), "2", "Pré-tratamento 2", true},
        {of((cls_Ref_Descontos*)nullptr), "0", "", true},
        {of((cls_Ref_ADistribuicao*)nullptr), "02", "Standard", true},
        {of((cls_Ref_ESampling*)nullptr), "01", "Geral", true},
        {of((cls_Ref_SEspeciais*)nullptr), "02", "Aviso de Recepção", true},
        {of((cls_Ref_Conteudos*)nullptr), nullptr, nullptr, false},
        {of((cls_Ref_RefCliente*)nullptr), nullptr, nullptr, false},
    };
    for (const auto& c : cases) {
        const auto list = c.make();
        SCOPED_TRACE(std::string(list->Table()));
        Recordset all, active;
        list->SelectAll(all);
        list->SelectAllActive(active);
        if (!c.code) {
            EXPECT_EQ(all.RecordCount(), 0) << "no rule uses these codes";
            continue;
        }
        EXPECT_GT(all.RecordCount(), 0);
        for (; !active.IsEOF(); active.MoveNext()) EXPECT_TRUE(active["Activo"].yes_no());
        list->SelectMe(c.code);
        EXPECT_EQ(list->vCodigo, c.code);
        EXPECT_EQ(list->vDesignacao, c.designation);
        EXPECT_EQ(list->vActivo, c.active);
    }
}

TEST_P(RefTest, OrderUnknownCodesAndTheListsWithoutActivo)
{
    cls_Ref_Produto produto(db);
    Recordset all, active;
    produto.SelectAll(all);
    produto.SelectAllActive(active);
    EXPECT_GT(all.RecordCount(), active.RecordCount()) << "inactive products are left out";
    std::string previous;
    for (; !all.IsEOF(); all.MoveNext()) {
        EXPECT_LT(previous, all["Codigo"].text());
        previous = all["Codigo"].text();
    }

    produto.SelectMe("C01");
    EXPECT_THROW(produto.SelectMe("Z99"), DatabaseError);
    EXPECT_EQ(produto.vCodigo, "C01") << "an unknown code changes nothing";

    db->execute("INSERT INTO Tbl_P_RefCliente (Codigo, Designacao) VALUES ('R1', 'Loja d''Ouro')");
    cls_Ref_RefCliente ref(db);
    Recordset refs;
    ref.SelectAllActive(refs);
    EXPECT_EQ(refs.RecordCount(), 1) << "the client references have no Activo: all rows";
    ref.SelectMe("R1");
    EXPECT_EQ(ref.vDesignacao, "Loja d'Ouro");

    cls_Ref_ZTaxacao zonas(db);
    std::string any_product = "C01";
    Recordset by_product = zonas.SelectAllActive2(any_product), zones_active;
    zonas.SelectAllActive(zones_active);
    EXPECT_EQ(by_product.RecordCount(), zones_active.RecordCount());
}
