// The standard-output console of the Linux platform.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "platforms/linux/linux_platform.h"

namespace vantu::linux_platform {
namespace {

TEST(StreamConsole, WritesEachLineWithANewline) {
  std::FILE* file = std::tmpfile();
  ASSERT_NE(file, nullptr);
  StreamConsole console(file);
  console.printLine("first line");
  console.printLine("");
  console.printLine("third");
  std::rewind(file);
  char buffer[64] = {};
  auto got = std::fread(buffer, 1, sizeof buffer - 1, file);
  std::fclose(file);
  EXPECT_EQ(std::string(buffer, got), "first line\n\nthird\n");
}

}  // namespace
}  // namespace vantu::linux_platform
