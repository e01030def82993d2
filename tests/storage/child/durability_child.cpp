// The durability test's child: `storage_durability_child DIR FD PREFIX` saves
// key "<PREFIX><n>" for n = 0, 1, ... through the data store (simulated device,
// SQLite store in DIR) and writes "<n>\n" to FD once each save has completed.
// Runs until it is killed.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "platforms/sim/sim_device.h"
#include "vantu/storage/secure_string_hasher.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

int main(int argc, char** argv) {
  if (argc != 4) return std::fprintf(stderr, "usage: %s DIR FD PREFIX\n", argv[0]), 2;
  const int fd = std::atoi(argv[2]);
  const std::string prefix = argv[3];
  vantu::sim::SimDevice device{std::filesystem::path(argv[1])};
  device.install();
  auto store = vantu::UserDefaultsDataStoreImpl::shared();
  const auto domain = vantu::sandboxDomainName("durable.app");
  for (std::int64_t n = 0;; ++n) {
    bool ok = false;
    store->saveData(domain, vantu::Dict{{prefix + std::to_string(n), n}, {"last", n}},
                    [&](bool success, std::optional<vantu::PlatformError>) { ok = success; });
    device.dispatch().runReady();
    if (!ok) return std::fprintf(stderr, "durability child: save %lld failed\n", static_cast<long long>(n)), 1;
    const std::string line = std::to_string(n) + "\n";
    if (write(fd, line.data(), line.size()) != static_cast<ssize_t>(line.size())) return 1;
  }
}
