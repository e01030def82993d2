#pragma once
// Scenario files: JSON that describes the simulated device (docs/scenario.md).
// A scenario is a set of sections; each section has one loader, and a
// family of bridges that needs more device state adds a section.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "vantu/value/value.h"

namespace vantu::sim {

class SimDevice;
class SimAuthorization;
class SimLocationServices;
class SimGeocoder;
class SimDeviceOwnerAuthentication;
class SimReachability;
class SimPickers;
class SimHostDelegate;

/// Applies `value` (the section's content); returns the reason on bad input.
using SectionLoader = std::function<std::optional<std::string>(SimDevice&, const Value&)>;

struct ScenarioSection {
  std::string_view key;
  SectionLoader load;
};

/// Every section, in the order they are applied.
const std::vector<ScenarioSection>& scenarioSections();

/// Applies the sections present in `scenario`, in section order.
std::optional<std::string> applyScenario(SimDevice& device, const Value& scenario);

/// The first key of the object `scenario` that names no section, if any.
std::optional<std::string> unknownScenarioSection(const Value& scenario);
/// Every section's name, quoted, for messages: "\"app\", ... and \"defaultScreen\"".
std::string scenarioSectionNames();

// Loaders of the basic sections (scenario_basics.cpp).
std::optional<std::string> loadAppSection(SimDevice& device, const Value& value);
std::optional<std::string> loadObjectsSection(SimDevice& device, const Value& value);
std::optional<std::string> loadEnvironmentSection(SimDevice& device, const Value& value);
std::optional<std::string> loadScreensSection(SimDevice& device, const Value& value);
std::optional<std::string> loadDefaultScreenSection(SimDevice& device, const Value& value);
// One entry of "delegates" of kind "delegate" (its "answers" and
// "otherwise"); also applies to a delegate outside a simulated device (a
// device profile).
std::optional<std::string> loadDelegate(SimHostDelegate& delegate, const Dict& given);

// Device facts and the network (scenario_device.cpp). The network object
// (the device section's "network") also applies on its own to a
// reachability service and a radio technology.
std::optional<std::string> loadDeviceSection(SimDevice& device, const Value& value);
std::optional<std::string> loadNetwork(SimReachability& reachability, std::optional<std::string>& radioTechnology,
                                       const Value& value);

// The device-capability sections. Each also applies to services of its own,
// outside a simulated device (a device profile, see device_profile.h).

// Authorisation states and prompt answers (scenario_permissions.cpp).
std::optional<std::string> loadPermissionsSection(SimDevice& device, const Value& value);
std::optional<std::string> loadPermissions(SimAuthorization& authorization, const Value& value);

// Location services and the geocoder (scenario_location.cpp).
std::optional<std::string> loadLocationSection(SimDevice& device, const Value& value);
std::optional<std::string> loadLocation(SimLocationServices& services, SimGeocoder& geocoder, const Value& value);

// Device-owner authentication (scenario_authentication.cpp).
std::optional<std::string> loadDeviceOwnerAuthenticationSection(SimDevice& device, const Value& value);
std::optional<std::string> loadDeviceOwnerAuthentication(SimDeviceOwnerAuthentication& service, const Value& value);

// The transport's report order and the photo library (scenario_http.cpp).
std::optional<std::string> loadHttpSection(SimDevice& device, const Value& value);
std::optional<std::string> loadPhotoLibrarySection(SimDevice& device, const Value& value);
// What the user picks in the image and document pickers (scenario_pickers.cpp).
std::optional<std::string> loadPickersSection(SimDevice& device, const Value& value);
std::optional<std::string> loadPickers(SimPickers& pickers, const Value& value);

}  // namespace vantu::sim
