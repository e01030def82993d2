#include "vantu/bridges/host/device_info_data_store.h"

#include <utility>

#include "vantu/net/h5_reachability.h"
#include "vantu/platform/platform.h"

namespace vantu {
namespace {

namespace rat = radio_access_technology;
using Kind = NetworkType::Kind;

// Checked in this order, by exact text.
constexpr std::pair<std::string_view, Kind> kRadioTable[] = {
    {rat::kGPRS, Kind::secondGeneration},        {rat::kEdge, Kind::secondGeneration},
    {rat::kCDMA1x, Kind::secondGeneration},      {rat::kWCDMA, Kind::thirdGeneration},
    {rat::kHSDPA, Kind::thirdGeneration},        {rat::kHSUPA, Kind::thirdGeneration},
    {rat::kCDMAEVDORev0, Kind::thirdGeneration}, {rat::kCDMAEVDORevA, Kind::thirdGeneration},
    {rat::kCDMAEVDORevB, Kind::thirdGeneration}, {rat::kEHRPD, Kind::thirdGeneration},
    {rat::kLTE, Kind::fourthGeneration},
};

}  // namespace

NetworkType NetworkType::forRadioAccessTechnology(std::string_view technology) {
  for (const auto& [text, kind] : kRadioTable) {
    if (technology == text) return NetworkType(kind);
  }
  NetworkType type(Kind::unknownTechnology);
  type.technology_ = std::string(technology);
  return type;
}

std::string NetworkType::text() const {
  switch (kind_) {
    case Kind::noConnection:
      return "No Connection";
    case Kind::wifi:
      return "Wifi";
    case Kind::secondGeneration:
      return "2G";
    case Kind::thirdGeneration:
      return "3G";
    case Kind::fourthGeneration:
      return "4G";
    case Kind::unknownTechnology:
      return "Unknown Technology: \"" + technology_ + "\"";
    case Kind::unknown:
      break;
  }
  return "Unknown";
}

std::string DeviceInfoDataStore::createManufacturer() { return "Apple"; }

std::string DeviceInfoDataStore::createDeviceName() { return platform().device->modelIdentifier(); }

std::string DeviceInfoDataStore::createDeviceOSVersion() { return platform().device->systemVersion(); }

std::string DeviceInfoDataStore::createDeviceImeiType() { return ""; }

std::string DeviceInfoDataStore::createDeviceLocale() { return platform().device->languageCode().value_or(""); }

std::string DeviceInfoDataStore::createDeviceNetworkType() { return currentNetworkType().text(); }

NetworkType DeviceInfoDataStore::currentNetworkType() {
  auto made = H5Reachability::makeForInternet();
  if (!made.ok()) return NetworkType(Kind::unknown);
  const auto& reachability = made.value();
  // A notifier that cannot start leaves the connection to a direct fetch.
  (void)reachability->startNotifier();
  switch (reachability->connection()) {
    case Connection::none:
      return NetworkType(Kind::noConnection);
    case Connection::wifi:
      return NetworkType(Kind::wifi);
    case Connection::cellular:
      break;
  }
  auto technology = platform().device->radioAccessTechnology();
  if (!technology) return NetworkType(Kind::unknown);
  return NetworkType::forRadioAccessTechnology(*technology);
}

}  // namespace vantu
