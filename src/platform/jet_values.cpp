#include "platform/jet_values.hpp"

#include <chrono>
#include <cmath>
#include <cstdint>

namespace nimbara::platform::jet {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

void append_utf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (c >> 6)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (c >> 12)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (c >> 18)));
        out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
}

// Collects UTF-16 code units and writes whole characters, pairing surrogates.
class Utf16Writer {
public:
    explicit Utf16Writer(std::string& out) : out_(out) {}
    ~Utf16Writer() { flush(); }
    Utf16Writer(const Utf16Writer&) = delete;
    Utf16Writer& operator=(const Utf16Writer&) = delete;

    void unit(char16_t u)
    {
        if (high_) {
            if (u >= 0xDC00 && u <= 0xDFFF) {
                append_utf8(out_, 0x10000 + ((char32_t(high_) - 0xD800) << 10) + (u - 0xDC00));
                high_ = 0;
                return;
            }
            flush();
        }
        if (u >= 0xD800 && u <= 0xDBFF)
            high_ = u;
        else
            append_utf8(out_, (u >= 0xDC00 && u <= 0xDFFF) ? kReplacement : char32_t(u));
    }
    void flush()
    {
        if (high_) append_utf8(out_, kReplacement);
        high_ = 0;
    }

private:
    std::string& out_;
    char16_t high_ = 0;
};

// Windows-1252 places these characters where Latin-1 has its C1 controls; the five holes stay as they are.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

// 1 January 1970 is serial 25569.
constexpr std::int64_t kSerialOfUnixEpoch = 25569;
constexpr double kFirstSerial = -657434.0;  // 1 January 100
constexpr double kLastSerial = 2958466.0;   // 1 January 10000, excluded

}  // namespace

std::string jet4_text_to_utf8(std::span<const unsigned char> stored)
{
    std::string out;
    out.reserve(stored.size());
    {
        Utf16Writer writer(out);
        const auto stray_byte = [&] {
            writer.flush();
            append_utf8(out, kReplacement);
        };
        const std::size_t n = stored.size();
        if (n >= 2 && stored[0] == 0xFF && stored[1] == 0xFE) {
            // Jet compresses only text whose characters have no zero low byte, so a zero byte is
            // always a switch, in either mode.
            bool one_byte = true;
            for (std::size_t i = 2; i < n;) {
                if (stored[i] == 0) {
                    one_byte = !one_byte;
                    ++i;
                } else if (one_byte) {
                    writer.unit(stored[i++]);
                } else if (i + 1 < n) {
                    writer.unit(static_cast<char16_t>(stored[i] | (stored[i + 1] << 8)));
                    i += 2;
                } else {
                    stray_byte();
                    ++i;
                }
            }
        } else {
            for (std::size_t i = 0; i + 1 < n; i += 2) writer.unit(static_cast<char16_t>(stored[i] | (stored[i + 1] << 8)));
            if (n % 2 != 0) stray_byte();
        }
    }
    return out;
}

std::string cp1252_to_utf8(std::span<const unsigned char> stored)
{
    std::string out;
    out.reserve(stored.size());
    for (const unsigned char b : stored) append_utf8(out, (b >= 0x80 && b < 0xA0) ? char32_t(kCp1252High[b - 0x80]) : char32_t(b));
    return out;
}

std::optional<OldDateTime> date_time_from_serial(double serial)
{
    if (!(serial >= kFirstSerial && serial < kLastSerial)) return std::nullopt;
    double whole = 0;
    const double fraction = std::modf(serial, &whole);
    auto days = static_cast<std::int64_t>(whole);
    auto seconds = static_cast<std::int64_t>(std::llround(std::fabs(fraction) * 86400.0));
    if (seconds >= 86400) {
        seconds -= 86400;
        ++days;
    }
    using namespace std::chrono;
    const year_month_day date{sys_days{std::chrono::days{days - kSerialOfUnixEpoch}}};
    return OldDateTime{int(date.year()), int(unsigned(date.month())), int(unsigned(date.day())),
                       int(seconds / 3600), int(seconds / 60 % 60), int(seconds % 60)};
}

}  // namespace nimbara::platform::jet
