// Any bytes as a SQLite file holding the old tables: opened, every table read, the rows checked as
// the import checks them, or refused with a message that names the file.
#include "old_file_run.hpp"
#include "platform/sqlite_source.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return nimbara::fuzzing::read_old_file(data, size, ".sqlite", [](const std::filesystem::path& file) {
        return nimbara::platform::open_sqlite_source(file);
    });
}
