#pragma once
// The Guia file (JSON): the arguments of the fill operations by name, read and checked whole before
// anything is filled.
#include <array>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "nimbara/cls_ValProdutosA.hpp"

namespace nimbara::cli {

struct GuiaFile {
    std::array<std::string, 20> cabecalho;  // the arguments of PreencheCabecalho, in call order
    std::array<std::string, 12> parametros;
    std::vector<std::array<std::string, 20>> produtos;
    std::vector<std::array<std::string, 3>> servicos;
};

// Names the file and the place in it (a line and column, or a JSON pointer) and what is wrong.
struct GuiaFileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Missing keys are the empty text; numbers become text. Throws GuiaFileError.
GuiaFile read_guia_file(const std::filesystem::path& path);

// The file as JSON, every key present, in the order of the fill operations' arguments.
std::string guia_file_json(const GuiaFile& file);

// Fills the façade in file order: header, parameters, products, services. Answers a message naming
// the place of the first fill that answered -1, or nothing when all were accepted.
std::optional<std::string> fill_guia(cls_ValProdutosA& guia, const GuiaFile& file);

}  // namespace nimbara::cli
