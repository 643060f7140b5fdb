#include "foundation/pending_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <random>
#include <system_error>

namespace nimbara {
namespace {

// The temporaries alive in this process, in fixed slots so that a signal handler can walk them
// without allocating or locking.
constexpr std::size_t kSlots = 64;
constexpr std::size_t kPathMax = 4096;
struct Slot {
    std::atomic<bool> used{false};
    char path[kPathMax]{};
};
constinit std::array<Slot, kSlots> g_slots;
std::mutex g_slots_mutex;

Slot* claim_slot(const std::string& path)
{
    if (path.size() >= kPathMax) return nullptr;
    const std::lock_guard lock(g_slots_mutex);
    for (auto& s : g_slots) {
        if (s.used.load()) continue;
        std::memcpy(s.path, path.c_str(), path.size() + 1);
        s.used.store(true);
        return &s;
    }
    return nullptr;  // more live temporaries than slots: only the signal cleanup misses them
}

void release(Slot* slot)
{
    if (!slot) return;
    const std::lock_guard lock(g_slots_mutex);
    slot->used.store(false);
}

void release_slot(const std::string& path)
{
    const std::lock_guard lock(g_slots_mutex);
    for (auto& s : g_slots)
        if (s.used.load() && path == s.path) {
            s.used.store(false);
            return;
        }
}

[[noreturn]] void fail(int error, const std::string& what)
{
    throw std::system_error(error, std::generic_category(), what);
}

// Fills the six X before the suffix with letters and digits drawn at random.
void fill_random(char* name, std::size_t length)
{
    static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    thread_local std::mt19937_64 random{std::random_device{}() ^ static_cast<std::uint64_t>(::getpid())};
    char* x = name + length - 5 - 6;  // ".part" follows the six
    for (int i = 0; i < 6; ++i) x[i] = kLetters[random() % (sizeof kLetters - 1)];
}

}  // namespace

PendingFile::PendingFile(const std::filesystem::path& folder)
{
    std::string pattern = (folder.empty() ? std::filesystem::path(".") : folder) / ".nimbara-XXXXXX.part";
    // The slot is claimed before the file exists and the name is made inside it, so that a signal at
    // any moment finds every temporary this process has made.
    Slot* slot = claim_slot(pattern);
    char* name = slot ? slot->path : pattern.data();
    // Created with open() rather than mkstemps, so that the file gets the permissions the umask
    // allows, as any other file the user makes, rather than always 0600.
    int fd = -1;
    int error = EEXIST;
    for (int attempt = 0; attempt < 100 && fd < 0 && error == EEXIST; ++attempt) {
        fill_random(name, pattern.size());
        fd = ::open(name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0) error = errno;
    }
    if (fd < 0) {
        release(slot);
        fail(error, "cannot write in the folder \"" + folder.string() + "\"");
    }
    temporary_ = name;
    stream_ = ::fdopen(fd, "wb");
    if (!stream_) {
        const int fdopen_error = errno;
        ::close(fd);
        discard();
        fail(fdopen_error, "cannot write in the folder \"" + folder.string() + "\"");
    }
}

PendingFile::~PendingFile() { discard(); }

void PendingFile::write(std::string_view bytes)
{
    if (!stream_) fail(EBADF, "the file was already closed");
    if (std::fwrite(bytes.data(), 1, bytes.size(), stream_) != bytes.size())
        fail(errno, "cannot write \"" + temporary_.parent_path().string() + "\"");
}

std::filesystem::path PendingFile::publish(const std::function<std::filesystem::path(int attempt)>& candidate)
{
    const auto folder = temporary_.parent_path().string();
    if (!stream_) fail(EBADF, "the file was already closed");
    const bool flushed = std::fflush(stream_) == 0 && !std::ferror(stream_);
    const int flush_error = errno;
    const bool closed = std::fclose(stream_) == 0;
    const int close_error = errno;
    stream_ = nullptr;
    if (!flushed || !closed) {
        discard();
        fail(!flushed ? flush_error : close_error, "cannot write in the folder \"" + folder + "\"");
    }
    for (int attempt = 1;; ++attempt) {
        const auto name = candidate(attempt);
        if (::link(temporary_.c_str(), name.c_str()) == 0) {
            discard();
            return name;
        }
        if (errno != EEXIST) {
            const int error = errno;
            discard();
            fail(error, "cannot write \"" + name.string() + "\"");
        }
    }
}

void PendingFile::discard()
{
    if (stream_) {
        std::fclose(stream_);
        stream_ = nullptr;
    }
    if (!temporary_.empty()) {
        ::unlink(temporary_.c_str());
        release_slot(temporary_.string());
        temporary_.clear();
    }
}

void remove_pending_files_on_signal()
{
    for (auto& s : g_slots)
        if (s.used.load()) ::unlink(s.path);
}

}  // namespace nimbara
