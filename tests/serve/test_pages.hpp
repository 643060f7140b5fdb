#pragma once
// The server's tests serve these few pages (tests/serve/pages) instead of the built front end, each
// with its gzip made by the system's gzip, so that the asset rules are tried on real files.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "serve/assets.hpp"

namespace nimbara::testing {

inline std::span<const serve::Asset> test_pages()
{
    struct Held {
        std::vector<std::unique_ptr<std::string>> texts;
        std::vector<serve::Asset> assets;
    };
    static const Held held = [] {
        Held h;
        const std::filesystem::path root = std::filesystem::path(NIMBARA_SOURCE_DIR) / "tests/serve/pages";
        const auto keep = [&](std::string text) -> std::string_view {
            h.texts.push_back(std::make_unique<std::string>(std::move(text)));
            return *h.texts.back();
        };
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
            if (!entry.is_regular_file()) continue;
            std::ifstream in(entry.path(), std::ios::binary);
            std::ostringstream bytes;
            bytes << in.rdbuf();
            std::string gzip;
            if (FILE* pipe = ::popen(("gzip -n -c '" + entry.path().string() + "'").c_str(), "r")) {
                char chunk[4096];
                for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, pipe)) > 0;) gzip.append(chunk, n);
                ::pclose(pipe);
            }
            const std::string ext = entry.path().extension().string();
            const char* type = ext == ".html" ? "text/html; charset=utf-8"
                               : ext == ".js" ? "text/javascript; charset=utf-8"
                                              : "text/plain; charset=utf-8";
            h.assets.push_back({keep("/" + std::filesystem::relative(entry.path(), root).string()), type,
                                keep(bytes.str()), ext == ".txt" ? std::string_view() : keep(gzip)});
        }
        return h;
    }();
    return held.assets;
}

}  // namespace nimbara::testing
