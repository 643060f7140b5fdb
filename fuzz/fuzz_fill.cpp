// Any bytes as a sequence of fill operations, then ImprimeGuia. One operation a line: its first byte
// names it (H header, P product, S service, R parameters; anything else is skipped), the rest are its
// arguments, tab-separated, missing ones empty. The first byte of the input, when odd, asks for
// printing only.
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "guia_run.hpp"

namespace {

template <std::size_t N>
std::array<std::string_view, N> arguments(std::string_view row)
{
    std::array<std::string_view, N> out{};
    for (std::size_t i = 0; i < N && !row.empty(); ++i) {
        const auto tab = row.find('\t');
        out[i] = row.substr(0, tab);
        row = tab == std::string_view::npos ? std::string_view{} : row.substr(tab + 1);
    }
    return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;
    std::string_view script(reinterpret_cast<const char*>(data), size);
    const bool only_printer = (data[0] & 1) != 0;
    nimbara::cls_ValProdutosA guia;
    while (!script.empty()) {
        const auto end = script.find('\n');
        const std::string_view row = script.substr(0, end);
        script = end == std::string_view::npos ? std::string_view{} : script.substr(end + 1);
        if (row.empty()) continue;
        const std::string_view args = row.substr(1);
        switch (row[0]) {
        case 'H': {
            const auto a = arguments<20>(args);
            guia.PreencheCabecalho(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11], a[12], a[13],
                                   a[14], a[15], a[16], a[17], a[18], a[19]);
            break;
        }
        case 'P': {
            const auto a = arguments<20>(args);
            guia.PreencheProduto(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11], a[12], a[13],
                                 a[14], a[15], a[16], a[17], a[18], a[19]);
            break;
        }
        case 'S': {
            const auto a = arguments<3>(args);
            guia.PreencheServico(a[0], a[1], a[2]);
            break;
        }
        case 'R': {
            const auto a = arguments<12>(args);
            guia.PreencheParametros(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], a[10], a[11]);
            break;
        }
        default:
            break;
        }
    }
    nimbara::fuzzing::finish(guia, only_printer);
    return 0;
}
