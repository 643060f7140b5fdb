// Any bytes as an old Jet database file (seeded with the old versions' files): opened, every table
// read, the rows checked as the import checks them, or refused with a message that names the file.
#include "old_file_run.hpp"
#include "platform/jet_source.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return nimbara::fuzzing::read_old_file(data, size, ".mdb", [](const std::filesystem::path& file) {
        return nimbara::platform::open_jet_database(file);
    });
}
