#pragma once
// Printing a Guia held by a façade, to memory or into a folder, without emptying the host's Guia.
#include <filesystem>
#include <optional>

#include "capi/handles.hpp"

namespace nimbara::capi {

// Prints every copy of the Guia held by `guia` (a copy of the host's façade): the PDFs' bytes when no
// folder is given, else the files written there. A copy that does not come out whole is refused with
// NIMBARA_IO and leaves no file.
nimbara_print_job print_guia(cls_ValProdutosA guia, const std::optional<std::filesystem::path>& folder);

}  // namespace nimbara::capi
