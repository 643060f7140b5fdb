#include "rules/catalogue.hpp"
#include "rules/possible_value_key.hpp"

#include <stdexcept>
#include <string>

#include "nimbara/GlobalXML.hpp"
#include "rules/catalogue_data.hpp"

namespace nimbara::rules {

std::span<const RuleRow> rule_table() { return {generated::kRuleTable, generated::kRuleTableSize}; }

std::span<const RepeatedRow> repeated_rows() { return {generated::kRepeatedRows, generated::kRepeatedRowCount}; }

const SourceTexts& source_texts() { return generated::kSourceTexts; }

const PossibleValueTable& possible_value_table(PossibleValueKey key)
{
    static_assert(kPossibleValueKeyCount > 0);
    return generated::kPossibleValueTables[static_cast<std::size_t>(key)];
}

const Designations& designations()
{
    static const Designations labels(generated::kDesignationsText);
    return labels;
}

}  // namespace nimbara::rules

namespace nimbara::GlobalXML {
namespace {

std::span<const rules::NamedDocument> documents()
{
    return {rules::generated::kDocuments, rules::generated::kDocumentCount};
}

// The named documents are generated from data; a name missing here is a build fault, not a user error.
std::string_view required(std::string_view name)
{
    if (const auto text = document(name)) return *text;
    throw std::logic_error("catalogue has no document " + std::string(name));
}

}  // namespace

std::optional<std::string_view> document(std::string_view function_name)
{
    for (const auto& d : documents())
        if (d.function == function_name) return d.text;
    return std::nullopt;
}

std::vector<std::string_view> document_names()
{
    std::vector<std::string_view> names;
    for (const auto& d : documents()) names.push_back(d.function);
    return names;
}

std::string_view getXML_getIDCodValidacao() { static const auto t = required("getXML_getIDCodValidacao"); return t; }
std::string_view getXML_DoValPeso() { static const auto t = required("getXML_DoValPeso"); return t; }
std::string_view getXML_DoValZonaTaxacao() { static const auto t = required("getXML_DoValZonaTaxacao"); return t; }
std::string_view getXML_DoValVelocidade() { static const auto t = required("getXML_DoValVelocidade"); return t; }
std::string_view getXML_DoValFormato() { static const auto t = required("getXML_DoValFormato"); return t; }
std::string_view getXML_DoValPreTratamento() { static const auto t = required("getXML_DoValPreTratamento"); return t; }
std::string_view getXML_DoValDesconto() { static const auto t = required("getXML_DoValDesconto"); return t; }
std::string_view getXML_DoValAmbitoDist() { static const auto t = required("getXML_DoValAmbitoDist"); return t; }
std::string_view getXML_DoValEntrega_Sampling() { static const auto t = required("getXML_DoValEntrega_Sampling"); return t; }
std::string_view getXML_DoValServEsp() { static const auto t = required("getXML_DoValServEsp"); return t; }

std::string_view getXML_ProdutoLOV() { static const auto t = required("getXML_ProdutoLOV"); return t; }
std::string_view getXML_VelocidadeLOV() { static const auto t = required("getXML_VelocidadeLOV"); return t; }
std::string_view getXML_FormatoLOV() { static const auto t = required("getXML_FormatoLOV"); return t; }
std::string_view getXML_DescontosLOV() { static const auto t = required("getXML_DescontosLOV"); return t; }
std::string_view getXML_SEspeciaisLOV() { static const auto t = required("getXML_SEspeciaisLOV"); return t; }
std::string_view getXML_EntregaSamplingLOV() { static const auto t = required("getXML_EntregaSamplingLOV"); return t; }
std::string_view getXML_AmbitoDistribuicaoLOV() { static const auto t = required("getXML_AmbitoDistribuicaoLOV"); return t; }
std::string_view getXML_ZonaTaxacaoLOV() { static const auto t = required("getXML_ZonaTaxacaoLOV"); return t; }
std::string_view GetXMLPossibleValues_ZonaTaxacao() { static const auto t = required("GetXMLPossibleValues_ZonaTaxacao"); return t; }
std::string_view GetXMLPossibleValues_Peso() { static const auto t = required("GetXMLPossibleValues_Peso"); return t; }
std::string_view GetXMLPossibleValues_Velocidade() { static const auto t = required("GetXMLPossibleValues_Velocidade"); return t; }
std::string_view GetXMLPossibleValues_Formato() { static const auto t = required("GetXMLPossibleValues_Formato"); return t; }
std::string_view GetXMLPossibleValues_PreTratamento() { static const auto t = required("GetXMLPossibleValues_PreTratamento"); return t; }
std::string_view GetXMLPossibleValues_Desconto() { static const auto t = required("GetXMLPossibleValues_Desconto"); return t; }
std::string_view GetXMLPossibleValues_AmbitoDistribuicao() { static const auto t = required("GetXMLPossibleValues_AmbitoDistribuicao"); return t; }
std::string_view GetXMLPossibleValues_EntregaSampling() { static const auto t = required("GetXMLPossibleValues_EntregaSampling"); return t; }
std::string_view GetXMLPossibleValues_ServicosEspeciais() { static const auto t = required("GetXMLPossibleValues_ServicosEspeciais"); return t; }

}  // namespace nimbara::GlobalXML
