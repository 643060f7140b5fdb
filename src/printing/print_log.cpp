#include "printing/print_log.hpp"

#include <chrono>
#include <ctime>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string>

#include "foundation/run_time_errors.hpp"
#include "nimbara/GlobalFrameWork.hpp"

namespace nimbara::printing {
namespace {

std::string now_text()
{
    const std::time_t t = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    localtime_r(&t, &local);
    char buf[32];
    std::strftime(buf, sizeof buf, "%Y-%m-%d %H:%M:%S", &local);
    return buf;
}

}  // namespace

std::filesystem::path default_log_path() { return GlobalFrameWork::DefaultPrintLog(); }

std::int32_t GetLogSize(const std::filesystem::path& name)
{
    std::error_code ec;
    if (!std::filesystem::is_regular_file(name, ec)) return -1;
    const auto size = std::filesystem::file_size(name, ec);
    if (ec) throw std::runtime_error("cannot read the size of \"" + name.string() + "\": " + ec.message());
    if (size > static_cast<std::uintmax_t>(std::numeric_limits<std::int32_t>::max())) raise(RunTimeError::Overflow);
    return static_cast<std::int32_t>(size);
}

void append_log_line(const std::filesystem::path& log, std::string_view entry)
{
    if (const auto size = GetLogSize(log); size >= 0 && static_cast<std::uintmax_t>(size) > kLogRolloverBytes) {
        auto old = log;
        old.replace_extension(".old");
        std::error_code ec;
        std::filesystem::rename(log, old, ec);
        if (ec) throw std::runtime_error("cannot roll \"" + log.string() + "\" over to \"" + old.string() + "\": " + ec.message());
    }
    // The default log lives in the user's state folder, which may not exist yet.
    if (const auto folder = log.parent_path(); !folder.empty() && log == default_log_path()) {
        std::error_code ec;
        std::filesystem::create_directories(folder, ec);
        if (ec) throw std::runtime_error("cannot make the folder of \"" + log.string() + "\": " + ec.message());
    }
    std::ofstream out(log, std::ios::app | std::ios::binary);
    out << now_text() << '\t' << entry << '\n';
    out.flush();
    if (!out) throw std::runtime_error("cannot write \"" + log.string() + "\"");
}

}  // namespace nimbara::printing
