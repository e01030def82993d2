#pragma once
// The host app's decisions about protected resources, kept across runs in
// "permissions.json" under the data directory:
//
//   {"version": 1, "permissions": {"camera": "authorized", "location": "denied"}}
//
// A resource missing from the file is `notDetermined`. Each resource accepts
// only its own states (see `statesFor`). Changes are kept in memory at once
// and written on a serial queue: the whole file goes to a temporary file
// that is fsynced and renamed over the old one, so a crash leaves either the
// old or the new decisions. A file that cannot be read or understood is
// renamed aside ("permissions.json.unreadable", then ".unreadable-2", ...),
// one console line says so, and every resource starts undecided.
//
// Used on the main thread; observers are called there, synchronously, after
// each change.

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "vantu/platform/authorization.h"
#include "vantu/platform/console.h"
#include "vantu/platform/dispatch.h"

namespace vantu::linux_platform {

class PermissionStore : public std::enable_shared_from_this<PermissionStore> {
 public:
  using Observer = std::function<void(ProtectedResource, AuthorizationState)>;
  static constexpr const char* kFileName = "permissions.json";

  /// Reads the file in `directory` (created on the first write). Writes run
  /// on `writer`; messages go to `console` (may be null).
  static std::shared_ptr<PermissionStore> open(std::filesystem::path directory, std::shared_ptr<SerialQueue> writer,
                                               std::shared_ptr<Console> console);

  /// Every resource, in the order settings list them.
  static const std::vector<ProtectedResource>& resources();
  /// The states a resource may be in, `notDetermined` first.
  static std::vector<AuthorizationState> statesFor(ProtectedResource resource);
  static bool allows(ProtectedResource resource, AuthorizationState state);

  AuthorizationState state(ProtectedResource resource) const;
  /// Records `state` and tells the observers when it changed. Refuses (false)
  /// a state that does not belong to the resource.
  bool set(ProtectedResource resource, AuthorizationState state);

  /// Calls `observer` after every change until the returned token is dropped.
  [[nodiscard]] std::shared_ptr<void> observe(Observer observer);

  const std::filesystem::path& file() const { return file_; }

 private:
  PermissionStore(std::filesystem::path file, std::shared_ptr<SerialQueue> writer, std::shared_ptr<Console> console)
      : file_(std::move(file)), writer_(std::move(writer)), console_(std::move(console)) {}

  void load();
  void setAside(const std::string& reason);
  void say(const std::string& line) const;
  void save();

  std::filesystem::path file_;
  std::shared_ptr<SerialQueue> writer_;
  std::shared_ptr<Console> console_;
  std::map<ProtectedResource, AuthorizationState> states_;
  std::vector<std::weak_ptr<Observer>> observers_;
};

}  // namespace vantu::linux_platform
