// Any bytes as a Guia file: read, filled and finished as `nimbara print` does, or refused with a
// message that names the file.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "guia_run.hpp"
#include "nimbara/guia_file.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const auto file = nimbara::parse_guia_file(text, "fuzz.json");
        nimbara::cls_ValProdutosA guia;
        if (!nimbara::fill_guia(guia, file)) nimbara::fuzzing::finish(guia, false);
    } catch (const nimbara::GuiaFileError& e) {
        if (std::string_view(e.what()).rfind("fuzz.json", 0) != 0) __builtin_trap();
    }
    return 0;
}
