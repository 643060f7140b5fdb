#include "platform/module_loader.hpp"

#include <dlfcn.h>

#include <cstddef>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "nimbara/version.hpp"

namespace nimbara::platform {
namespace {

std::string loader_reason()
{
    const char* why = ::dlerror();
    return why ? why : "no reason given";
}

// The folders the dynamic loader searches for the object holding this code (its RUNPATH expanded,
// among others). dlopen searches them for its caller, but a tool that wraps dlopen (a sanitizer's
// runtime, a preloaded library) becomes the caller, with folders of its own.
std::vector<std::string> own_search_folders()
{
    Dl_info info{};
    if (::dladdr(reinterpret_cast<void*>(&own_search_folders), &info) == 0) return {};
    void* self = ::dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    if (!self) self = ::dlopen(nullptr, RTLD_LAZY);  // linked into the program itself
    std::vector<std::string> folders;
    Dl_serinfo size{};
    if (self && ::dlinfo(self, RTLD_DI_SERINFOSIZE, &size) == 0) {
        std::vector<std::max_align_t> storage(size.dls_size / sizeof(std::max_align_t) + 1);
        auto* paths = reinterpret_cast<Dl_serinfo*>(storage.data());
        *paths = size;
        if (::dlinfo(self, RTLD_DI_SERINFO, paths) == 0)
            for (unsigned i = 0; i < paths->dls_cnt; ++i) folders.emplace_back(paths->dls_serpath[i].dls_name);
    }
    if (self) ::dlclose(self);
    return folders;
}

void* open_module(const std::string& file)
{
    if (void* handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) return handle;
    const std::string reason = loader_reason();
    if (file.find('/') == std::string::npos)
        for (const auto& folder : own_search_folders())
            if (void* handle = ::dlopen((folder + "/" + file).c_str(), RTLD_NOW | RTLD_LOCAL)) return handle;
    throw ModuleError("cannot load the module \"" + file + "\": " + reason);
}

}  // namespace

Module::Module(std::string file) : file_(std::move(file)), handle_(open_module(file_)) {}

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
