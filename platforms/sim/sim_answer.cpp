#include "platforms/sim/sim_answer.h"

namespace vantu::sim {

std::variant<PlatformError, std::string> parsePlatformError(const Value& given) {
  const Dict* d = given.asDict();
  if (!d) return std::string("an error must be an object {\"domain\", \"code\", \"message\"}");
  PlatformError error;
  error.domain = d->getString("domain").value_or("SimulatedErrorDomain");
  error.code = d->getInt("code").value_or(0);
  error.localizedDescription = d->getString("message").value_or("");
  if (auto reason = d->getString("reason")) error.localizedFailureReason = *reason;
  return error;
}

Value platformErrorValue(const PlatformError& error) {
  Dict d{{"domain", error.domain}, {"code", error.code}, {"message", error.localizedDescription}};
  if (error.localizedFailureReason) d.set("reason", *error.localizedFailureReason);
  return d;
}

std::variant<ScriptedAnswer, std::string> parseScriptedAnswer(const Value& given) {
  const Dict* d = given.asDict();
  if (!d) return std::string("an answer must be an object or \"default\"");
  ScriptedAnswer answer;
  for (const auto& [key, value] : *d) {
    const std::string* name = key.string();
    if (!name) return std::string("answer keys must be strings");
    if (*name == "success") {
      if (!value.isBool()) return std::string("\"success\" must be a boolean");
      answer.success = *value.asBool();
    } else if (*name == "value") {
      answer.value = value;
    } else if (*name == "error") {
      if (value.isNull()) continue;
      auto parsed = parsePlatformError(value);
      if (auto* reason = std::get_if<std::string>(&parsed)) return *reason;
      answer.error = std::get<PlatformError>(parsed);
    } else if (*name == "after") {
      auto seconds = value.asNumber();
      if (!seconds || *seconds < 0) return std::string("\"after\" must be a number of seconds >= 0");
      answer.afterSeconds = *seconds;
    } else if (*name == "never") {
      if (!value.isBool()) return std::string("\"never\" must be a boolean");
      answer.never = *value.asBool();
    } else {
      return "unknown answer field \"" + *name + "\"";
    }
  }
  return answer;
}

}  // namespace vantu::sim
