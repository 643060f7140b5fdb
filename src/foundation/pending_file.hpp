#pragma once
// A file written whole under a temporary name in its folder, then published under the first free name
// of a sequence. Names are taken with link(), which never replaces a file, so writers in other threads
// and processes never take the same name, and a reader never sees half a file.
#include <cstdio>
#include <filesystem>
#include <functional>
#include <string_view>

namespace nimbara {

class PendingFile {
public:
    // Creates the temporary in `folder`; throws std::system_error naming the folder and the cause.
    explicit PendingFile(const std::filesystem::path& folder);
    // A file never published leaves nothing behind.
    ~PendingFile();
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;

    std::FILE* stream() const { return stream_; }
    // Appends bytes; throws std::system_error with the cause when the device refuses them.
    void write(std::string_view bytes);

    // Flushes and closes the temporary, then gives it the first name of candidate(1), candidate(2)...
    // that is free. Throws std::system_error with the cause (a full device, a folder gone); the
    // temporary is removed then.
    std::filesystem::path publish(const std::function<std::filesystem::path(int attempt)>& candidate);

    // Removes the temporary now.
    void discard();

private:
    std::filesystem::path temporary_;
    std::FILE* stream_ = nullptr;
};

// Removes the temporaries of every PendingFile still alive; safe to call from a signal handler.
void remove_pending_files_on_signal();

}  // namespace nimbara
