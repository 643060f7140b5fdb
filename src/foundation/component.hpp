#pragma once
// Where the component lives: the folder and base name of the loaded library, or of the program
// when the library is linked into it statically.
#include <filesystem>
#include <string>

namespace nimbara {

struct ComponentLocation {
    std::filesystem::path folder;
    std::string base_name;  // without extension, e.g. "libnimbara" or "nimbara"
};

const ComponentLocation& component_location();

}  // namespace nimbara
