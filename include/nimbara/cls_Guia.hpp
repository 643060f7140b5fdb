#pragma once
// The browse screen's queries over the stored Guias: the years, the clients of a year, every line
// under a filter and a chosen order, the special services of a line, and the placeholder results a
// grid draws its columns from when nothing was found.
//
// Filters are bound values. An order is a list of column words, each optionally followed by asc or
// desc, separated by commas; any other word is refused before a statement is made.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "nimbara/Database.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// How Replace compares: byte for byte, or without regard to the case of letters.
enum class CompareMode : int { Binary = 0, Text = 1 };

class NIMBARA_API cls_Guia {
public:
    // With the connection of the ini file, or with the host's own.
    cls_Guia();
    explicit cls_Guia(std::shared_ptr<Database> db);

    // The years that have Guias, latest first ("Ano"); nothing when there are none.
    std::optional<Recordset> getRSAno();
    // The clients with Guias in a year ("Cod_Cliente", "Nome"); nothing when there are none.
    std::optional<Recordset> getRSClientes(const std::string& strAno);
    // Every client ("Id_Cliente", "Cod_Cliente", "Nome"); the argument is taken and not used.
    std::optional<Recordset> getRSNomesClientes(const std::string& NCliente);

    // The special services of a line, or the empty form when it has none.
    std::optional<Recordset> getRSServEsp(std::int32_t lngNReq, std::int32_t lngNLinha);
    // One row ("0" and empty texts) while any line has a service; no row otherwise.
    std::optional<Recordset> getRSServEspEmpty();
    // The services of a line as one text: "CODE - DESIGNATION", sep, amount, sep for each; six
    // blanks between five separators when there are none; the empty text on failure.
    std::string getRSServEspExport(std::int32_t lngNReq, std::int32_t lngNLinha, const std::string& strSep);

    // One row per Guia line under the filters ("0" or empty for no filter), in the order of the
    // column words of `strOrder`, or the empty form when nothing matches. On failure (a refused
    // order word, a filter that is no number, the store's error) `erro` becomes 1 and the result is
    // nothing; `erro` is left alone on success.
    std::optional<Recordset> getRSGuia(const std::string& strAno, const std::string& strMes,
                                       const std::string& strCliente, const std::string& strOrder,
                                       std::int16_t* erro = nullptr);
    // getRSGuia's rows handed to `sink` one at a time as the store reads them, so that a listing of
    // any length is never held whole; with no match, the columns and no row (not the empty form).
    // The sink must not query this database meanwhile. Answers false where getRSGuia answers
    // nothing, LastError() saying why.
    bool StreamGuiaLines(const std::string& strAno, const std::string& strMes, const std::string& strCliente,
                         const std::string& strOrder, const RowSink& sink);
    // One row (Req1 "0", Req2 "1", the rest empty) while any line exists; no row otherwise.
    std::optional<Recordset> getRSGuiaEmpty();

    // `sIn` with the hits of `sFind` from position `nStart` (1 is the first character) replaced,
    // `nCount` of them or all with -1; a replacement is never searched again. Throws
    // std::invalid_argument for a start below 1.
    static std::string Replace(const std::string& sIn, const std::string& sFind, const std::string& sReplace,
                               std::int32_t nStart = 1, std::int32_t nCount = -1,
                               CompareMode bCompare = CompareMode::Binary);

    // Why the last query answered nothing or the empty text; empty after one that succeeded.
    const std::string& LastError() const { return last_error_; }

    std::shared_ptr<Database> myConn;

private:
    std::string last_error_;
};

}  // namespace nimbara
