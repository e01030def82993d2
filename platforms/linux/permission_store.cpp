#include "platforms/linux/permission_store.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platforms/common/write_all.h"
#include "vantu/value/json.h"

namespace vantu::linux_platform {
namespace {

namespace fs = std::filesystem;
constexpr std::int64_t kVersion = 1;

/// Replaces `file` with `text` durably; an empty string when it worked.
std::string writeDurably(const fs::path& file, const std::string& text) {
  std::error_code ec;
  fs::create_directories(file.parent_path(), ec);
  const fs::path temporary = fs::path(file).concat(".tmp");
  int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (fd < 0) return "cannot create " + temporary.string() + ": " + std::strerror(errno);
  const bool written = writeAll(fd, text.data(), text.size()) && ::fsync(fd) == 0;
  const int writeError = errno;
  ::close(fd);
  if (!written || ::rename(temporary.c_str(), file.c_str()) != 0) {
    const std::string reason = std::strerror(written ? errno : writeError);
    ::unlink(temporary.c_str());
    return "cannot write " + file.string() + ": " + reason;
  }
  // The rename itself must reach the disk too.
  int dir = ::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir >= 0) {
    ::fsync(dir);
    ::close(dir);
  }
  return {};
}

}  // namespace

std::shared_ptr<PermissionStore> PermissionStore::open(fs::path directory, std::shared_ptr<SerialQueue> writer,
                                                       std::shared_ptr<Console> console) {
  std::shared_ptr<PermissionStore> store(
      new PermissionStore(std::move(directory) / kFileName, std::move(writer), std::move(console)));
  store->load();
  return store;
}

const std::vector<ProtectedResource>& PermissionStore::resources() {
  static const std::vector<ProtectedResource> all{ProtectedResource::camera,     ProtectedResource::photoLibrary,
                                                  ProtectedResource::location,   ProtectedResource::microphone,
                                                  ProtectedResource::contacts,   ProtectedResource::speechRecognition};
  return all;
}

std::vector<AuthorizationState> PermissionStore::statesFor(ProtectedResource resource) {
  std::vector<AuthorizationState> states{AuthorizationState::notDetermined, AuthorizationState::denied,
                                         AuthorizationState::restricted, AuthorizationState::authorized};
  if (resource == ProtectedResource::location) states.push_back(AuthorizationState::authorizedWhenInUse);
  if (resource == ProtectedResource::photoLibrary) states.push_back(AuthorizationState::limited);
  return states;
}

bool PermissionStore::allows(ProtectedResource resource, AuthorizationState state) {
  auto states = statesFor(resource);
  return std::find(states.begin(), states.end(), state) != states.end();
}

AuthorizationState PermissionStore::state(ProtectedResource resource) const {
  auto it = states_.find(resource);
  return it == states_.end() ? AuthorizationState::notDetermined : it->second;
}

bool PermissionStore::set(ProtectedResource resource, AuthorizationState state) {
  if (!allows(resource, state)) return false;
  if (this->state(resource) == state) return true;
  if (state == AuthorizationState::notDetermined) {
    states_.erase(resource);
  } else {
    states_[resource] = state;
  }
  save();
  // An observer may add or drop observers while being told.
  std::erase_if(observers_, [](const auto& o) { return o.expired(); });
  auto observers = observers_;
  for (const auto& weak : observers) {
    if (auto observer = weak.lock()) (*observer)(resource, state);
  }
  return true;
}

std::shared_ptr<void> PermissionStore::observe(Observer observer) {
  auto token = std::make_shared<Observer>(std::move(observer));
  observers_.push_back(token);
  return token;
}

void PermissionStore::say(const std::string& line) const {
  if (console_) console_->printLine("vantu-h5: " + line);
}

void PermissionStore::load() {
  std::error_code ec;
  if (!fs::exists(file_, ec)) return;
  auto parsed = json::parseFile(file_);
  if (!parsed) return setAside("cannot be read");
  if (!parsed->ok()) return setAside("is not JSON (" + parsed->error().message + ")");
  const Dict* root = parsed->value().asDict();
  auto entries = root ? root->getDict("permissions") : std::nullopt;
  if (!entries || root->getInt("version") != kVersion) return setAside("is not a version 1 permission file");
  std::map<ProtectedResource, AuthorizationState> states;
  for (const auto& [key, value] : *entries) {
    auto resource = key.string() ? protectedResourceNamed(*key.string()) : std::nullopt;
    auto state = value.asString() ? authorizationStateNamed(*value.asString()) : std::nullopt;
    if (!resource || !state || !allows(*resource, *state)) {
      return setAside("has an entry it cannot take (" + key.text() + ": " + json::write(value) + ")");
    }
    if (*state != AuthorizationState::notDetermined) states[*resource] = *state;
  }
  states_ = std::move(states);
}

void PermissionStore::setAside(const std::string& reason) {
  fs::path aside = fs::path(file_).concat(".unreadable");
  std::error_code ec;
  for (int n = 2; fs::exists(aside, ec); ++n) aside = fs::path(file_).concat(".unreadable-" + std::to_string(n));
  fs::rename(file_, aside, ec);
  if (ec) {
    say(file_.string() + " " + reason + " and cannot be moved aside (" + ec.message() +
        "); permissions start undecided and the next change replaces it");
  } else {
    say(file_.string() + " " + reason + "; kept as " + aside.string() + ", permissions start undecided");
  }
}

void PermissionStore::save() {
  Dict permissions;
  for (const auto& [resource, state] : states_) permissions.set(std::string(toString(resource)), std::string(toString(state)));
  std::string text = json::write(Dict{{"version", kVersion}, {"permissions", std::move(permissions)}});
  auto write = [file = file_, text = std::move(text), console = console_] {
    auto failure = writeDurably(file, text);
    if (!failure.empty() && console) console->printLine("vantu-h5: " + failure);
  };
  if (writer_) {
    writer_->async(std::move(write));
  } else {
    write();
  }
}

}  // namespace vantu::linux_platform
