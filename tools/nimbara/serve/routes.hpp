#pragma once
// The domain routes (api_routes() in api.hpp) and the OpenAPI document that describes them and the
// server's own, embedded in the program at build time.
#include <string_view>

#include "api.hpp"

namespace nimbara::serve {

std::string_view openapi_document();

}  // namespace nimbara::serve
