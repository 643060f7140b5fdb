#pragma once
// The printing's own log: a text file in the user's state folder unless the host names another
// (never beside the installed component), one line per entry, rolled over to ".old" when it grows
// past two million bytes.
#include <cstdint>
#include <filesystem>
#include <string_view>

namespace nimbara::printing {

inline constexpr std::uintmax_t kLogRolloverBytes = 2000000;

// $XDG_STATE_HOME/nimbara/nimbara.log (see GlobalFrameWork::DefaultPrintLog).
std::filesystem::path default_log_path();

// The file's size in bytes, or -1 when there is no such file.
std::int32_t GetLogSize(const std::filesystem::path& name);

// Appends the local date and time, a tab and the entry as one line; the default log's folder is
// made when missing, a folder named by the host never is. A log above the rollover size
// first becomes the ".old" file (replacing the one before), so the entry starts a new log.
// Throws std::runtime_error naming the file when it cannot be written.
void append_log_line(const std::filesystem::path& log, std::string_view entry);

}  // namespace nimbara::printing
