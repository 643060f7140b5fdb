#pragma once
// What the stores need to know of a statement's text before they run it.
#include <string_view>

namespace nimbara::platform {

// Whether a statement creates, drops or alters a table, view or index: statements kept prepared
// from before may then describe columns that are no longer there, and are prepared again.
bool changes_schema(std::string_view sql);

}  // namespace nimbara::platform
