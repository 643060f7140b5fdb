#pragma once
// PDF417 encoding: the payload of a printed page turned into a matrix of modules, drawn by the
// printing code as filled rectangles.
#include <cstdint>
#include <string_view>
#include <vector>

namespace nimbara::platform {

struct Pdf417Options {
    int error_level = -1;  // 0 to 8; below 0 lets the encoder choose
    int columns = 0;       // data columns, 1 to 30; 0 lets the encoder choose
    int rows = 0;          // 3 to 90; 0 lets the encoder choose
    bool truncated = false;
    int mode = 0;          // kept for the parameter set; the encoder picks its compaction itself
    bool tilde = false;    // "~dNNN" stands for the byte NNN
};

struct Pdf417Symbol {
    int rows = 0;
    int width = 0;  // modules per row
    std::vector<std::uint8_t> modules;  // row-major, 1 for a dark module

    bool dark(int row, int column) const { return modules[static_cast<std::size_t>(row * width + column)] != 0; }
};

// Throws std::runtime_error with the encoder's message when the data or an option is refused.
Pdf417Symbol encode_pdf417(std::string_view data, const Pdf417Options& options);

}  // namespace nimbara::platform
