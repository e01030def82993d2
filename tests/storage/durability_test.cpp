// A completed save survives SIGKILL at any moment: a child saves through the store and reports
// each completed save on a pipe; the parent kills it, reopens the database and looks for them.

#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <sstream>
#include <thread>

#include "platforms/store/sqlite_preferences.h"
#include "vantu/storage/secure_string_hasher.h"

namespace vantu {
namespace {

TEST(Durability, EveryReportedSaveSurvivesSigkill) {
  std::string pattern = (std::filesystem::temp_directory_path() / "vantu-durability-XXXXXX").string();
  ASSERT_NE(mkdtemp(pattern.data()), nullptr);
  const std::filesystem::path dir = pattern;
  const auto seed = static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count());
  std::mt19937 random(seed);
  std::uniform_int_distribution<int> killAfterMicros(0, 50000);
  const std::string domain = sandboxDomainName("durable.app");
  for (int cycle = 0; cycle < 100; ++cycle) {
    SCOPED_TRACE("cycle " + std::to_string(cycle) + " of the run with seed " + std::to_string(seed));
    int pipeFds[2];
    ASSERT_EQ(pipe(pipeFds), 0);
    const std::string prefix = "c" + std::to_string(cycle) + "_";
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      close(pipeFds[0]);
      const std::string fd = std::to_string(pipeFds[1]);
      execl(VANTU_DURABILITY_CHILD, VANTU_DURABILITY_CHILD, dir.c_str(), fd.c_str(), prefix.c_str(), nullptr);
      _exit(127);
    }
    close(pipeFds[1]);
    // Kill at a random moment after the first completed save, so every cycle
    // dies while saving whatever the start-up time of the child.
    std::string reported;  // "<n>\n" per completed save
    char buffer[4096];
    ssize_t got;
    pollfd ready{pipeFds[0], POLLIN, 0};
    while (reported.find('\n') == std::string::npos && poll(&ready, 1, 20000) > 0 &&
           (got = read(pipeFds[0], buffer, sizeof buffer)) > 0) {
      reported.append(buffer, static_cast<std::size_t>(got));
    }
    std::this_thread::sleep_for(std::chrono::microseconds(killAfterMicros(random)));
    ASSERT_EQ(kill(child, SIGKILL), 0);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "the child ended by itself with status " << status;
    // Everything the child wrote before it died is still in the pipe.
    while ((got = read(pipeFds[0], buffer, sizeof buffer)) > 0) reported.append(buffer, static_cast<std::size_t>(got));
    close(pipeFds[0]);

    std::vector<std::int64_t> saves;
    std::istringstream lines(reported.substr(0, reported.rfind('\n') + 1));  // whole lines only
    for (std::int64_t n; lines >> n;) saves.push_back(n);
    // The kill moments must reach into the saving, not only the start-up.
    ASSERT_FALSE(saves.empty()) << "the child reported no save";
    store::SqlitePreferences reopened(store::SqlitePreferencesOptions{dir, {}});
    auto suite = reopened.suite(domain);
    ASSERT_TRUE(suite);
    for (auto n : saves) {
      auto value = suite->get(prefix + std::to_string(n));
      ASSERT_TRUE(value.ok() && value.value() == PreferenceValue(n)) << prefix << n << " is missing";
    }
  }
  std::error_code ignored;
  std::filesystem::remove_all(dir, ignored);
}

}  // namespace
}  // namespace vantu
