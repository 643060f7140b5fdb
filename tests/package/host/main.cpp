// A host of the installed package: validates one line, reads the version, and draws a preview, which
// needs the cairo module installed beside the library.
#include <nimbara/PdfSurface.hpp>
#include <nimbara/cls_ValProdutosA.hpp>
#include <nimbara/version.hpp>

#include <iostream>

int main()
{
    const nimbara::cls_ValProdutosA guia;
    const auto result = guia.DoValidaProduto("C01", "01", 50, "0", "02", "1", "0", "0", "", "");
    nimbara::PdfSurface surface([](int, std::string) {});
    surface.Print("Guia");
    surface.EndDoc();
    const auto preview = surface.render(1, 72);
    std::cout << nimbara::kVersionText << ' ' << (result ? result->number : 0) << ' ' << preview.width << '\n';
    return result ? 1 : 0;
}
