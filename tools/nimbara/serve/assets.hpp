#pragma once
// The front end's built files, embedded in the program at build time (nothing fetched at run time).
#include <span>
#include <string_view>

namespace nimbara::serve {

struct Asset {
    std::string_view path;          // "/index.html", "/assets/app-3f2a.js"
    std::string_view content_type;  // "text/html; charset=utf-8"
    std::string_view bytes;
    std::string_view gzip;          // the same bytes gzip-compressed, empty when not worth it
};

std::span<const Asset> web_assets();

}  // namespace nimbara::serve
