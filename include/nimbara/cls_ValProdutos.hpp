#pragma once
// The validator of the database road: judges product lines against the rule tables of the database
// (tbl_Validacao and tbl_Val_*) and whole Guias in the working table Tbl_Temp_Val_Guia, which
// cls_Guia_Cabecalho::DoInsertValTemp fills.
//
// The rule tables are read into memory at the first line and read again only when the database's
// rule counter says they changed, so that a line costs one small query however many rules it meets.
// Validators on one thread share what they read of a database.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

#include "nimbara/Database.hpp"
#include "nimbara/error_array.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

class NIMBARA_API cls_ValProdutos {
public:
    // On this thread's shared connection gConn, as it stands at each call. Creation opens it from
    // the ini file (OpenConnection()): a store that cannot be opened raises ConnectionError here; an
    // ini file without a connection string sends its message to the notifier and leaves gConn as it
    // was, so that every answer is then -100 unless the host sets gConn.
    cls_ValProdutos();
    // On the host's own database.
    explicit cls_ValProdutos(std::shared_ptr<Database> db);

    // Judges one product line: nothing when exactly one active rule of the product accepts every
    // value (both weight bounds included; a rule must offer pre-treatment whatever the line says)
    // and the special services pass; else the first error met. -1 for a product without active
    // rules, -100 "Erro Genérico" when the database cannot be read. An empty `arrServEsp` is a line
    // without special services.
    [[nodiscard]] ValidationResult DoValidaProduto(std::string_view strIdProduto, std::string_view strCodZtaxacao,
                                                   std::int32_t lngPeso, std::string_view strVelocidade,
                                                   std::string_view strFormato, bool bolPreTratamento,
                                                   std::string_view strDesconto, std::string_view strCodAmbitoDist,
                                                   const ListArray& arrServEsp);

    // The rules that span the lines of Guia `lngNGuia` in Tbl_Temp_Val_Guia: minimum quantities
    // (summed over every Guia the table holds) and inserts; the first that fails answers.
    [[nodiscard]] ValidationResult DoValidaGuia(std::int32_t lngNGuia);

    // Fills `arrErr` unless it already holds an error: the first error stands.
    static void ValPreparaErro(ValidationResult& arrErr, std::int32_t lngErr,
                               std::variant<std::string, ListArray> varDesc);

private:
    std::shared_ptr<Database> connection() const;

    std::shared_ptr<Database> db_;  // empty: gConn at each call
};

}  // namespace nimbara
