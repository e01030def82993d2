#include "vantu/runtime/page_message.h"

#include <charconv>

#include "vantu/core/h5_op_error.h"
#include "vantu/value/json.h"

namespace vantu::page {

std::variant<Message, MalformedMessage> parseMessage(std::string_view text) {
  auto parsed = json::parse(text);
  if (!parsed.ok()) return MalformedMessage{std::nullopt, "Malformed bridge message: " + parsed.error().message};
  const Dict* object = parsed.value().asDict();
  if (!object) return MalformedMessage{std::nullopt, "Malformed bridge message: not a JSON object"};

  const Value* idValue = object->find("id");
  const auto id = idValue ? idValue->asInt() : std::nullopt;
  if (!id || *id <= 0) return MalformedMessage{std::nullopt, "Malformed bridge message: \"id\" must be a positive integer"};

  const Value* bridge = object->find("bridge");
  if (!bridge || !bridge->isString() || bridge->asString()->empty()) {
    return MalformedMessage{id, "Malformed bridge message: \"bridge\" must be a non-empty string"};
  }
  Message message{*id, *bridge->asString(), {}};
  if (const Value* data = object->find("data")) {
    const Dict* dict = data->asDict();
    if (!dict) return MalformedMessage{id, "Malformed bridge message: \"data\" must be an object"};
    message.data = *dict;
  }
  return message;
}

Dict malformedAnswer(const MalformedMessage& malformed) { return payload::failure(malformed.reason); }

std::string deliveryScript(std::int64_t id, const Value& payload) {
  std::string script = "window.vantu.__deliver(";
  char digits[24];
  auto end = std::to_chars(digits, digits + sizeof digits, id).ptr;
  script.append(digits, end);
  script += ',';
  json::writeTo(script, payload);
  script += ");";
  return script;
}

}  // namespace vantu::page
