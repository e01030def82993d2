#include "platforms/sim/headless_runner.h"

#include <algorithm>
#include <istream>
#include <ostream>

#include "platforms/sim/runner_commands.h"
#include "vantu/core/progress_throttle.h"
#include "vantu/platform/platform.h"
#include "vantu/runtime/page_events.h"
#include "vantu/value/json.h"

namespace vantu::sim {
namespace {

// The longest step: a billion seconds (about 31 years) keeps every virtual
// time point far inside the clock's range.
constexpr double kMaxAdvanceSeconds = 1e9;

std::optional<std::string> advanceCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  auto seconds = line.getNumber("advance");
  if (!seconds || *seconds < 0) return std::string("\"advance\" must be a number of seconds >= 0");
  if (*seconds > kMaxAdvanceSeconds) {
    return std::string("\"advance\" must be a number of seconds from 0 to 1000000000");
  }
  runner.device().dispatch().advance(secondsToDuration(*seconds));
  out.set("advanced", *seconds);
  out.set("settled", runner.settle());
  return std::nullopt;
}

std::optional<std::string> scenarioCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  const Value* fragment = line.find("scenario");
  if (auto error = runner.device().apply(*fragment)) return "scenario: " + *error;
  out.set("scenario", "applied");
  out.set("settled", runner.settle());
  return std::nullopt;
}

std::optional<std::string> emitCommand(HeadlessRunner& runner, const Dict& line, Dict& out) {
  const Dict* emit = line.find("emit")->asDict();
  auto name = emit ? emit->getString("name") : std::nullopt;
  if (!name || name->empty()) return std::string("\"emit\" must be {\"name\": NAME, \"detail\": DETAIL}, NAME a non-empty string");
  const Value* detail = emit->find("detail");
  page::PageEvents::shared().post(*name, detail ? *detail : Value());
  out.set("emitted", *name);
  out.set("settled", runner.settle());
  return std::nullopt;
}

Array toArray(std::vector<Dict> items) {
  Array a;
  a.reserve(items.size());
  for (auto& item : items) a.emplace_back(std::move(item));
  return a;
}

}  // namespace

std::vector<HeadlessRunner::LineCommand> HeadlessRunner::lineCommands() {
  std::vector<LineCommand> commands{
      {"bridge", R"({"bridge": "vantuGetData", "data": {"keys": ["a"]}, "screen": "shop"})",
       [](HeadlessRunner& r, const Dict& line, Dict& out) { return r.call(line, out); }},
      {"advance", R"({"advance": 0.25})", advanceCommand},
      {"scenario", R"({"scenario": {"defaultScreen": "other"}})", scenarioCommand},
      {"on", R"({"on": "networkChanged"})",
       [](HeadlessRunner& r, const Dict& line, Dict& out) { return r.listen(line, out, true); }},
      {"off", R"({"off": "networkChanged"})",
       [](HeadlessRunner& r, const Dict& line, Dict& out) { return r.listen(line, out, false); }},
      {"emit", R"({"emit": {"name": "signedIn", "detail": {"user": "ana"}}})", emitCommand},
  };
  for (auto& command : familyRunnerCommands()) commands.push_back(std::move(command));
  return commands;
}

HeadlessRunner::HeadlessRunner(SimDevice& device, RunnerOptions options) : device_(device), options_(options) {
  registerAllBridges(registry_);
  for (auto& command : lineCommands()) addCommand(std::move(command.key), std::move(command.handle));
  eventSubscription_ = page::PageEvents::shared().listen([this](std::string_view name, const Value& detail) {
    if (std::find(listening_.begin(), listening_.end(), name) == listening_.end()) return;
    std::lock_guard lock(inboxMutex_);
    events_.push_back(Dict{{"event", std::string(name)}, {"detail", detail}});
  });
}

void HeadlessRunner::addCommand(std::string key, Command command) { commands_.emplace_back(std::move(key), std::move(command)); }

std::optional<std::string> HeadlessRunner::listen(const Dict& line, Dict& out, bool on) {
  const char* key = on ? "on" : "off";
  auto name = line.getString(key);
  if (!name || name->empty()) return "\"" + std::string(key) + "\" must be an event name (a non-empty string)";
  auto found = std::find(listening_.begin(), listening_.end(), *name);
  if (on && found == listening_.end()) listening_.push_back(*name);
  if (!on && found != listening_.end()) listening_.erase(found);
  out.set(key, *name);
  return std::nullopt;
}

bool HeadlessRunner::settle() { return device_.dispatch().settle(options_.settleTimeout); }

