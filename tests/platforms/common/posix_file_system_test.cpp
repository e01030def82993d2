// The POSIX file-system port on a real folder: what it reports, reads and
// removes beneath a folder, with symbolic links (pointing outside and
// inside), a link in place of a folder on the way, a directory and a pipe.

#include "platforms/common/posix_file_system.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <string>

namespace vantu {
namespace {

namespace fs = std::filesystem;

class PosixFileSystemBeneath : public ::testing::Test {
 protected:
  void SetUp() override {
    root = fs::temp_directory_path() / ("vantu-beneath-" + std::to_string(::getpid()) + "-" +
                                        ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(root);
    fs::create_directories(root / "outside");
    fs::create_directories(root / "base" / "box" / "sub");
    std::ofstream(root / "outside" / "secret") << "outside";
    std::ofstream(root / "base" / "box" / "file") << "inside";
    fs::create_symlink(root / "outside" / "secret", root / "base" / "box" / "to-outside");
    fs::create_symlink("file", root / "base" / "box" / "to-inside");
    fs::create_symlink(root / "outside" / "gone", root / "base" / "box" / "dangling");
    fs::create_directory_symlink(root / "outside", root / "base" / "linked-box");
    fs::create_directory_symlink(root / "base" / "box", root / "base" / "alias-box");
    ASSERT_EQ(::mkfifo((root / "base" / "box" / "pipe").c_str(), 0600), 0);
  }
  void TearDown() override { fs::remove_all(root); }

  fs::path base() const { return root / "base"; }

  fs::path root;
  PosixFileSystem files;
};

struct Entry {
  const char* relative;
  FileEntryKind kind;
  int readError;    // 0: reads "inside"
  int removeError;  // 0: removed
};

// Links, wherever they point, are never followed: at the end they are links
// (read and removal answer ENOENT, as for a missing file), on the way they are
// dead ends.
const Entry kEntries[] = {
    {"box/file/more", FileEntryKind::missing, ENOTDIR, ENOTDIR},
    {"box/file", FileEntryKind::regularFile, 0, 0},
    {"box/to-outside", FileEntryKind::symbolicLink, ENOENT, ENOENT},
    {"box/to-inside", FileEntryKind::symbolicLink, ENOENT, ENOENT},
    {"box/dangling", FileEntryKind::symbolicLink, ENOENT, ENOENT},
    {"linked-box/secret", FileEntryKind::missing, ENOENT, ENOENT},
    {"alias-box/file", FileEntryKind::missing, ENOENT, ENOENT},
    {"linked-box", FileEntryKind::symbolicLink, ENOENT, ENOENT},
    {"box/sub", FileEntryKind::directory, EISDIR, EISDIR},
    {"box/pipe", FileEntryKind::other, EINVAL, EINVAL},
    {"box/none", FileEntryKind::missing, ENOENT, ENOENT},
    {"none/file", FileEntryKind::missing, ENOENT, ENOENT},
    {"box/../box/file", FileEntryKind::missing, ENOENT, ENOENT},
    {"../base/box/file", FileEntryKind::missing, ENOENT, ENOENT},
    {"/etc/hostname", FileEntryKind::missing, ENOENT, ENOENT},
    {"", FileEntryKind::missing, ENOENT, ENOENT},
};

TEST_F(PosixFileSystemBeneath, ReachesOnlyRegularFilesWithoutFollowingLinks) {
  for (const Entry& entry : kEntries) {
    SCOPED_TRACE(entry.relative);
    EXPECT_EQ(files.entryKind(base(), entry.relative), entry.kind);
    auto read = files.readRegularFile(base(), entry.relative, 1024);
    if (entry.readError == 0) {
      ASSERT_TRUE(read.ok());
      EXPECT_EQ(std::string(read.value().data.begin(), read.value().data.end()), "inside");
    } else {
      ASSERT_FALSE(read.ok());
      EXPECT_EQ(read.error().code, entry.readError);
    }
  }
  // Removal last, so the reads above saw every entry.
  for (const Entry& entry : kEntries) {
    SCOPED_TRACE(entry.relative);
    auto removed = files.removeRegularFile(base(), entry.relative);
    EXPECT_EQ(removed ? removed->code : 0, entry.removeError);
  }
  EXPECT_FALSE(fs::exists(base() / "box" / "file"));
  // What the links point at is untouched, and the links themselves stay.
  std::ifstream secret(root / "outside" / "secret");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(secret), {}), "outside");
  for (const char* link : {"box/to-outside", "box/to-inside", "box/dangling", "linked-box", "alias-box"}) {
    EXPECT_TRUE(fs::is_symlink(base() / link)) << link;
  }
  EXPECT_TRUE(fs::is_directory(base() / "box" / "sub"));
}

TEST_F(PosixFileSystemBeneath, AFileLargerThanAskedIsNotRead) {
  EXPECT_TRUE(files.readRegularFile(base(), "box/file", 6).ok());
  auto tooLarge = files.readRegularFile(base(), "box/file", 5);
  ASSERT_FALSE(tooLarge.ok());
  EXPECT_EQ(tooLarge.error().code, EFBIG);
}

TEST_F(PosixFileSystemBeneath, TheTrustedFolderItselfMayBeALink) {
  fs::create_directory_symlink(base(), root / "base-link");
  EXPECT_EQ(files.entryKind(root / "base-link", "box/file"), FileEntryKind::regularFile);
  EXPECT_EQ(files.entryKind(root / "base-link", "box/to-outside"), FileEntryKind::symbolicLink);
}

}  // namespace
}  // namespace vantu
