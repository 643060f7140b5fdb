// EscreveStringXml: tbl_Validacao written out as lines of program text that concatenate the rule
// master document, ten items to a statement.
#include <fstream>
#include <system_error>

#include "entities/connection.hpp"
#include "nimbara/cls_Importacao.hpp"

namespace nimbara {

void cls_Importacao::EscreveStringXml()
{
    rsStrXml = entities::require(myConn).open(
        "SELECT tbl_Validacao.CodValidacao, tbl_Validacao.Cod_Produto, tbl_Validacao.Activo FROM tbl_Validacao");
    std::ofstream out(DomFile, std::ios::binary | std::ios::trunc);
    if (!out) throw std::system_error(errno, std::generic_category(), "cannot write " + DomFile.string());

    int in_block = 0;
    bool first = true;
    for (; !rsStrXml.IsEOF(); rsStrXml.MoveNext()) {
        const FieldValue& produto = rsStrXml[std::size_t{1}];
        const std::string item = std::string(first ? "<LIST>" : "") + "<ITEM><CODVALIDACAO>" +
                                 rsStrXml[std::size_t{0}].text() + "</CODVALIDACAO><CODPRODUTO>" +
                                 (produto.is_null() ? std::string() : produto.text()) + "</CODPRODUTO><ACTIVO>" +
                                 rsStrXml[std::size_t{2}].text() + "</ACTIVO></ITEM>";
        first = false;
        if (in_block == 0) out << "\nstrXML = strXML & _ \n";
        out << '"' << item << '"' << (in_block < 9 ? " & _" : "") << '\n';
        if (++in_block == 10) in_block = 0;
    }
    out << "\"</LIST>\"\n";
    rsStrXml.Close();
    if (!out.flush()) throw std::system_error(errno, std::generic_category(), "cannot write " + DomFile.string());
}

}  // namespace nimbara
