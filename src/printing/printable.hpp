#pragma once
// What would keep a Guia from printing whole, found before anything is drawn: numbers that are no
// numbers where printing converts them, values wider than their place in the barcode or the form,
// settings that printing cannot use. One check serves both editions; each names the places of its
// faults in its own words (the Guia file's keys, or the database's columns and line numbers).
#include <string>
#include <vector>

#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/guia_arrays.hpp"
#include "printing/guia_source.hpp"

namespace nimbara::printing {

// Places read "/produtos/2/Escalao" in the array edition, "line 3: K_Entrega_Sampling" in the
// database edition.
using nimbara::PrintProblem;

// The Guia as the edition would print it from the source.
std::vector<PrintProblem> printing_problems(const GuiaSource& source, Edition edition);

// The headless Guia of the four tables, as the array edition prints it.
std::vector<PrintProblem> printing_problems(const GuiaArrays& arrays);

}  // namespace nimbara::printing
