// A SQLite file on a network file system is told apart from a local one.
#include <gtest/gtest.h>

#include "nimbara/Database.hpp"
#include "platform/file_system.hpp"
#include "support/temp_folder.hpp"

namespace nimbara::platform {
namespace {

TEST(NetworkFileSystem, IsToldByTheFileSystemsMagicAndForFuseByTheMountType)
{
    struct Case {
        unsigned long magic;
        const char* mount_type;
        std::optional<std::string> network;
    };
    const Case cases[] = {
        {0x6969, "nfs4", "nfs"},
        {0xFF534D42, "cifs", "cifs"},
        {0xFE534D42, "smb3", "smb2"},
        {0x01021997, "9p", "9p"},
        {0x00C36400, "ceph", "ceph"},
        {kFuseMagic, "fuse.sshfs", "fuse.sshfs"},
        {kFuseMagic, "fuse.rclone", "fuse.rclone"},
        {kFuseMagic, "fuse.ntfs-3g", std::nullopt},
        {kFuseMagic, "fuse-overlayfs", std::nullopt},
        {0xEF53, "ext4", std::nullopt},
        {0x58465342, "xfs", std::nullopt},
        {0x01021994, "tmpfs", std::nullopt},
        {0x794C7630, "overlay", std::nullopt},
    };
    for (const auto& c : cases) EXPECT_EQ(network_file_system(c.magic, c.mount_type), c.network) << c.mount_type;
}

TEST(NetworkFileSystem, TheMountHoldingAPathIsItsLongestMountPoint)
{
    const std::string mountinfo =
        "22 1 259:2 / / rw,relatime shared:1 - ext4 /dev/root rw\n"
        "40 22 0:38 / /home/ana/remote rw,nosuid - fuse.sshfs ana@server:/srv rw,user_id=1000\n"
        "41 22 0:39 / /mnt/guias\\040partilhadas rw shared:7 master:2 - nfs4 server:/guias rw\n"
        "42 22 0:40 / /home/ana/remote2 rw - ext4 /dev/sdb1 rw\n";
    struct Case {
        const char* path;
        const char* type;
    };
    const Case cases[] = {
        {"/home/ana/remote/loja.db", "fuse.sshfs"},
        {"/home/ana/remote", "fuse.sshfs"},
        {"/home/ana/remote2/loja.db", "ext4"},
        {"/home/ana/remoteX", "ext4"},
        {"/mnt/guias partilhadas/loja.db", "nfs4"},
        {"/srv/loja.db", "ext4"},
    };
    for (const auto& c : cases) EXPECT_EQ(mount_type_of(c.path, mountinfo), c.type) << c.path;
}

TEST(NetworkFileSystem, ALocalFileOrOneNotMadeYetIsNotOnOne)
{
    const testing::TempFolder folder;
    const auto file = folder.write("local.db", "x");
    if (NetworkFileSystemOf(file)) GTEST_SKIP() << "the temporary folder is on a network file system";
    EXPECT_EQ(NetworkFileSystemOf((folder.path() / "not" / "yet.db").string()), std::nullopt);
}

}  // namespace
}  // namespace nimbara::platform
