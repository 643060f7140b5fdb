#pragma once
// Where the page driver reads a Guia: its header, its lines one at a time with their special
// services, and the settings of its symbols. The in-memory tables feed it here; a database source
// answers the same questions.
#include <optional>

#include "nimbara/cls_ParametroA.hpp"
#include "nimbara/guia_arrays.hpp"
#include "platform/pdf417_encoder.hpp"

namespace nimbara::printing {

// How a page's symbol is encoded and drawn.
struct SymbolSettings {
    platform::Pdf417Options encoding;
    double font_size;  // the setting, from which the size of a module follows
    double ratio;      // 0, 1 or more: rows two, three or four modules high
};

class GuiaSource {
public:
    virtual ~GuiaSource() = default;

    // The header as one row; an empty table when the Guia has none.
    virtual const cab::Table& header() const = 0;
    virtual int line_count() const = 0;
    // One line as a one-row table, as the source holds it.
    virtual guia::Table line(int index) const = 0;
    // The special services of a line as rows of the services' table. Throws std::exception when the
    // line's number is no number.
    virtual serv::Table services(int index) const = 0;
    // Throws std::exception when a setting is no number.
    virtual SymbolSettings symbol_settings() const = 0;
    // The twelve settings as text; nothing when the source keeps none.
    virtual std::optional<cls_ParametroA> parameters() const = 0;
};

// The symbol's settings read from the twelve; throws std::exception when one is no number.
SymbolSettings symbol_settings_of(const cls_ParametroA& parametros);

// A line as it prints and encodes: format "07" of product "C07" stands as "01". The source keeps
// its own value.
guia::Table printed_line(const GuiaSource& source, int index);

// The Guia held in the four in-memory tables.
class ArraySource final : public GuiaSource {
public:
    explicit ArraySource(const GuiaArrays& arrays) : arrays_(arrays) {}

    const cab::Table& header() const override { return arrays_.arrCabecalho; }
    int line_count() const override { return arrays_.arrGuia.row_count(); }
    guia::Table line(int index) const override;
    serv::Table services(int index) const override;
    SymbolSettings symbol_settings() const override;
    std::optional<cls_ParametroA> parameters() const override;

private:
    const GuiaArrays& arrays_;
};

}  // namespace nimbara::printing
