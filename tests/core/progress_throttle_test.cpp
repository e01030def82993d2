// Progress reports on their way to a page, on the simulated device's
// virtual clock: at most one per interval goes out, the latest held back
// goes out when the interval is over or just before the call's answer.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platforms/sim/sim_device.h"
#include "vantu/core/progress_throttle.h"
#include "vantu/value/json.h"

namespace vantu {
namespace {

using std::chrono::milliseconds;

// One step of a call: at a virtual time (ms from the start), a progress
// report of `received` bytes, or the answer (received < 0).
struct Step {
  int atMs;
  std::int64_t received;
};

struct Case {
  const char* name;
  std::vector<Step> steps;
  int endMs;  // the clock runs to here at the end
  std::vector<std::string> sent;
};

std::string describe(const TransferProgress& p) {
  return std::to_string(p.received) + "/" + (p.total ? std::to_string(*p.total) : std::string("?"));
}

TEST(ProgressThrottle, SendsAtMostOneReportPerIntervalAndAlwaysTheLastBeforeTheAnswer) {
  const Case cases[] = {
      {"the first report goes out at once", {{0, 10}}, 0, {"10/100"}},
      {"reports within the interval are held; the latest goes out when it ends",
       {{0, 10}, {20, 20}, {40, 30}, {99, 40}},
       100,
       {"10/100", "40/100"}},
      {"a report after the interval goes out at once", {{0, 10}, {100, 20}}, 100, {"10/100", "20/100"}},
      {"the held report goes out just before the answer, not again at the interval",
       {{0, 10}, {30, 50}, {40, -1}},
       300,
       {"10/100", "50/100", "answer"}},
      {"a fast transfer: 1 ms apart for a second gives about ten reports",
       [] {
         std::vector<Step> steps;
         for (int ms = 0; ms < 1000; ++ms) steps.push_back({ms, ms + 1});
         steps.push_back({1000, -1});
         return steps;
       }(),
       1000,
       // At 100 ms the held count of 99 ms goes out, and so on each interval.
       {"1/100", "100/100", "200/100", "300/100", "400/100", "500/100", "600/100", "700/100", "800/100", "900/100",
        "1000/100", "answer"}},
      {"a repeated count is not sent twice", {{0, 10}, {150, 10}, {160, -1}}, 300, {"10/100", "answer"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    sim::SimDevice device;
    device.install();
    std::vector<std::string> sent;
    auto call = throttledCall([&](const Value&) { sent.push_back("answer"); },
                              [&](const TransferProgress& p) { sent.push_back(describe(p)); },
                              platform().dispatch);
    int now = 0;
    for (const auto& step : c.steps) {
      device.dispatch().advance(milliseconds(step.atMs - now));
      now = step.atMs;
      if (step.received < 0) {
        call.callback(Value(true));
      } else {
        call.progress(TransferProgress{step.received, 100});
      }
    }
    device.dispatch().advance(milliseconds(c.endMs - now));
    EXPECT_EQ(sent, c.sent);
  }
}

TEST(ProgressThrottle, AHeldReportIsDroppedWhenTheCallIsGone) {
  sim::SimDevice device;
  device.install();
  std::vector<std::string> sent;
  {
    auto call = throttledCall([](const Value&) {}, [&](const TransferProgress& p) { sent.push_back(describe(p)); },
                              platform().dispatch);
    call.progress(TransferProgress{1, std::nullopt});
    call.progress(TransferProgress{2, std::nullopt});
  }
  device.dispatch().advance(milliseconds(500));
  EXPECT_EQ(sent, std::vector<std::string>{"1/?"});
}

}  // namespace
}  // namespace vantu
