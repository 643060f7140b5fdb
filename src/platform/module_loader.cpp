#include "platform/module_loader.hpp"

#include <dlfcn.h>

#include <map>
#include <mutex>
#include <utility>

#include "nimbara/version.hpp"

namespace nimbara::platform {
namespace {

std::string loader_reason()
{
    const char* why = ::dlerror();
    return why ? why : "no reason given";
}

}  // namespace

Module::Module(std::string file) : file_(std::move(file)), handle_(::dlopen(file_.c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (!handle_) throw ModuleError("cannot load the module \"" + file_ + "\": " + loader_reason());
}

Module::~Module() { ::dlclose(handle_); }

void* Module::address(const char* symbol) const
{
    ::dlerror();
    void* found = ::dlsym(handle_, symbol);
    if (!found) throw ModuleError("the module \"" + file_ + "\" has no entry " + symbol + ": " + loader_reason());
    return found;
}

std::string module_file(std::string_view name)
{
    return "libnimbara-" + std::string(name) + ".so." + std::string(kVersionText);
}

const Module& loaded_module(std::string_view name)
{
    static std::mutex guard;
    // Never destroyed, so that no module is closed while the process is ending (see the header).
    static auto& modules = *new std::map<std::string, Module, std::less<>>;
    const std::lock_guard lock(guard);
    if (const auto it = modules.find(name); it != modules.end()) return it->second;
    return modules.try_emplace(std::string(name), module_file(name)).first->second;
}

}  // namespace nimbara::platform
