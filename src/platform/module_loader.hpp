#pragma once
// The heavy libraries (the PostgreSQL client, cairo and pango, libmdb) live in modules: small shared
// objects opened on first use, so that a program which only prints with the standard faces never
// loads, relocates or initialises them. Each module exports one factory with C linkage; its type is
// declared in the header both sides share, so the host calls it typed.
#include <stdexcept>
#include <string>
#include <string_view>

namespace nimbara::platform {

// A module that cannot be opened, or that lacks its factory. The message names the file and carries
// the dynamic loader's own reason.
class ModuleError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// One opened shared object, closed when dropped.
class Module {
public:
    // `file` is a bare file name, looked for where the dynamic loader looks for the code that calls
    // this (the RUNPATH the build and the install give the library and the program, then
    // LD_LIBRARY_PATH), or a path.
    explicit Module(std::string file);
    ~Module();
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    const std::string& file() const { return file_; }

    // The module's function called `symbol`, of type Fn (a function type shared with the module).
    template <class Fn>
    Fn* entry(const char* symbol) const
    {
        return reinterpret_cast<Fn*>(address(symbol));
    }

private:
    void* address(const char* symbol) const;

    std::string file_;
    void* handle_;
};

// The file of the module called `name`: "libnimbara-NAME.so.VERSION". The calls between the library
// and its modules pass the library's internal types, so a module serves only the exact version
// that was built with it.
std::string module_file(std::string_view name);

// The module called `name`, opened by the first call and kept open until the process ends: what it
// made (a database connection shared across objects, pango's font map, glib's registered types)
// may outlive any owner we could close it with, and glib cannot be unloaded anyway. Thread-safe.
const Module& loaded_module(std::string_view name);

}  // namespace nimbara::platform
