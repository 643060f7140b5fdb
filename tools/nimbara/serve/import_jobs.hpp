#pragma once
// The imports that run in the background: one at a time, each on a connection of its own, their
// progress asked for by id while they run and their summary kept when they end.
#include <nlohmann/json.hpp>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "import_run.hpp"
#include "nimbara/Database.hpp"

namespace nimbara::serve {

// An uploaded file in a private temporary file (readable by this user only), removed with the object.
class UploadedFile {
public:
    explicit UploadedFile(const std::string& bytes);
    ~UploadedFile();
    UploadedFile(const UploadedFile&) = delete;
    UploadedFile& operator=(const UploadedFile&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

struct ImportJob {
    std::string state = "running";  // running, done or failed
    int done = 0;                   // the import's progress, in percent of `total`
    int total = 100;
    nlohmann::ordered_json summary;  // the import's report once it ended
};

class ImportJobs {
public:
    using Opener = std::function<std::shared_ptr<Database>()>;
    ImportJobs() = default;
    ~ImportJobs();  // waits for the import that runs
    ImportJobs(const ImportJobs&) = delete;
    ImportJobs& operator=(const ImportJobs&) = delete;

    // How a job opens its own connection; the server sets it from its --db. Without it no import starts.
    void set_opener(Opener open);
    bool can_start() const;
    // Starts importing the file, which the job owns and removes when it ends; nothing when an import runs.
    std::optional<std::int64_t> start(std::unique_ptr<UploadedFile> file, cli::ImportOptions options);
    std::optional<ImportJob> find(std::int64_t id) const;
    // Waits until the running import has ended.
    void wait();

private:
    mutable std::mutex mutex_;
    Opener open_;
    std::map<std::int64_t, ImportJob> jobs_;
    std::int64_t next_ = 1;
    bool running_ = false;
    std::thread worker_;
};

// The process's one registry, which the import handlers use.
ImportJobs& import_jobs();

}  // namespace nimbara::serve
