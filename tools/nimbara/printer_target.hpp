#pragma once
// What `print`, `db print` and `printers` share about the system's printers: the queue named by
// --printer checked before anything is printed, and each job sent told in words and in JSON.
#include <nlohmann/json.hpp>

#include <iosfwd>
#include <string>
#include <vector>

#include "nimbara/printer_queue.hpp"

namespace nimbara::cli {

// The message of a refusal about a queue: the library's, with "did you mean" for a misspelt queue.
std::string printer_refusal(const PrinterError& error);

// The queue, checked: a missing server, an unknown queue or a queue that rejects jobs is refused
// with std::runtime_error carrying the whole message, before anything is sent.
PrinterQueue usable_printer(const std::string& name);

// One object per job: {"copy", "job_id", "name", "state"}.
nlohmann::json jobs_json(const std::vector<QueuedJob>& jobs);

// "nimbara COMMAND: sent copy N to the queue "Q" as job ID (state)", one line per job.
void tell_jobs(std::ostream& err, const std::string& command, const std::string& queue,
               const std::vector<QueuedJob>& jobs);

}  // namespace nimbara::cli
