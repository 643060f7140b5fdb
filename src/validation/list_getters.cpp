// The public list getters of the façade: each hands out its list of values unchanged.
#include "nimbara/GlobalXML.hpp"
#include "nimbara/cls_ValProdutosA.hpp"

namespace nimbara {

std::string_view cls_ValProdutosA::getProdutoLOV() const { return GlobalXML::getXML_ProdutoLOV(); }
std::string_view cls_ValProdutosA::getVelocidadeLOV() const { return GlobalXML::getXML_VelocidadeLOV(); }
std::string_view cls_ValProdutosA::getFormatoLOV() const { return GlobalXML::getXML_FormatoLOV(); }
std::string_view cls_ValProdutosA::getDescontosLOV() const { return GlobalXML::getXML_DescontosLOV(); }
std::string_view cls_ValProdutosA::getSEspeciaisLOV() const { return GlobalXML::getXML_SEspeciaisLOV(); }
std::string_view cls_ValProdutosA::getEntregaSamplingLOV() const { return GlobalXML::getXML_EntregaSamplingLOV(); }
std::string_view cls_ValProdutosA::getAmbitoDistribuicaoLOV() const { return GlobalXML::getXML_AmbitoDistribuicaoLOV(); }
std::string_view cls_ValProdutosA::getZonaTaxacaoLOV() const { return GlobalXML::getXML_ZonaTaxacaoLOV(); }

}  // namespace nimbara
