#pragma once
// The Guia file (JSON, UTF-8): the arguments of the fill operations by name, under "cabecalho",
// "parametros", "produtos" and "servicos". Read and checked whole before anything is filled; written
// back in the same form.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/export.hpp"
#include "nimbara/guia_fields.hpp"

namespace nimbara {

struct GuiaFile {
    GuiaCabecalho cabecalho;
    GuiaParametros parametros;
    std::vector<GuiaProduto> produtos;
    std::vector<GuiaServico> servicos;
    friend bool operator==(const GuiaFile&, const GuiaFile&) = default;
};

// Names the source, the place in it (a line and column, or a JSON pointer such as /produtos/1/Escalao)
// and what is wrong.
struct NIMBARA_API GuiaFileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Larger files are refused before they are read: a Guia of the most lines a form can carry stays
// far below it.
inline constexpr std::size_t kMaxGuiaFileBytes = 16u << 20;

// Missing keys are the empty text; numbers keep their text as written. An unknown key, a key given
// twice, a value that is neither text nor a number, and malformed JSON are refused with
// GuiaFileError. `source` names the text in messages.
NIMBARA_API GuiaFile parse_guia_file(std::string_view text, std::string_view source);

// Reads and parses a file; a missing, unreadable or too large file is refused with its reason.
NIMBARA_API GuiaFile read_guia_file(const std::filesystem::path& path);

// The Guia as the text of a Guia file (empty values left out), which parse_guia_file reads back equal.
NIMBARA_API std::string write_guia_file(const GuiaFile& guia);

// Fills the façade in file order: header, parameters, products, services. Answers a message naming
// the place of the first fill that answered -1 and its cause, or nothing when all were accepted.
NIMBARA_API std::optional<std::string> fill_guia(cls_ValProdutosA& guia, const GuiaFile& file);

// A weight (Escalao) as both inputs read it: a whole number of 32 bits, blanks around it allowed.
NIMBARA_API std::optional<std::int32_t> read_weight(std::string_view text);

}  // namespace nimbara
