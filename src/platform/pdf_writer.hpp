#pragma once
// A PDF of whole pages written directly, page by page, with the standard faces that every reader
// has, so that no font is embedded. The form's pictures are written once per document and shown on
// every page that has them; nothing but the page in hand is kept in memory.
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/page_ops.hpp"

namespace nimbara {

class StandardPdfWriter final : public PageWriter {
public:
    // The header goes to `out` at once.
    explicit StandardPdfWriter(Output out);

    void add_page(const Page& page) override;
    // Writes what ties the pages together; the document is whole after it.
    void finish() override;

private:
    int reserve() { return next_id_++; }
    // Starts object `id` at the current offset.
    void begin_object(int id);
    void write(std::string_view bytes);
    void write_stream(int id, std::string_view dictionary, std::string_view data);
    int picture_object(const PictureOp& op);
    int modules_object(const ModuleMatrix& m);

    Output out_;
    std::size_t offset_ = 0;
    std::vector<std::size_t> offsets_;  // by object number, 0 unused
    int next_id_ = 1;
    int catalog_, pages_, info_, fonts_[4];
    std::vector<int> page_ids_;
    std::map<const void*, int> pictures_;  // the drawing or raster each picture object was made from
    std::vector<std::shared_ptr<const void>> kept_;  // keeps those alive, so no address is reused
};

}  // namespace nimbara
