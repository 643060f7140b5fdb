// A host of the installed package: validates one line and reads the version.
#include <nimbara/cls_ValProdutosA.hpp>
#include <nimbara/version.hpp>

#include <iostream>

int main()
{
    const nimbara::cls_ValProdutosA guia;
    const auto result = guia.DoValidaProduto("C01", "01", 50, "0", "02", "1", "0", "0", "", "");
    std::cout << nimbara::kVersionText << ' ' << (result ? result->number : 0) << '\n';
    return result ? 1 : 0;
}
