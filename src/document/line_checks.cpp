// The façade's line validation and list getters, over its catalogue.
#include "nimbara/GlobalXML.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "validation/line_validator.hpp"
#include "validation/rule_catalogue.hpp"

namespace nimbara {

cls_ValProdutosA::cls_ValProdutosA(const validation::RuleCatalogue& catalogue)
    : catalogue_(std::make_shared<const validation::RuleCatalogue>(catalogue))
{
}

const validation::RuleCatalogue& cls_ValProdutosA::catalogue() const
{
    return catalogue_ ? *catalogue_ : validation::RuleCatalogue::compiled();
}

ValidationResult cls_ValProdutosA::DoValidaProduto(std::string_view strIdProduto, std::string_view strCodZtaxacao,
                                                   std::int32_t lngPeso, std::string_view strVelocidade,
                                                   std::string_view strFormato, std::string_view bolPreTratamento,
                                                   std::string_view strDesconto, std::string_view strCodAmbitoDist,
                                                   std::string_view strCodAmostraDireta,
                                                   std::string_view strListaServEsp) const
{
    return validation::validate_line(catalogue().index(),
                                     {strIdProduto, strCodZtaxacao, lngPeso, strVelocidade, strFormato, bolPreTratamento,
                                      strDesconto, strCodAmbitoDist, strCodAmostraDireta, strListaServEsp});
}

// Each getter hands out its list of values unchanged.
std::string_view cls_ValProdutosA::getProdutoLOV() const { return GlobalXML::getXML_ProdutoLOV(); }
std::string_view cls_ValProdutosA::getVelocidadeLOV() const { return GlobalXML::getXML_VelocidadeLOV(); }
std::string_view cls_ValProdutosA::getFormatoLOV() const { return GlobalXML::getXML_FormatoLOV(); }
std::string_view cls_ValProdutosA::getDescontosLOV() const { return GlobalXML::getXML_DescontosLOV(); }
std::string_view cls_ValProdutosA::getSEspeciaisLOV() const { return GlobalXML::getXML_SEspeciaisLOV(); }
std::string_view cls_ValProdutosA::getEntregaSamplingLOV() const { return GlobalXML::getXML_EntregaSamplingLOV(); }
std::string_view cls_ValProdutosA::getAmbitoDistribuicaoLOV() const { return GlobalXML::getXML_AmbitoDistribuicaoLOV(); }
std::string_view cls_ValProdutosA::getZonaTaxacaoLOV() const { return GlobalXML::getXML_ZonaTaxacaoLOV(); }

}  // namespace nimbara
