#pragma once
// Any bytes as an old database file: written to a scratch file, opened, every table read to its last
// row, and the rows checked for whether they hang together, as an import does before it writes.
// A refusal must be one of ours and name the file; anything else is a finding.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "import/integrity.hpp"
#include "import/mappings.hpp"
#include "import/procedure_run.hpp"
#include "platform/old_database.hpp"

namespace nimbara::fuzzing {

inline const std::filesystem::path& scratch_file(const char* suffix)
{
    static const std::filesystem::path file = [suffix] {
        const std::filesystem::path shm = "/dev/shm";
        const auto folder = std::filesystem::is_directory(shm) ? shm : std::filesystem::temp_directory_path();
        return folder / ("nimbara-fuzz-" + std::to_string(::getpid()) + suffix);
    }();
    return file;
}

inline void refused_with_its_name(const std::exception& e, const std::filesystem::path& file)
{
    if (std::string_view(e.what()).find(file.string()) == std::string_view::npos) __builtin_trap();
}

template <class Open>
int read_old_file(const std::uint8_t* data, std::size_t size, const char* suffix, Open open)
{
    const auto& file = scratch_file(suffix);
    std::ofstream(file, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data),
                                                                  static_cast<std::streamsize>(size));
    try {
        const auto source = open(file);
        for (const auto& name : source->table_names()) {
            const auto reader = source->open_table(name);
            platform::OldRow row;
            while (reader->next(row))
                if (row.size() != reader->column_names().size()) __builtin_trap();
        }
        import::check_integrity(*import::find_procedure("DoImportDadosTo050314"), *source);
    } catch (const platform::OldDatabaseError& e) {
        refused_with_its_name(e, file);
    } catch (const import::CopyFailed& e) {
        refused_with_its_name(e, file);
    }
    return 0;
}

}  // namespace nimbara::fuzzing
