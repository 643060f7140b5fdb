#pragma once
// What the opaque handles of nimbara.h hold, and the structs versioned by their size.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "capi/guarded.hpp"
#include "nimbara/Database.hpp"
#include "nimbara/client_store.hpp"
#include "nimbara/cls_ValProdutosA.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/nimbara.h"

struct nimbara_guia {
    nimbara::GuiaFile file;
};

struct nimbara_validator {
    nimbara::cls_ValProdutosA facade;
};

struct nimbara_client {
    nimbara::ClientFields fields;
    std::string scratch;  // the last text nimbara_client_get handed out
};

struct nimbara_store {
    std::shared_ptr<nimbara::Database> db;
};

struct nimbara_print_job {
    std::vector<std::string> items;  // PDFs' bytes, or paths of the files written
};

struct nimbara_outcome {
    struct Possible {
        std::string code, label;
    };
    struct Error {
        std::int32_t row = -1;
        std::string line;
        std::int32_t number = 0;
        std::string description;
        bool is_list = false;
        bool ranges = false;
        std::vector<Possible> possible;
        std::string sentence;
    };
    std::vector<Error> errors;
};

struct nimbara_listing {
    struct Cell {
        std::string text;
        bool null = false;
    };
    std::vector<std::string> columns;
    std::vector<std::vector<Cell>> rows;
};

namespace nimbara::capi {

// A struct a host handed in, read up to its struct_size: fields of a later version it does not know
// keep their zero value.
template <class Struct>
Struct sized_in(const Struct* given, const char* what)
{
    Struct s{};
    if (given == nullptr) return s;
    if (given->struct_size < sizeof(std::size_t))
        throw Refusal(NIMBARA_BAD_ARGUMENT, std::string(what) + ": struct_size is not set");
    std::memcpy(&s, given, std::min(given->struct_size, sizeof(Struct)));
    s.struct_size = sizeof(Struct);
    return s;
}

// Fills a struct the host handed out, as far as its struct_size reaches.
template <class Struct>
void sized_out(Struct filled, Struct* out, const char* what)
{
    required(out, what);
    if (out->struct_size < sizeof(std::size_t))
        throw Refusal(NIMBARA_BAD_ARGUMENT, std::string(what) + ": struct_size is not set");
    const std::size_t size = std::min(out->struct_size, sizeof(Struct));
    filled.struct_size = size;
    std::memcpy(out, &filled, size);
}

}  // namespace nimbara::capi
