#pragma once
// Device facts as the device-info bridges answer them, read afresh at each
// call from the platform's device facts and reachability.

#include <string>
#include <string_view>

namespace vantu {

/// The telephony radio access technologies, as the platform names them.
namespace radio_access_technology {
inline constexpr std::string_view kGPRS = "CTRadioAccessTechnologyGPRS";
inline constexpr std::string_view kEdge = "CTRadioAccessTechnologyEdge";
inline constexpr std::string_view kCDMA1x = "CTRadioAccessTechnologyCDMA1x";
inline constexpr std::string_view kWCDMA = "CTRadioAccessTechnologyWCDMA";
inline constexpr std::string_view kHSDPA = "CTRadioAccessTechnologyHSDPA";
inline constexpr std::string_view kHSUPA = "CTRadioAccessTechnologyHSUPA";
inline constexpr std::string_view kCDMAEVDORev0 = "CTRadioAccessTechnologyCDMAEVDORev0";
inline constexpr std::string_view kCDMAEVDORevA = "CTRadioAccessTechnologyCDMAEVDORevA";
inline constexpr std::string_view kCDMAEVDORevB = "CTRadioAccessTechnologyCDMAEVDORevB";
inline constexpr std::string_view kEHRPD = "CTRadioAccessTechnologyeHRPD";
inline constexpr std::string_view kLTE = "CTRadioAccessTechnologyLTE";
}  // namespace radio_access_technology

/// The kind of network the device is on, as a page is told.
class NetworkType {
 public:
  enum class Kind { unknown, noConnection, wifi, secondGeneration, thirdGeneration, fourthGeneration, unknownTechnology };

  NetworkType(Kind kind = Kind::unknown) : kind_(kind) {}  // NOLINT(google-explicit-constructor)
  /// The type of a cellular link on `technology`: 2G, 3G or 4G by exact
  /// match against the known technologies (there is no row for newer ones),
  /// otherwise an unknown technology carrying the text.
  static NetworkType forRadioAccessTechnology(std::string_view technology);

  Kind kind() const { return kind_; }
  /// The technology text an unknown technology carries ("" otherwise).
  const std::string& technology() const { return technology_; }
  /// "Unknown", "No Connection", "Wifi", "2G", "3G", "4G", or
  /// "Unknown Technology: \"<technology>\"".
  std::string text() const;

  bool operator==(const NetworkType&) const = default;

 private:
  Kind kind_;
  std::string technology_;
};

class DeviceInfoDataStore {
 public:
  /// Always "Apple".
  static std::string createManufacturer();
  /// The hardware model identifier.
  static std::string createDeviceName();
  static std::string createDeviceOSVersion();
  /// Always "": the device identity number is never given out.
  static std::string createDeviceImeiType();
  /// The current locale's language code; "" when it has none.
  static std::string createDeviceLocale();
  /// The text of `currentNetworkType()`.
  static std::string createDeviceNetworkType();

  /// Unknown when no reachability handle for the zero address can be made;
  /// otherwise from the connection of a monitor started on it: no
  /// connection, Wi-Fi, or for cellular the radio technology (unknown when
  /// the radio reports none).
  static NetworkType currentNetworkType();
};

}  // namespace vantu
