#pragma once
// The four faces the printed page uses, as the standard faces every PDF reader has (Times and
// Helvetica, with the widths of the Times New Roman and Arial that the page is laid out in), so that
// no PDF has to embed a font.
#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace nimbara {

enum class Face { Serif, SerifBold, Sans, SansBold };

// The face that stands for a font name: Times for the serif names, Helvetica for everything else
// (the symbol fonts are never used for text).
Face face_of(std::string_view font_name, bool bold);

// The PDF name of the standard face, e.g. "Times-Bold".
const char* pdf_face_name(Face face);
// A family that the preview renderer finds with the same metrics, e.g. "Arial".
const char* preview_family(Face face);

// Distances in ems: from the top of a line to its baseline, and from one line to the next.
double ascent_em(Face face);
double descent_em(Face face);
double line_height_em(Face face);

// The text in the single-byte encoding the standard faces are written in, or nothing when a
// character has no place in it.
std::optional<std::string> to_win_ansi(std::string_view utf8);

// The advance of an encoded text, in ems.
double text_width_em(Face face, std::string_view win_ansi);

}  // namespace nimbara
