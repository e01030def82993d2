// Helper program of the durability test: saves values through the data
// store on the simulated device backed by the SQLite store in DIR, and
// writes "<n>\n" to file descriptor FD after the save of key "<prefix><n>"
// has completed. Runs until it is killed.
//
//   storage_durability_child DIR FD PREFIX

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platforms/sim/sim_device.h"
#include "vantu/storage/secure_string_hasher.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: %s DIR FD PREFIX\n", argv[0]);
    return 2;
  }
  int fd = std::atoi(argv[2]);
  std::string prefix = argv[3];
  vantu::sim::SimDevice device{std::filesystem::path(argv[1])};
  device.install();
  auto store = vantu::UserDefaultsDataStoreImpl::shared();
  auto domain = vantu::sandboxDomainName("durable.app");
  for (std::int64_t n = 0;; ++n) {
    bool ok = false;
    store->saveData(domain, vantu::Dict{{prefix + std::to_string(n), n}, {"last", n}},
                    [&](bool success, std::optional<vantu::PlatformError>) { ok = success; });
    device.dispatch().runReady();
    if (!ok) {
      std::fprintf(stderr, "durability child: save %lld failed\n", static_cast<long long>(n));
      return 1;
    }
    std::string line = std::to_string(n) + "\n";
    if (write(fd, line.data(), line.size()) != static_cast<ssize_t>(line.size())) return 1;
  }
}
