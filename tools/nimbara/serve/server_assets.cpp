// The pages: answered from the embedded table only, so no request can name a file of the machine.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdio>

#include "server_state.hpp"

namespace nimbara::serve {
namespace {

std::string etag_of(std::string_view bytes)
{
    std::uint64_t hash = 1469598103934665603ull;  // FNV-1a: a validator, not a defence
    for (unsigned char c : bytes) hash = (hash ^ c) * 1099511628211ull;
    char text[24];
    std::snprintf(text, sizeof text, "\"%016llx\"", static_cast<unsigned long long>(hash));
    return text;
}

// The bundler names built files "name-HASH.ext"; such a name never changes its content.
bool hashed_name(std::string_view path)
{
    const auto slash = path.rfind('/');
    std::string_view name = path.substr(slash + 1);
    const auto dot = name.find('.');
    if (dot == std::string_view::npos) return false;
    const std::string_view stem = name.substr(0, dot);
    const auto dash = stem.find_last_of("-.");
    if (dash == std::string_view::npos) return false;
    const std::string_view hash = stem.substr(dash + 1);
    return hash.size() >= 8 && std::all_of(hash.begin(), hash.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; });
}

bool accepts_gzip(const HttpRequest& request)
{
    const auto accepted = request.header("accept-encoding");
    return accepted && accepted->find("gzip") != std::string_view::npos;
}

const ServedAsset* find(const std::vector<ServedAsset>& assets, std::string_view path)
{
    for (const auto& served : assets)
        if (served.asset->path == path) return &served;
    return nullptr;
}

}  // namespace

std::vector<ServedAsset> served_assets(std::span<const Asset> assets)
{
    std::vector<ServedAsset> served;
    for (const auto& asset : assets) served.push_back({&asset, etag_of(asset.bytes), hashed_name(asset.path)});
    return served;
}

HttpResponse answer_asset(const std::vector<ServedAsset>& assets, const HttpRequest& request)
{
    if (request.method != "GET") return {405, {{"Allow", "GET"}, {"Content-Type", "text/plain"}}, "method not allowed\n"};
    const std::string_view path = request.path == "/" ? std::string_view("/index.html") : std::string_view(request.path);
    const ServedAsset* served = find(assets, path);
    // A page address of the client-side routing (no dot in its last part) gets the main page.
    if (!served && path.substr(path.rfind('/') + 1).find('.') == std::string_view::npos)
        served = find(assets, "/index.html");
    if (!served) return {404, {{"Content-Type", "text/plain"}}, "not found\n"};

    const Asset& asset = *served->asset;
    HttpResponse response;
    response.headers = {{"ETag", served->etag},
                        {"Cache-Control", served->immutable ? "public, max-age=31536000, immutable" : "no-cache"}};
    if (!asset.gzip.empty()) response.headers.emplace_back("Vary", "Accept-Encoding");
    if (const auto match = request.header("if-none-match"); match && match->find(served->etag) != std::string_view::npos) {
        response.status = 304;
        return response;
    }
    response.headers.emplace_back("Content-Type", std::string(asset.content_type));
    if (!asset.gzip.empty() && accepts_gzip(request)) {
        response.headers.emplace_back("Content-Encoding", "gzip");
        response.body = asset.gzip;
    } else {
        response.body = asset.bytes;
    }
    return response;
}

}  // namespace nimbara::serve
