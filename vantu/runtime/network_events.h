#pragma once
// The "networkChanged" event's source: a reachability monitor for the
// internet whose changes are turned into the network type text
// "vantuNetworkType" answers. An event goes out only when that text
// changes (a change of flags that leaves the same text says nothing new).

#include <functional>
#include <memory>
#include <string>

#include "vantu/value/value.h"

namespace vantu {
class H5Reachability;
}

namespace vantu::page {

class NetworkEvents {
 public:
  /// Starts watching at once; `changed` gets the event's detail,
  /// {"type": TEXT}, on the main thread. Without reachability on the
  /// platform it never calls.
  explicit NetworkEvents(std::function<void(const Value& detail)> changed);
  ~NetworkEvents();
  NetworkEvents(const NetworkEvents&) = delete;
  NetworkEvents& operator=(const NetworkEvents&) = delete;

 private:
  void check();

  std::function<void(const Value&)> changed_;
  std::shared_ptr<H5Reachability> monitor_;
  std::string lastType_;
};

}  // namespace vantu::page
