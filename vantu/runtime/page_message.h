#pragma once
// The page protocol's wire format. A page sends one JSON text per call,
// {"id": <positive integer>, "bridge": <name>, "data": {...}}; native code
// sends batches of entries (answers, progress reports, events) to the
// page's `window.vantu.__receive(batch)`.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "vantu/platform/transfer_progress.h"
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

/// Appends one batch entry to `out` (a batch being written), with a comma
/// before it unless it is the first (`out` empty or ending in its "[").
void appendAnswerEntry(std::string& out, std::int64_t id, const Value& payload);
void appendProgressEntry(std::string& out, std::int64_t id, const TransferProgress& progress);
void appendEventEntry(std::string& out, std::string_view name, const Value& detail);

/// The JavaScript that hands a batch (the JSON text of an array of entries)
/// to the page's SDK, the batch inlined: JSON written by this library is
/// also valid JavaScript.
std::string receiveScript(std::string_view batch);

}  // namespace vantu::page
