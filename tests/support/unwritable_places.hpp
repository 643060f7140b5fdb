#pragma once
// Folders where writing fails for a reason of the machine's rather than of the path: one on a file
// system that is full, one that cannot be written. Each is a small memory file system mounted for
// the test when the test may mount. Otherwise the read-only one is a folder without write
// permission (which binds everyone but the superuser) and the full one is not to be had.
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "support/temp_folder.hpp"

namespace nimbara::testing {

class UnwritableFolder {
public:
    enum class Kind { Full, ReadOnly };

    explicit UnwritableFolder(Kind kind) : scratch_(std::string("unwritable-") + (kind == Kind::Full ? "full" : "ro"))
    {
        const auto dir = scratch_.path() / "folder";
        std::filesystem::create_directories(dir);
        if (::mount("tmpfs", dir.c_str(), "tmpfs", 0, "size=16k") == 0) {
            mounted_ = true;
            if (kind == Kind::Full) {
                std::ofstream fill(dir / "fill", std::ios::binary);
                const std::string block(4096, 'x');
                while (fill.write(block.data(), static_cast<std::streamsize>(block.size()))) {
                }
            } else if (::mount("tmpfs", dir.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, "size=16k") != 0) {
                return;
            }
            path_ = dir;
        } else if (kind == Kind::ReadOnly && ::geteuid() != 0) {
            ::chmod(dir.c_str(), 0555);
            path_ = dir;
        }
    }
    ~UnwritableFolder()
    {
        const auto dir = scratch_.path() / "folder";
        if (mounted_) ::umount2(dir.c_str(), MNT_DETACH);
        ::chmod(dir.c_str(), 0755);
    }
    UnwritableFolder(const UnwritableFolder&) = delete;
    UnwritableFolder& operator=(const UnwritableFolder&) = delete;

    // The folder, or nothing when this machine cannot make one of its kind.
    const std::optional<std::filesystem::path>& path() const { return path_; }

private:
    TempFolder scratch_;
    bool mounted_ = false;
    std::optional<std::filesystem::path> path_;
};

}  // namespace nimbara::testing
