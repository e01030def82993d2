#pragma once
// A scripted answer of the simulated host or device:
//   {"success": true, "value": ..., "error": {"domain", "code", "message"},
//    "after": seconds, "never": true}
// "after" delivers the answer on the main queue that many virtual seconds
// later; "never" keeps the completion and never calls it.

#include <optional>
#include <string>
#include <variant>

#include "vantu/platform/platform_error.h"
#include "vantu/value/value.h"

namespace vantu::sim {

struct ScriptedAnswer {
  bool success = true;
  std::optional<PlatformError> error;
  std::optional<Value> value;
  std::optional<double> afterSeconds;
  bool never = false;
};

/// Reads an answer; on bad input returns the reason.
std::variant<ScriptedAnswer, std::string> parseScriptedAnswer(const Value& given);
std::variant<PlatformError, std::string> parsePlatformError(const Value& given);
Value platformErrorValue(const PlatformError& error);

}  // namespace vantu::sim
