#include "printer_target.hpp"

#include <ostream>
#include <stdexcept>

#include "suggest.hpp"

namespace nimbara::cli {

std::string printer_refusal(const PrinterError& error)
{
    std::string message = error.what();
    if (error.fault() != PrinterFault::UnknownQueue) return message;
    // The name sits between the first pair of quotes of the library's message.
    const auto open = message.find('"'), close = message.find('"', open + 1);
    if (open == std::string::npos || close == std::string::npos) return message;
    if (const auto near = closest(message.substr(open + 1, close - open - 1), error.queues()))
        message += "; did you mean \"" + *near + "\"?";
    return message;
}

PrinterQueue usable_printer(const std::string& name)
{
    PrinterQueue queue;
    try {
        queue = find_printer(name);
    } catch (const PrinterError& e) {
        throw std::runtime_error(printer_refusal(e));
    }
    if (!queue.accepting_jobs)
        throw std::runtime_error("the queue \"" + name + "\" is not accepting jobs" +
                                 (queue.state_message.empty() ? std::string() : ": " + queue.state_message) +
                                 "; nothing was sent");
    return queue;
}

nlohmann::json jobs_json(const std::vector<QueuedJob>& jobs)
{
    auto out = nlohmann::json::array();
    for (const auto& j : jobs)
        out.push_back({{"copy", j.copy}, {"job_id", j.id}, {"name", j.name}, {"state", j.state}});
    return out;
}

void tell_jobs(std::ostream& err, const std::string& command, const std::string& queue,
               const std::vector<QueuedJob>& jobs)
{
    for (const auto& j : jobs)
        err << "nimbara " << command << ": sent copy " << j.copy << " to the queue \"" << queue << "\" as job " << j.id
            << " (" << (j.state.empty() ? "state unknown" : j.state) << ")\n";
}

}  // namespace nimbara::cli
