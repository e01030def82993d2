// The key-value store on the Linux platform, where its serial queue is a
// worker thread: callers on several threads, completions on the worker,
// results handed to the main loop as the storage bridges hand them. Under
// ThreadSanitizer (the "tsan" preset) this is the store's check across
// threads; here it also checks that no save is lost or mixed up.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "platforms/linux/linux_platform.h"
#include "vantu/storage/user_defaults_data_store_impl.h"
#include "vantu/value/json.h"

namespace vantu::linux_platform {
namespace {

namespace fs = std::filesystem;
constexpr auto kSafety = std::chrono::seconds(60);  // a safety net only: nothing here measures speed
constexpr int kCallers = 4;
constexpr int kSavesEach = 20;

std::string domainOf(int caller) { return "caller-" + std::to_string(caller); }
std::string keyOf(int save) { return "key-" + std::to_string(save); }
std::string valueOf(int caller, int save) { return std::to_string(caller) + "/" + std::to_string(save); }

TEST(StoreAcrossThreads, SavesFromSeveralThreadsAllReadBackThroughTheMainQueue) {
  const fs::path directory = fs::temp_directory_path() / ("vantu-store-threads-" + std::to_string(::getpid()));
  fs::remove_all(directory);
  LinuxPlatformOptions options;
  options.dataDirectory = directory;
  auto bundle = makeLinuxPlatform(options);
  installPlatform(bundle.platform);
  auto store = UserDefaultsDataStoreImpl::make();
  const auto main = bundle.dispatch->main();

  // Read and written on the main queue only.
  int saved = 0;
  std::vector<std::string> failures;
  std::map<std::string, Dict> read;

  std::vector<std::thread> callers;
  for (int caller = 0; caller < kCallers; ++caller) {
    callers.emplace_back([&, caller] {
      for (int save = 0; save < kSavesEach; ++save) {
        store->saveData(domainOf(caller), Dict{{keyOf(save), valueOf(caller, save)}},
                        [&, main, caller](bool success, std::optional<PlatformError>) {
                          main->async([&, caller, success] {
                            if (!success) failures.push_back("save of " + domainOf(caller));
                            ++saved;
                          });
                        });
      }
    });
  }
  for (auto& caller : callers) caller.join();
  ASSERT_TRUE(bundle.loop->runUntil([&] { return saved == kCallers * kSavesEach; }, kSafety));

  std::vector<std::string> keys;
  for (int save = 0; save < kSavesEach; ++save) keys.push_back(keyOf(save));
  for (int caller = 0; caller < kCallers; ++caller) {
    callers[caller] = std::thread([&, caller] {
      store->getData(domainOf(caller), keys, [&, main, caller](bool success, std::optional<PlatformError>, Dict result) {
        main->async([&, caller, success, result = std::move(result)] {
          if (!success) failures.push_back("read of " + domainOf(caller));
          read[domainOf(caller)] = result;
        });
      });
    });
  }
  for (auto& caller : callers) caller.join();
  ASSERT_TRUE(bundle.loop->runUntil([&] { return read.size() == kCallers; }, kSafety));

  EXPECT_EQ(failures, std::vector<std::string>{});
  for (int caller = 0; caller < kCallers; ++caller) {
    Dict expected;
    for (int save = 0; save < kSavesEach; ++save) expected.set(keyOf(save), valueOf(caller, save));
    EXPECT_EQ(json::write(read[domainOf(caller)]), json::write(Dict{{"data", expected}})) << domainOf(caller);
  }

  store.reset();
  installPlatform(nullptr);
  fs::remove_all(directory);
}

}  // namespace
}  // namespace vantu::linux_platform
