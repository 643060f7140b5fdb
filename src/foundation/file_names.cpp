#include "nimbara/GlobalFrameWork.hpp"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <random>
#include <system_error>
#include <thread>

#include "foundation/pending_file.hpp"

namespace nimbara::GlobalFrameWork {
namespace {

struct Clock {
    std::tm local{};
    double seconds_since_midnight = 0;  // with hundredths, like the old timer
};

Clock now()
{
    const auto tp = std::chrono::system_clock::now();
    const std::time_t t = std::chrono::system_clock::to_time_t(tp);
    Clock c;
    localtime_r(&t, &c.local);
    const auto centis = std::chrono::duration_cast<std::chrono::milliseconds>(tp.time_since_epoch()).count() % 1000 / 10;
    c.seconds_since_midnight = c.local.tm_hour * 3600.0 + c.local.tm_min * 60.0 + c.local.tm_sec + centis / 100.0;
    return c;
}

}  // namespace

int RandomNumber()
{
    // Reseeding from the timer makes two calls within one hundredth of a second agree, as they always did.
    const auto seed = static_cast<std::uint32_t>(std::llround(now().seconds_since_midnight * 100.0));
    std::minstd_rand generator(seed + 1);
    const double unit = std::uniform_real_distribution<double>(0.0, 1.0)(generator);
    return static_cast<int>(std::floor(unit * 100.0));
}

std::string GeraNomeFicheiro()
{
    const Clock c = now();
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y%m%d%H%M%S", &c.local);
    char timer[32];
    std::snprintf(timer, sizeof timer, "%.2f", c.seconds_since_midnight);
    const std::string timer_text(timer);
    return "ErrosGuia_" + std::string(stamp) + timer_text.substr(timer_text.size() - 2) +
           std::to_string(RandomNumber()) + ".txt";
}

std::string GetUniqueFileName(std::string_view folder)
{
    const auto in_folder = [&] { return (std::filesystem::path(folder) / GeraNomeFicheiro()).string(); };
    std::string candidate = in_folder();
    while (FileExists(candidate)) candidate = in_folder();
    return candidate;
}

std::filesystem::path WriteUniqueReport(const std::filesystem::path& folder, std::string_view contents)
{
    PendingFile file(folder);
    file.write(contents);
    file.write("\r\n");
    std::string last;
    return file.publish([&](int) {
        // Names of one hundredth of a second agree; waiting for the next one gives a new name.
        std::string name = GeraNomeFicheiro();
        while (name == last) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            name = GeraNomeFicheiro();
        }
        last = name;
        return folder / name;
    });
}

bool FileExists(const std::filesystem::path& path)
{
    std::error_code ec;
    [[maybe_unused]] const auto size = std::filesystem::file_size(path, ec);
    return !ec;
}

bool EscreveFicheiro(const std::filesystem::path& path, std::string_view contents)
{
    std::filesystem::path temp = path;
    temp += ".part";
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out) return false;
        out << contents << "\r\n";
        out.close();
        if (!out) {
            std::error_code ignored;
            std::filesystem::remove(temp, ignored);
            return false;
        }
    }
    std::error_code ec;
    std::filesystem::rename(temp, path, ec);
    if (ec) std::filesystem::remove(temp, ec);
    return !ec;
}

void RemovePendingFiles() { remove_pending_files_on_signal(); }

}  // namespace nimbara::GlobalFrameWork
