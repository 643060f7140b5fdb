#include "import_jobs.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <sstream>
#include <stdexcept>

namespace nimbara::serve {
namespace {

// The import's progress reaches the job while it runs; messages are the job's summary's business.
class JobNotifier final : public Notifier {
public:
    JobNotifier(std::mutex& mutex, ImportJob& job) : mutex_(mutex), job_(job) {}
    void message(MessageIcon, std::string_view, std::string_view) override {}
    void busy(bool) override {}
    void progress(int value) override
    {
        const std::lock_guard lock(mutex_);
        // The reset to 0 at the end is no step back.
        if (value > job_.done) job_.done = value;
    }

private:
    std::mutex& mutex_;
    ImportJob& job_;
};

}  // namespace

UploadedFile::UploadedFile(const std::string& bytes)
{
    std::string name = (std::filesystem::temp_directory_path() / "nimbara-upload-XXXXXX.mdb").string();
    const int fd = ::mkstemps(name.data(), 4);  // mode 0600
    if (fd < 0) throw std::runtime_error(std::string("cannot make a temporary file for the upload: ") + std::strerror(errno));
    path_ = name;
    for (std::size_t written = 0; written < bytes.size();) {
        const auto n = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            const std::string why = std::strerror(errno);
            ::close(fd);
            std::filesystem::remove(path_);
            throw std::runtime_error("cannot write the upload to a temporary file: " + why);
        }
        written += static_cast<std::size_t>(n);
    }
    ::close(fd);
}

UploadedFile::~UploadedFile()
{
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

ImportJobs::~ImportJobs() { wait(); }

void ImportJobs::set_opener(Opener open)
{
    const std::lock_guard lock(mutex_);
    open_ = std::move(open);
}

bool ImportJobs::can_start() const
{
    const std::lock_guard lock(mutex_);
    return static_cast<bool>(open_);
}

std::optional<std::int64_t> ImportJobs::start(std::unique_ptr<UploadedFile> file, cli::ImportOptions options)
{
    std::unique_lock lock(mutex_);
    if (running_ || !open_) return std::nullopt;
    if (worker_.joinable()) worker_.join();  // the last one has ended: its thread is only collected
    const std::int64_t id = next_++;
    jobs_[id] = ImportJob{};
    running_ = true;
    options.file = file->path().string();
    options.dry_run = false;
    worker_ = std::thread([this, id, options, open = open_, file = std::shared_ptr<UploadedFile>(std::move(file))] {
        ImportJob* job = nullptr;
        {
            const std::lock_guard l(mutex_);
            job = &jobs_[id];  // map nodes stay where they are
        }
        JobNotifier progress(mutex_, *job);
        std::ostringstream warnings;
        nlohmann::ordered_json summary;
        bool ok = false;
        try {
            const auto outcome = cli::run_import(options, open, progress, nullptr, warnings);
            summary = outcome.document;
            ok = outcome.status == 0;
        } catch (const std::exception& e) {
            summary = {{"command", "nimbara db import"}, {"status", 2}, {"error", e.what()}};
        }
        summary.erase("file");  // the temporary file's name means nothing to whoever uploaded it
        const std::lock_guard l(mutex_);
        job->state = ok ? "done" : "failed";
        if (ok) job->done = job->total;
        job->summary = std::move(summary);
        running_ = false;
    });
    return id;
}

std::optional<ImportJob> ImportJobs::find(std::int64_t id) const
{
    const std::lock_guard lock(mutex_);
    const auto found = jobs_.find(id);
    if (found == jobs_.end()) return std::nullopt;
    return found->second;
}

void ImportJobs::wait()
{
    std::thread ended;
    {
        const std::lock_guard lock(mutex_);
        ended = std::move(worker_);
    }
    if (ended.joinable()) ended.join();
}

ImportJobs& import_jobs()
{
    static ImportJobs jobs;
    return jobs;
}

}  // namespace nimbara::serve
