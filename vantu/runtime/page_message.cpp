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

namespace {

void appendInteger(std::string& out, std::int64_t n) {
  char digits[24];
  auto end = std::to_chars(digits, digits + sizeof digits, n).ptr;
  out.append(digits, end);
}

// About how long the JSON text of `value` is (exact for plain ASCII
// strings): room for a large answer is made once, instead of the text
// growing by doubling, which holds the old and the new buffer at once.
std::size_t estimatedJsonSize(const Value& value) {
  if (const std::string* text = value.asString()) return text->size() + 2;
  if (const Bytes* bytes = value.asBytes()) return (bytes->data.size() + 2) / 3 * 4 + 2;
  if (const Array* array = value.asArray()) {
    std::size_t size = 2;
    for (const auto& item : *array) size += estimatedJsonSize(item) + 1;
    return size;
  }
  if (const Dict* dict = value.asDict()) {
    std::size_t size = 2;
    for (const auto& [key, item] : *dict) size += key.text().size() + 4 + estimatedJsonSize(item);
    return size;
  }
  return 24;
}

// Reserves only for large answers: a small one fits the buffer anyway.
void reserveFor(std::string& out, const Value& payload) {
  constexpr std::size_t kWorthIt = 64 * 1024;
  const std::size_t estimate = estimatedJsonSize(payload);
  if (estimate >= kWorthIt) out.reserve(out.size() + estimate + 64);
}

void openEntry(std::string& out, char kind) {
  if (!out.empty() && out.back() != '[') out += ',';
  out += '[';
  out += kind;
  out += ',';
}

}  // namespace

void appendAnswerEntry(std::string& out, std::int64_t id, const Value& payload) {
  reserveFor(out, payload);
  openEntry(out, '0');
  appendInteger(out, id);
  out += ',';
  json::writeTo(out, payload);
  out += ']';
}

void appendProgressEntry(std::string& out, std::int64_t id, const TransferProgress& progress) {
  openEntry(out, '1');
  appendInteger(out, id);
  out += ",{\"received\":";
  appendInteger(out, progress.received);
  out += ",\"total\":";
  if (progress.total) {
    appendInteger(out, *progress.total);
  } else {
    out += "null";
  }
  out += "}]";
}

void appendEventEntry(std::string& out, std::string_view name, const Value& detail) {
  openEntry(out, '2');
  json::writeTo(out, Value(std::string(name)));
  out += ',';
  json::writeTo(out, detail);
  out += ']';
}

std::string receiveScript(std::string_view batch) {
  std::string script = "window.vantu.__receive(";
  script.append(batch);
  script += ");";
  return script;
}

}  // namespace vantu::page
