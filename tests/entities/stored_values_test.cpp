#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "entities/stored_values.hpp"
#include "nimbara/cls_Cliente.hpp"
#include "nimbara/cls_Guia_Cabecalho.hpp"
#include "nimbara/cls_Parametro.hpp"
#include "support/sample_entities.hpp"
#include "support/test_database.hpp"

namespace nimbara {
namespace {

using namespace nimbara::testing;

TEST(StoredValueGate, AcceptsWhatTheReadersReadBackAndNamesEverythingElse)
{
    struct Case {
        const char* table;
        const char* column;
        FieldValue value;
        const char* refused;  // a part of the reason, or nullptr when the value may be stored
    };
    const std::string nul("Ana\0Lda", 7);
    const Case cases[] = {
        {"Tbl_Cliente", "Nome", "Farmácia São Brás", nullptr},
        {"Tbl_Cliente", "Nome", std::string(100, 'x'), nullptr},
        {"Tbl_Cliente", "Nome", "\xC3\x28", "not UTF-8 (byte 1"},
        {"Tbl_Cliente", "Nome", "Lisboa \xE9vora", "not UTF-8 (byte 8"},
        {"Tbl_Cliente", "Nome", "\xC0\xAF", "not UTF-8"},           // an overlong slash
        {"Tbl_Cliente", "Nome", "\xED\xA0\x80", "not UTF-8"},       // a surrogate
        {"Tbl_Cliente", "Nome", "caf\xC3", "not UTF-8 (byte 4"},    // cut inside a character
        {"Tbl_Cliente", "Nome", nul, "NUL character (byte 4)"},
        {"Tbl_Cliente", "Nome", std::string(101, 'x'), "101 characters, where the column holds at most 100"},
        {"Tbl_Cliente", "Observacoes", std::string(30000, 'x'), nullptr},  // a memo has no width
        {"Tbl_Linha", "B_Produto", std::string(1000, 'C'), "1000 characters"},
        {"Tbl_Linha", "B_Produto", "ÇÇÇÇÇÇÇÇÇÇ", nullptr},  // ten characters in twenty bytes
        {"Tbl_Cliente", "Id_Cliente", std::int64_t{2147483647}, nullptr},
        {"Tbl_Cliente", "Id_Cliente", std::int64_t{2147483648}, "outside the column's range"},
        {"Tbl_Cliente", "Cod_Cliente", std::int64_t{-1} - 9223372036854775807, "outside the column's range"},
        {"Tbl_Cliente", "iTipoCliente", std::int64_t{-32768}, nullptr},
        {"Tbl_Cliente", "iTipoCliente", std::int64_t{32768}, "-32768 to 32767"},
        {"Tbl_Linha", "C_Escalao", "18446744073709551615", "is no whole number"},
        {"Tbl_Linha", "C_Escalao", 20.5, "is no whole number"},
        {"Tbl_Linha", "C_Escalao", true, "is no whole number"},
        {"Tbl_Cliente", "Id_Cliente", FieldValue(), "a key cannot be empty"},
        {"Tbl_Cab", "N_Pag", FieldValue(), nullptr},
        {"Tbl_Cab", "D_Req", Timestamp{2024, 2, 29, 23, 59, 59}, nullptr},
        {"Tbl_Cab", "D_Req", Timestamp{2026, 2, 31, 0, 0, 0}, "no real date"},
        {"Tbl_Cab", "D_Req", Timestamp{2026, 2, 28, 99, 0, 0}, "no real date"},
        {"Tbl_Cab", "D_Req", Timestamp{-1, 1, 1, 0, 0, 0}, "the year -1"},
        {"Tbl_Cab", "D_Req", Timestamp{0, 1, 1, 0, 0, 0}, "the year 0"},
        {"Tbl_Cab", "D_Req", "2026-13-01", "is no date"},
        {"Tbl_Cab", "Credenciado", true, nullptr},
        {"Tbl_Cab", "Credenciado", "sim", "is no yes/no"},
        {"Tbl_Linha_ServicoEspecial", "Valor", "150", nullptr},
        {"Tbl_Linha_ServicoEspecial", "Valor", "abc", "is no amount"},
        {"Tbl_Linha_ServicoEspecial", "Valor", "1.5", "is no amount"},
        {"Tbl_Contrato", "Cod_Contrato", std::int64_t{0}, "a contract needs its code"},
        {"Tbl_Contrato", "Cod_Contrato", "", "is no whole number"},
        {"Tbl_Cab", "Cod_Contrato", std::int64_t{0}, nullptr},
        {"tbl_cliente", "NOME", "case of names aside", nullptr},
        {"Tbl_Cliente", "Apelido", "x", "no such column"},
    };
    for (const auto& c : cases) {
        const auto why = entities::refusal(c.table, c.column, c.value);
        const std::string what = std::string(c.table) + "." + c.column + " = " + c.value.text().substr(0, 30);
        if (!c.refused) {
            EXPECT_FALSE(why) << what << ": " << why.value_or("");
            continue;
        }
        ASSERT_TRUE(why) << what;
        EXPECT_NE(why->find(c.refused), std::string::npos) << what << ": " << *why;
    }
}

// What SQLite would store and PostgreSQL refuse with its own words is refused on both, by the gate,
// with the entity's key; nothing of the save stays.
class StoredValueStoreTest : public SeededStoreTest {};
INSTANTIATE_TEST_SUITE_P(Stores, StoredValueStoreTest, kBothStores, store_name);

TEST_P(StoredValueStoreTest, EveryEntityWriteIsRefusedAlikeBeforeAnythingIsWritten)
{
    store_client(db, 1);
    struct Case {
        const char* name;
        std::function<std::string()> save;  // answers the object's LastError
        const char* message;
    };
    const Case cases[] = {
        {"a client name of 101 characters",
         [&] {
             cls_Cliente c(db);
             c.iId_Cliente = 7, c.vCod_Cliente = "1007", c.vNome = std::string(101, 'N');
             c.DoSave();
             return c.LastError();
         },
         "client 1007: Tbl_Cliente.Nome: 101 characters"},
        {"a client number beyond 32 bits",
         [&] {
             cls_Cliente c(db);
             c.iId_Cliente = 7, c.vCod_Cliente = "99999999999";
             c.DoSave();
             return c.LastError();
         },
         "client 99999999999: Tbl_Cliente.Cod_Cliente: 99999999999 is outside"},
        {"a remark with a NUL",
         [&] {
             cls_Cliente c(db);
             c.iId_Cliente = 7, c.vCod_Cliente = "1007", c.vObservacoes = std::string("a\0b", 3);
             c.DoSave();
             return c.LastError();
         },
         "Tbl_Cliente.Observacoes: text with a NUL character"},
        {"a contract without a code",
         [&] {
             cls_Cliente c(db);
             c.iId_Cliente = 7, c.vCod_Cliente = "1007";
             c.AddContrato(7, "0", "Sem código", false, "0", "", "", true, Timestamp::now());
             c.DoSave();
             return c.LastError();
         },
         "contract \"0\": Tbl_Contrato.Cod_Contrato: a contract needs its code"},
        {"a product code of 1000 characters",
         [&] {
             auto g = new_guia(db, 1, 2, 1, 50);
             g->mColLinha.Item(2).vB_Produto = std::string(1000, 'C');
             g->DoSave();
             return g->LastError();
         },
         "Guia 50, line 2: Tbl_Linha.B_Produto: 1000 characters, where the column holds at most 10"},
        {"the 31st of February",
         [&] {
             auto g = new_guia(db, 1, 1, 0, 50);
             g->vDReq = Timestamp{2026, 2, 31, 0, 0, 0};
             g->DoSave();
             return g->LastError();
         },
         "Guia 50: Tbl_Cab.D_Req: \"2026-02-31 00:00:00\" is no real date"},
        {"the year 0",
         [&] {
             auto g = new_guia(db, 1, 1, 0, 50);
             g->vDReq = Timestamp{0, 6, 1, 0, 0, 0};
             g->DoSave();
             return g->LastError();
         },
         "Tbl_Cab.D_Req: the year 0 is outside 1900 to 9999"},
        {"an amount that is no digits",
         [&] {
             auto g = new_guia(db, 1, 1, 1, 50);
             g->mColLinha.Item(1).mColSEspecial.Item(1).vValor = "abc";
             g->DoSave();
             return g->LastError();
         },
         "Guia 50, line 1, service 01: Tbl_Linha_ServicoEspecial.Valor: \"abc\" is no amount"},
    };
    const auto rows = [&] {
        return count("Tbl_Cliente") + count("Tbl_Contrato") + count("Tbl_Cab") + count("Tbl_Linha") +
               count("Tbl_Linha_ServicoEspecial");
    };
    const auto before = rows();
    for (const auto& c : cases) {
        const std::string error = c.save();
        EXPECT_NE(error.find(c.message), std::string::npos) << c.name << ": " << error;
        EXPECT_EQ(rows(), before) << c.name << ": nothing of the save stays";
    }
}

TEST_P(StoredValueStoreTest, APrintSettingThatIsNotUtf8IsRefusedAndTheRowKept)
{
    cls_Parametro p(db);
    p.vCodTerceiro = "ok";
    p.DoSave();
    cls_Parametro bad(db);
    bad.vCodTerceiro = "caf\xE9";
    try {
        bad.DoSave();
        ADD_FAILURE() << "a setting that is not UTF-8 was saved";
    } catch (const DatabaseError& e) {
        EXPECT_NE(std::string(e.what()).find("Tbl_Parametro.CodTerceiro: text that is not UTF-8"), std::string::npos)
            << e.what();
    }
    EXPECT_EQ(cls_Parametro(db).vCodTerceiro, "ok");
}

}  // namespace
}  // namespace nimbara
