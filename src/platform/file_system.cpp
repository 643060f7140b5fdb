#include "platform/file_system.hpp"

#include <sys/vfs.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "nimbara/Database.hpp"

namespace nimbara::platform {
namespace {

struct Magic {
    unsigned long value;
    const char* name;
};

// statfs's f_type of the network file systems Linux mounts (linux/magic.h and the file systems' own headers).
constexpr Magic kNetwork[] = {
    {0x6969, "nfs"},        {0x517B, "smb"},       {0xFF534D42, "cifs"}, {0xFE534D42, "smb2"},
    {0x01021997, "9p"},     {0x5346414F, "afs"},   {0x6B414653, "afs"},  {0x00C36400, "ceph"},
    {0x73757245, "coda"},   {0x564C, "ncp"},       {0x47504653, "gpfs"}, {0x0BD00BD0, "lustre"},
    {0x013111A8, "ibrix"},  {0xAAD7AAEA, "panfs"},
};

constexpr unsigned long kFuse = kFuseMagic;

// FUSE file systems that reach another machine.
constexpr std::string_view kRemoteFuse[] = {"sshfs",  "rclone", "s3fs",      "gcsfuse", "curlftpfs", "davfs",
                                            "glusterfs", "cephfs", "smbnetfs", "goofys",  "juicefs",  "moosefs"};

// Undoes the octal escapes of mountinfo ("\040" for a blank).
std::string unescaped(std::string_view field)
{
    std::string out;
    for (std::size_t i = 0; i < field.size(); ++i) {
        if (field[i] == '\\' && i + 3 < field.size()) {
            const auto digits = field.substr(i + 1, 3);
            if (digits.find_first_not_of("01234567") == std::string_view::npos) {
                out += static_cast<char>((digits[0] - '0') * 64 + (digits[1] - '0') * 8 + (digits[2] - '0'));
                i += 3;
                continue;
            }
        }
        out += field[i];
    }
    return out;
}

bool under(std::string_view path, std::string_view mount_point)
{
    if (mount_point == "/") return true;
    return path.starts_with(mount_point) && (path.size() == mount_point.size() || path[mount_point.size()] == '/');
}

}  // namespace

std::optional<std::string> network_file_system(unsigned long magic, std::string_view mount_type)
{
    if (magic == kFuse) {
        // "fuse.sshfs", or "fuse" with the subtype alone ("sshfs") on older mount tables.
        std::string_view sub = mount_type;
        for (std::string_view prefix : {"fuse.", "fuseblk."})
            if (sub.starts_with(prefix)) sub.remove_prefix(prefix.size());
        for (const auto remote : kRemoteFuse)
            if (sub == remote) return std::string(mount_type);
        return std::nullopt;
    }
    for (const auto& m : kNetwork)
        if (m.value == magic) return std::string(m.name);
    return std::nullopt;
}

std::string mount_type_of(std::string_view path, std::string_view mountinfo)
{
    std::string best_point, best_type;
    std::istringstream lines{std::string(mountinfo)};
    for (std::string line; std::getline(lines, line);) {
        // ID PARENT MAJ:MIN ROOT MOUNT-POINT OPTIONS [OPTIONAL...] - TYPE SOURCE SUPER-OPTIONS
        std::istringstream fields(line);
        std::string id, parent, device, root, point;
        if (!(fields >> id >> parent >> device >> root >> point)) continue;
        std::string word, type;
        while (fields >> word && word != "-") {}
        if (!(fields >> type)) continue;
        point = unescaped(point);
        if (under(path, point) && point.size() >= best_point.size()) {
            best_point = point;
            best_type = type;
        }
    }
    return best_type;
}

}  // namespace nimbara::platform

namespace nimbara {

std::optional<std::string> NetworkFileSystemOf(const std::string& file)
{
    std::error_code ec;
    std::filesystem::path place = std::filesystem::absolute(file, ec);
    if (ec) return std::nullopt;
    while (!place.empty() && !std::filesystem::exists(place, ec)) {
        if (place == place.parent_path()) return std::nullopt;
        place = place.parent_path();
    }
    struct statfs about {};
    if (::statfs(place.c_str(), &about) != 0) return std::nullopt;
    const auto magic = static_cast<unsigned long>(about.f_type);
    std::string mount_type;
    if (magic == platform::kFuseMagic) {
        std::ifstream in("/proc/self/mountinfo");
        const std::string table((std::istreambuf_iterator<char>(in)), {});
        mount_type = platform::mount_type_of(std::filesystem::canonical(place, ec).string(), table);
    }
    return platform::network_file_system(magic, mount_type);
}

}  // namespace nimbara
