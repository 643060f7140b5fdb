#pragma once
// Telling a network file system from a local one, for the SQLite files the program is pointed at.
#include <optional>
#include <string>
#include <string_view>

namespace nimbara::platform {

// statfs's f_type of every FUSE mount.
inline constexpr unsigned long kFuseMagic = 0x65735546;

// The name of a network file system from statfs's f_type and the mount table's type of the mount
// point ("fuse.sshfs"); nothing for a local one. FUSE carries local and remote file systems alike,
// so for it the mount table's type decides.
std::optional<std::string> network_file_system(unsigned long magic, std::string_view mount_type);

// The type of the mount that holds `path` (an absolute, resolved path) in /proc/self/mountinfo's
// text: the mount point that is the longest prefix of the path wins, the last mounted on a tie.
std::string mount_type_of(std::string_view path, std::string_view mountinfo);

}  // namespace nimbara::platform
