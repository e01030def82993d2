#include "platforms/linux/gobject_ptr.h"

#include <gio/gio.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace vantu::linux_platform {
namespace {

void markFinalized(gpointer flag, GObject*) { *static_cast<bool*>(flag) = true; }

TEST(GObjectPtr, TheLastOwnerGivesTheReferenceBackAndABorrowedRefKeepsTheObject) {
  bool finalized = false;
  GObjectPtr<GObject> owner(G_OBJECT(g_object_new(G_TYPE_OBJECT, nullptr)));
  g_object_weak_ref(owner.get(), markFinalized, &finalized);
  GObjectPtr<GObject> second(G_OBJECT(g_object_ref(owner.get())));
  owner.reset();
  EXPECT_FALSE(finalized);
  GObjectPtr<GObject> moved = std::move(second);
  EXPECT_FALSE(finalized);
  moved.reset();
  EXPECT_TRUE(finalized);
}

TEST(OutParam, TheOwnerTakesWhatTheCallHandsBack) {
  const auto path = std::filesystem::temp_directory_path() / ("vantu-gobject-ptr-" + std::to_string(getpid()));
  std::ofstream(path) << "contents";
  struct Case {
    std::filesystem::path file;
    bool read;
    const char* contents;  // nullptr: none handed back
    bool error;
  };
  const Case cases[] = {
      {path, true, "contents", false},
      {path.string() + ".missing", false, nullptr, true},
  };
  for (const auto& c : cases) {
    GCharPtr contents;
    GErrorPtr error;
    const bool read = g_file_get_contents(c.file.c_str(), outParam(contents), nullptr, outParam(error));
    EXPECT_EQ(read, c.read) << c.file;
    if (c.contents) {
      ASSERT_TRUE(contents) << c.file;
      EXPECT_STREQ(contents.get(), c.contents);
    } else {
      EXPECT_FALSE(contents) << c.file;
    }
    ASSERT_EQ(static_cast<bool>(error), c.error) << c.file;
    if (error) {
      EXPECT_TRUE(g_error_matches(error.get(), G_FILE_ERROR, G_FILE_ERROR_NOENT)) << error->message;
    }
  }
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace vantu::linux_platform
