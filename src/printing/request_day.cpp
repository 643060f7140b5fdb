#include "printing/request_day.hpp"

#include <chrono>
#include <stdexcept>

namespace nimbara::printing {

std::string D_Req_Jul(const Timestamp& D_Req)
{
    using namespace std::chrono;
    const year y{D_Req.year};
    const year_month_day date{y, month{static_cast<unsigned>(D_Req.month)}, day{static_cast<unsigned>(D_Req.day)}};
    if (!date.ok() || D_Req.year < 0) throw std::invalid_argument("no date of a request: " + D_Req.text());
    // The day number is the date less the last day of the year before.
    const auto number = (sys_days{date} - sys_days{y / January / 1}).count() + 1;
    const std::string digits = std::to_string(number);
    return std::to_string(D_Req.year % 10) + std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits;
}

std::optional<std::string> day_code_of(std::string_view date)
{
    try {
        return D_Req_Jul(Timestamp::parse(date));
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

}  // namespace nimbara::printing
