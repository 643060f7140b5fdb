#pragma once
// Guias to print and read back: the bundled examples and random printable ones, with the symbols each
// edition puts on their pages. Shared by the reading tests and the robustness figures.
#include <cstdint>
#include <string>
#include <vector>

#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/guia_arrays.hpp"

namespace nimbara::testing {

struct NamedGuia {
    std::string name;
    GuiaArrays arrays;
};

// The Guia files in examples/ that print whole.
std::vector<NamedGuia> example_guias();

// `count` random Guias whose every field fits its place in the symbol, with C25 lines riding after
// C03, C05 and C50 lines, services, campaigns and references; the same seed gives the same Guias.
std::vector<NamedGuia> random_guias(int count, std::uint32_t seed);

// The payload of each page of one copy, as the edition's page walk makes them.
std::vector<std::string> page_payloads(const GuiaArrays& guia, Edition edition);

}  // namespace nimbara::testing
