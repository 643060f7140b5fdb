#pragma once
// What sets the two editions' pages apart, as data: captions, frames and positions of the fixed form,
// the header and footer and the page numbers. The routines that draw a page read the layout of their
// edition and have no branch of their own on it.
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include "nimbara/ImpressaoComum.hpp"
#include "printing/page.hpp"

namespace nimbara::printing {

// Items of the fixed form, in millimetres from the page offsets, drawn in order.
struct Caption {
    double x, y;
    std::string_view text;
};
struct Frame {
    double x, y, w, h, e;  // printaCaixa's width, height and line thickness
};
struct Font {
    std::string_view name;
    double size;
    bool bold;
};
using FormItem = std::variant<Caption, Frame, Font>;

struct Place {
    double x, y;
};

// The numbers of the page panel, in the order they are printed.
enum class PageField { DocumentNumber, PageCount, PageNumber, Commitment };
struct PageFieldPlace {
    PageField field;
    Place at;
};

struct EditionLayout {
    // Fixed form.
    std::string_view headline;
    double third_payment_box_x;
    std::span<const FormItem> payment_captions;             // before the request date's captions
    std::span<const FormItem> payment_captions_after_date;
    Place copy_mark;
    Place version;
    bool version_not_bold;  // the version drops the bold that the copy mark was printed in
    std::span<const FormItem> page_panel;
    std::span<const FormItem> request_panel_caption;
    bool row_combs;  // each table row drawn with its character cells, else a rule under it
    std::span<const double> strip_x;  // the column strips' x, one per strip drawn

    // Header and footer.
    std::span<const double> hidden_contracts;   // contract numbers that leave their cell empty
    std::optional<std::int16_t> remarks_line;   // line breaks padded to lines of this many characters
    std::span<const Slice, 5> remarks;
    double jpp_mark_x;
    std::array<std::optional<double>, 3> payment_mark_x;  // by kind of deferred payment, 0 to 2
    std::span<const PageFieldPlace> page_fields;
};

const EditionLayout& edition_layout(Edition edition);

}  // namespace nimbara::printing
