#pragma once
// A PDF of whole pages written with the standard faces, which every reader has, so that no font is
// embedded: small files, made quickly.
#include <map>
#include <memory>
#include <string>

#include "platform/page_ops.hpp"

typedef struct _HPDF_Doc_Rec* HPDF_Doc;

namespace nimbara {

class StandardPdfWriter {
public:
    StandardPdfWriter();
    ~StandardPdfWriter();
    StandardPdfWriter(const StandardPdfWriter&) = delete;
    StandardPdfWriter& operator=(const StandardPdfWriter&) = delete;

    // Throws with the PDF library's error when the page could not be added.
    void add_page(const Page& page);
    // The whole document; the writer is spent.
    std::string finish();

    struct State;

private:
    std::unique_ptr<State> state_;
};

}  // namespace nimbara
