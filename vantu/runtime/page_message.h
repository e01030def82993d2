#pragma once
// The page protocol's wire format. A page sends one JSON text per call,
// {"id": <positive integer>, "bridge": <name>, "data": {...}}; native code
// answers by running `window.vantu.__deliver(id, payload)` in the page, as
// many times as the bridge answers.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "vantu/value/value.h"

namespace vantu::page {

/// One well-formed call from a page.
struct Message {
  std::int64_t id = 0;
  std::string bridge;
  Dict data;
};

/// Why a text is not a call. `id` is set when the text still named one, so
/// the page can be told.
struct MalformedMessage {
  std::optional<std::int64_t> id;
  std::string reason;
};

/// Reads one message. "data" may be left out (an empty dictionary) but,
/// when present, must be an object; "id" must be a positive integer and
/// "bridge" a non-empty string.
std::variant<Message, MalformedMessage> parseMessage(std::string_view text);

/// The answer a malformed message gets: {"error": 2, "message": <reason>}.
Dict malformedAnswer(const MalformedMessage& malformed);

/// The JavaScript that hands `payload` to the page's SDK for call `id`: the
/// payload is inlined as a JSON literal (JSON written by this library is
/// also valid JavaScript).
std::string deliveryScript(std::int64_t id, const Value& payload);

}  // namespace vantu::page
