#pragma once
// The headless façade: validates product lines and Guias against the compiled-in rule catalogue.
#include <cstdint>
#include <string_view>

#include "nimbara/error_array.hpp"

namespace nimbara {

class cls_ValProdutosA {
public:
    // Judges one product line: nothing when exactly one active rule of the product accepts every
    // value and the special services pass, else the first error met in the fixed order of checks.
    ValidationResult DoValidaProduto(std::string_view strIdProduto, std::string_view strCodZtaxacao,
                                     std::int32_t lngPeso, std::string_view strVelocidade,
                                     std::string_view strFormato, std::string_view bolPreTratamento,
                                     std::string_view strDesconto, std::string_view strCodAmbitoDist,
                                     std::string_view strCodAmostraDireta, std::string_view strListaServEsp) const;

    // The lists of values, handed out exactly as the catalogue holds them. The lists of speeds,
    // formats, sampling deliveries and zones hold the same rows; the accepted values of those
    // dimensions stand in the possible-value documents.
    std::string_view getProdutoLOV() const;
    std::string_view getVelocidadeLOV() const;
    std::string_view getFormatoLOV() const;
    std::string_view getDescontosLOV() const;
    std::string_view getSEspeciaisLOV() const;
    std::string_view getEntregaSamplingLOV() const;
    std::string_view getAmbitoDistribuicaoLOV() const;
    std::string_view getZonaTaxacaoLOV() const;
};

}  // namespace nimbara