std::optional<std::string> HeadlessRunner::call(const Dict& line, Dict& out) {
  auto bridge = line.getString("bridge");
  if (!bridge) return std::string("\"bridge\" must be a string");
  out.set("bridge", *bridge);

  Dict data;
  if (const Value* d = line.find("data"); d && !d->isNull()) {
    if (!d->isDict()) return std::string("\"data\" must be a JSON object");
    data = *d->asDict();
  }

  std::shared_ptr<ViewController> screen;
  const Value* screenName = line.find("screen");
  if (screenName && !screenName->isNull()) {
    const std::string* name = screenName->asString();
    if (!name) return std::string("\"screen\" must be a screen name or null");
    screen = device_.screen(*name);
    if (!screen) return "no screen named \"" + *name + "\"";
  } else if (!screenName && device_.defaultScreen) {
    screen = device_.screen(*device_.defaultScreen);
  }
  out.set("screen", screen ? Value(screen->name()) : Value());

  const std::size_t callLine = lineNumber_;
  const Value* wantsProgress = line.find("progress");
  if (wantsProgress && !wantsProgress->isBool()) return std::string("\"progress\" must be true or false");
  // Progress is throttled as a page's is, on the device's virtual clock.
  auto throttled = throttledCall(
      [this, callLine](const Value& answer) {
        std::lock_guard lock(inboxMutex_);
        inbox_.emplace_back(callLine, answer);
      },
      [this, callLine](const TransferProgress& progress) {
        Dict report{{"received", progress.received}};
        report.set("total", progress.total ? Value(*progress.total) : Value());
        std::lock_guard lock(inboxMutex_);
        events_.push_back(Dict{{"progress", std::move(report)}, {"call", static_cast<std::int64_t>(callLine)}});
      },
      platform().dispatch);
  H5HandlerInputParams params(std::move(screen), std::move(data), std::move(throttled.callback),
                              wantsProgress && *wantsProgress->asBool() ? std::move(throttled.progress) : H5Progress());
  device_.dispatch().main()->async([this, name = *bridge, params = std::move(params)]() mutable {
    registry_.dispatch(name, std::move(params));
  });
  out.set("settled", settle());
  return std::nullopt;
}

void HeadlessRunner::report(Dict& out) {
  Array answers;
  Array late;
  Array events;
  {
    std::lock_guard lock(inboxMutex_);
    for (auto& [callLine, answer] : inbox_) {
      if (callLine == lineNumber_) {
        answers.push_back(std::move(answer));
      } else {
        late.push_back(Dict{{"call", static_cast<std::int64_t>(callLine)}, {"answer", std::move(answer)}});
      }
    }
    inbox_.clear();
    events.swap(events_);
  }
  if (out.contains("bridge") && !out.contains("error")) out.set("answers", std::move(answers));
  if (!late.empty()) out.set("lateAnswers", std::move(late));
  if (!events.empty()) out.set("events", std::move(events));
  out.set("delegateCalls", toArray(device_.takeDelegateCalls()));
  Array printed;
  for (auto& text : device_.takePrintedLines()) printed.emplace_back(std::move(text));
  out.set("printed", std::move(printed));
  out.set("effects", toArray(device_.effects()->take()));
}

std::optional<std::string> HeadlessRunner::processLine(std::string_view line) {
  ++lineNumber_;
  if (line.find_first_not_of(" \t\r\n") == std::string_view::npos) return std::nullopt;

  Dict out{{"line", static_cast<std::int64_t>(lineNumber_)}};
  auto fail = [&](std::string message) {
    out.set("error", std::move(message));
    report(out);
    return json::write(out);
  };

  auto parsed = json::parse(line);
  if (!parsed.ok()) return fail(parsed.error().message);
  const Dict* input = parsed.value().asDict();
  if (!input) return fail("each line must be a JSON object");

  for (auto& [key, command] : commands_) {
    if (!input->contains(key)) continue;
    if (auto error = command(*this, *input, out)) return fail(*error);
    report(out);
    return json::write(out);
  }
  std::string expected;
  for (const auto& [key, command] : commands_) expected += (expected.empty() ? "\"" : ", \"") + key + "\"";
  return fail("unknown command: a line needs one of " + expected);
}

void HeadlessRunner::run(std::istream& in, std::ostream& out) {
  std::string line;
  while (std::getline(in, line)) {
    if (auto result = processLine(line)) out << *result << '\n' << std::flush;
  }
}

}  // namespace vantu::sim
