// libFuzzer target for the page protocol: a message text as a page sends
// it, read by parseMessage and received by a page bridge on the simulated
// device (every bridge registered, plus one that echoes its data from the
// main thread and again from another thread).
//
// Properties: parseMessage gives a well-formed call or a reason (with the
// id when there is one); the receipt says what happened to the text; every
// script handed to the page is a delivery for that id whose payload reads
// back as JSON; after the page is replaced, nothing more reaches it.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>
#include <variant>
#include <vector>

#include "fuzz/support/fuzz_device.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/runtime/page_bridge.h"
#include "vantu/value/json.h"

namespace {

using namespace vantu;

constexpr std::string_view kEchoBridge = "fuzzEcho";

class EchoHandler : public H5BaseHandler {
 public:
  void handleWith(H5HandlerInputParams params) override {
    params.callback(params.data);
    std::thread([&params] { params.callback(Dict{{"from", "another thread"}, {"data", params.data}}); }).join();
  }
};

void checkParsed(const std::variant<page::Message, page::MalformedMessage>& parsed) {
  if (const auto* message = std::get_if<page::Message>(&parsed)) {
    if (message->id <= 0 || message->bridge.empty()) fuzzing::finding("parseMessage accepted a call without id or bridge");
  } else {
    const auto& malformed = std::get<page::MalformedMessage>(parsed);
    if (malformed.reason.empty()) fuzzing::finding("a malformed message without a reason");
    if (malformed.id && *malformed.id <= 0) fuzzing::finding("a malformed message with a non-positive id");
  }
}

// A batch delivered for this call: a JSON array of answer entries
// [0, id, payload] for its id, or a finding.
void checkDelivery(const std::string& batch, std::int64_t id) {
  auto parsed = json::parse(batch);
  const Array* entries = parsed.ok() ? parsed.value().asArray() : nullptr;
  if (!entries || entries->empty()) fuzzing::finding("a batch that does not read back: " + batch);
  for (const Value& entry : *entries) {
    const Array* fields = entry.asArray();
    if (!fields || fields->size() != 3 || (*fields)[0].asInt() != 0 || (*fields)[1].asInt() != id) {
      fuzzing::finding("not an answer for the call: " + batch);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const auto parsed = page::parseMessage(text);
  checkParsed(parsed);

  auto registry = std::make_shared<BridgeRegistry>();
  registerAllBridges(*registry);
  registry->add(std::string(kEchoBridge), [] { return std::make_shared<EchoHandler>(); });
  auto device = fuzzing::makeDevice(fuzzing::referenceScenario(fuzzing::DeviceState::granted));

  auto scripts = std::make_shared<std::vector<std::string>>();
  page::PageBridge bridge(registry, [scripts](std::string script) { scripts->push_back(std::move(script)); });
  bridge.setScreen(device->screen("shop"));

  // A sub-frame is refused before its text is read, and told nothing.
  if (bridge.receive(text, {false, "https://shop.example/"}) != page::Receipt::refused) {
    fuzzing::finding("a sub-frame message was not refused");
  }
  const auto receipt = bridge.receive(text, {true, "https://shop.example/index.html"});
  const auto* message = std::get_if<page::Message>(&parsed);
  const auto* malformed = std::get_if<page::MalformedMessage>(&parsed);
  const page::Receipt expected = message            ? page::Receipt::dispatched
                                 : malformed->id ? page::Receipt::malformedAnswered
                                                    : page::Receipt::malformedDropped;
  if (receipt != expected) fuzzing::finding("the receipt does not match what parseMessage read");

  // What is due now reaches the page; then a new document replaces it, and
  // answers still owed (timers, real I/O) must not reach the new one.
  device->dispatch().runReady();
  const std::size_t delivered = scripts->size();
  bridge.pageReplaced();
  if (!fuzzing::runUntilIdle(*device)) fuzzing::finding("a call's real I/O never came back");
  if (scripts->size() != delivered) fuzzing::finding("an answer owed to a replaced page reached its successor");

  const std::int64_t id = message ? message->id : malformed->id.value_or(0);
  for (const auto& script : *scripts) checkDelivery(script, id);
  if (malformed && !malformed->id && !scripts->empty()) fuzzing::finding("a message without an id was answered");
  return 0;
}
