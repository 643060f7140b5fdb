#pragma once
// The text of a printed page's PDF417 symbol read back into the fields it carries, and the pages of
// one Guia put together. The counter reads Guias this way without typing them; the layouts are
// those docs/barcode.md describes, and reading is the exact inverse of what printing writes.
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "nimbara/export.hpp"

namespace nimbara {

// Which edition printed the page: the headless one (`print`, `ImprimeGuia`) or the database one.
enum class SymbolEdition { Array, Database };

// A payload that is not one of ours: what was wrong and where, counting characters from 1.
class SymbolPayloadError : public std::runtime_error {
public:
    SymbolPayloadError(std::size_t position, const std::string& what);
    std::size_t position() const { return position_; }

private:
    std::size_t position_;
};

// The head's fields, each as the Guia file writes it (the padding zeros taken off).
struct SymbolHead {
    SymbolEdition edition = SymbolEdition::Array;
    std::string access;   // "CR" or "OP"; "CR01" in the database edition
    std::string version;  // six digits of the printing component's version; empty in the database edition
    std::string contract, client, third_party, day_code;
    // The yearly request number (headless edition) or the Guia's request number (database edition).
    std::string request_number;
    int page = 0, pages = 0;
    // 0, 1 or 2 when the flags name the payment; empty when they name none of those the edition marks.
    std::optional<std::string> payment;
    bool credentialed = false;
    std::string credential_number, commitment;
    // The head with the page number left out: every page of one Guia shares it.
    std::string identity;
};

struct SymbolService {
    std::string CodServEsp, Valor;
};

// One product line, its fields under the Guia file's keys in the order the item carries them.
struct SymbolLine {
    std::vector<std::pair<std::string, std::string>> fields;
    std::vector<SymbolService> services;
    // A C25 line that rode in the line before it as service 25: the symbol keeps only its product and
    // weight step.
    bool rides_along = false;

    // The field's value, empty when the line does not carry it.
    std::string_view value(std::string_view key) const;
    // The services' codes joined by ",", or "0" without services, as ListaServesp holds them.
    std::string service_list() const;
};

struct SymbolPayload {
    SymbolHead head;
    int line_count = 0;  // as the symbol states it (see docs/barcode.md for what each edition counts)
    std::vector<SymbolLine> lines;
};

// Reads a page's payload. Throws SymbolPayloadError naming the position of the first character that
// no payload of either edition could hold there.
NIMBARA_API SymbolPayload read_symbol_payload(std::string_view text);

// The Guia-file keys of the head fields each edition carries, for front ends that list them.
NIMBARA_API std::vector<std::pair<std::string, std::string>> head_fields(const SymbolHead& head);

// A symbol found on a page of a scan: where (file and page, as the reader names it) and its text.
struct FoundSymbol {
    std::string where;
    std::string text;
};

// One Guia put together from its pages.
struct AssembledGuia {
    SymbolHead head;  // page 0: the head every page shares
    std::vector<SymbolLine> lines;  // the pages' lines, in page order
    std::vector<std::string> page_sources;  // where each page present was found, by page number (empty when missing)
    std::vector<int> missing;   // page numbers never found
    std::vector<int> repeated;  // pages found more than once with the same symbol (copies, or the page scanned twice)
    std::vector<int> conflicting;  // pages found more than once with different symbols
    bool complete() const { return missing.empty() && conflicting.empty(); }
};

struct UnreadSymbol {
    std::string where;
    std::string text;
    std::string error;
};

struct AssembledScan {
    std::vector<AssembledGuia> guias;  // in the order their first page was found
    std::vector<UnreadSymbol> unread;  // symbols that are no payload of ours
};

// Reads every symbol and puts the pages of each Guia together by their shared head.
NIMBARA_API AssembledScan assemble_guias(const std::vector<FoundSymbol>& symbols);

}  // namespace nimbara
