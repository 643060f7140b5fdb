#include "foundation/component.hpp"

#include <dlfcn.h>

#include <system_error>

namespace nimbara {
namespace {

ComponentLocation locate()
{
    Dl_info info{};
    std::filesystem::path image;
    if (dladdr(reinterpret_cast<const void*>(&component_location), &info) != 0 && info.dli_fname != nullptr)
        image = info.dli_fname;
    std::error_code ec;
    if (image.empty() || image.filename() == image) image = std::filesystem::read_symlink("/proc/self/exe", ec);
    auto absolute = std::filesystem::weakly_canonical(image, ec);
    if (ec) absolute = image;
    std::string base = absolute.filename().string();
    if (const auto dot = base.find('.'); dot != std::string::npos) base.resize(dot);
    return {absolute.parent_path(), base.empty() ? std::string("nimbara") : base};
}

}  // namespace

const ComponentLocation& component_location()
{
    static const ComponentLocation location = locate();
    return location;
}

}  // namespace nimbara
