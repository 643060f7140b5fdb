// Any bytes as a Guia file: read, filled and finished as `nimbara print` does, or refused with a
// message that names the file.
#include <cstddef>
#include <cstdint>
#include <fstream>

#include "guia_file.hpp"
#include "guia_run.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto path = nimbara::fuzzing::scratch_folder().parent_path() /
                      (nimbara::fuzzing::scratch_folder().filename().string() + ".json");
    {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    }
    try {
        const auto file = nimbara::cli::read_guia_file(path);
        nimbara::cls_ValProdutosA guia;
        if (!nimbara::cli::fill_guia(guia, file)) nimbara::fuzzing::finish(guia, false);
    } catch (const nimbara::cli::GuiaFileError& e) {
        if (std::string_view(e.what()).find(path.string()) != 0) __builtin_trap();
    }
    return 0;
}
