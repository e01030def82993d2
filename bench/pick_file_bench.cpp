// Figures of "vantuPickFile" on a large document, printed, never asserted:
//   1. peak resident memory (VmHWM) of the process while the bridge reads a
//      100 MiB file and answers, against the size of the Base64 text;
//   2. Base64 encoding speed of the library's encoder against OpenSSL's
//      EVP_EncodeBlock on the same bytes, in the same run;
//   3. the file-to-text step alone (chunked reads into the pre-sized text).
//
//   pick_file_bench [MiB]   (default 100)

#include <openssl/evp.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "platforms/sim/sim_device.h"
#include "vantu/pickers/file_base64.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/value/base64.h"

namespace {

using namespace vantu;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

long statusKiB(const char* field) {
  std::ifstream status("/proc/self/status");
  const std::string prefix = std::string(field) + ":";
  for (std::string line; std::getline(status, line);) {
    if (line.rfind(prefix, 0) == 0) return std::stol(line.substr(prefix.size()));
  }
  return -1;
}

double mib(double bytes) { return bytes / (1024.0 * 1024.0); }

// Best of `rounds` runs of `work`, in GiB/s of `bytes` input.
template <class Work>
double bestRate(std::size_t bytes, int rounds, Work&& work) {
  double best = 1e300;
  for (int i = 0; i < rounds; ++i) {
    auto start = Clock::now();
    work();
    best = std::min(best, secondsSince(start));
  }
  return static_cast<double>(bytes) / best / (1024.0 * 1024.0 * 1024.0);
}

}  // namespace

int main(int argc, char** argv) {
  const std::size_t size = (argc > 1 ? std::stoul(argv[1]) : 100) * 1024 * 1024;
  const auto dir = std::filesystem::temp_directory_path() / ("vantu-pick-bench-" + std::to_string(::getpid()));
  std::filesystem::create_directories(dir);
  const auto file = dir / "big.bin";
  {
    std::vector<char> block(1 << 20);
    std::mt19937_64 rng(42);
    std::ofstream out(file, std::ios::binary);
    for (std::size_t written = 0; written < size; written += block.size()) {
      for (auto& b : block) b = static_cast<char>(rng());
      out.write(block.data(), static_cast<std::streamsize>(std::min(block.size(), size - written)));
    }
  }
  const double textBytes = static_cast<double>(base64::encodedLength(size));

  // 1. The bridge, from the picker's answer to the page's answer.
  {
    sim::SimDevice device;
    device.install();
    device.apply(Value(Dict{{"screens", Array{Dict{{"name", "page"}}}}}));
    device.pickers().documents = {sim::SimPickers::Action::pick, {file.string()}};
    BridgeRegistry registry;
    registerAllBridges(registry);
    std::size_t answered = 0;
    const long before = statusKiB("VmHWM");
    auto start = Clock::now();
    registry.dispatch("vantuPickFile", H5HandlerInputParams(device.screen("page"), {}, [&](const Value& answer) {
                        const auto* entries = answer.asDict()->find("data")->asArray();
                        answered = entries->front().asDict()->find("base64")->asString()->size();  // no copy
                      }));
    device.dispatch().runReady();
    const double seconds = secondsSince(start);
    const long peak = statusKiB("VmHWM");
    std::printf("vantuPickFile, %.0f MiB file: answered %.1f MiB of Base64 in %.3f s (%.0f MiB/s of file)\n", mib(size),
                mib(static_cast<double>(answered)), seconds, mib(size) / seconds);
    std::printf("  peak RSS %.1f MiB before the call, %.1f MiB during it: +%.1f MiB = %.2f x the Base64 text "
                "(goal < 1.5)\n",
                before / 1024.0, peak / 1024.0, (peak - before) / 1024.0, (peak - before) * 1024.0 / textBytes);
  }

  // 2. Encoding speed on bytes in memory.
  std::vector<std::uint8_t> bytes(size);
  {
    std::ifstream in(file, std::ios::binary);
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
  }
  std::string ours;
  ours.reserve(static_cast<std::size_t>(textBytes));
  std::vector<unsigned char> theirs(static_cast<std::size_t>(textBytes) + 1);
  const double ourRate = bestRate(size, 5, [&] {
    ours.clear();
    base64::encodeAppend(ours, bytes);
  });
  const double sslRate = bestRate(size, 5, [&] {
    EVP_EncodeBlock(theirs.data(), bytes.data(), static_cast<int>(size));
  });
  const bool same = ours.size() + 1 == theirs.size() && std::equal(ours.begin(), ours.end(), theirs.begin());
  std::printf("Base64 of %.0f MiB in memory: vantu %.2f GiB/s, OpenSSL EVP_EncodeBlock %.2f GiB/s (%.2f x; same text: %s)\n",
              mib(size), ourRate, sslRate, ourRate / sslRate, same ? "yes" : "NO");

  // 3. File to text, the page cache warm.
  const double fileRate = bestRate(size, 3, [&] {
    auto text = pickers::readFileAsBase64(file, std::uint64_t{1} << 40);
    if (text.text.size() != static_cast<std::size_t>(textBytes)) std::printf("  short read!\n");
  });
  std::printf("File to Base64 text in 192 KiB chunks: %.2f GiB/s of file\n", fileRate);

  std::filesystem::remove_all(dir);
  return 0;
}
