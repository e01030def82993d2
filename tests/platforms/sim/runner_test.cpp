// End-to-end cases of the headless runner: each file in cases/ holds a
// scenario, the input lines and the expected output objects (compared with
// their key order).

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>
#include <thread>

#include "platforms/sim/headless_runner.h"
#include "vantu/core/diagnostics.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/value/json.h"

namespace vantu::sim {
namespace {

// Test bridges for the runner's settling and reporting (case 03).
class AnswerTwiceHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "test.answerTwice";
  void handleWith(H5HandlerInputParams params) override {
    params.callback(payload::success(1));
    params.callback(payload::success(2));
  }
};

class AnswerLaterHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "test.answerLater";
  void handleWith(H5HandlerInputParams params) override {
    platform().dispatch->main()->asyncAfter(secondsToDuration(params.data.getNumber("after").value_or(1)),
                                            [cb = params.callback] { cb(payload::success("later")); });
  }
};

class PrintingHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "test.print";
  void handleWith(H5HandlerInputParams params) override {
    printDiagnostic(params.data.getString("text").value_or(""));
    params.callback(true);
  }
};

// Answers from another thread, as a real transfer does; "hang" keeps the work
// token forever, so the call cannot settle.
class ThreadedHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "test.threaded";
  void handleWith(H5HandlerInputParams params) override {
    auto work = platform().dispatch->beginOutstandingWork();
    if (params.data.getBool("hang").value_or(false)) {
      leaked_ = work;
      return;
    }
    std::thread([work, main = platform().dispatch->main(), cb = params.callback]() mutable {
      main->async([cb] { cb(payload::success("from a thread")); });
      work.reset();
    }).detach();
  }
  std::shared_ptr<OutstandingWork> leaked_;
};

// Reports how far it is, "steps" counts 50 ms of virtual time apart from
// the call on, then answers (the throttling of progress, case 17).
class SteppedTransferHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "test.progress";
  void handleWith(H5HandlerInputParams params) override {
    const auto steps = params.data.getInt("steps").value_or(1);
    for (std::int64_t i = 1; i <= steps; ++i) {
      platform().dispatch->main()->asyncAfter(std::chrono::milliseconds(50 * (i - 1)), [params, i, steps] {
        params.progress(TransferProgress{i * 10, steps * 10});
        if (i == steps) params.callback(payload::success("done"));
      });
    }
  }
};

class RunnerCases : public testing::TestWithParam<std::string> {};

TEST_P(RunnerCases, ProducesTheExpectedLines) {
  auto parsed = json::parseFile(std::filesystem::path(VANTU_RUNNER_CASES) / GetParam());
  ASSERT_TRUE(parsed && parsed->ok());
  const Dict* caseFile = parsed->value().asDict();
  ASSERT_NE(caseFile, nullptr);

  SimDevice device;
  device.install();
  device.pickers().baseDirectory = VANTU_RUNNER_CASES;
  if (const Value* scenario = caseFile->find("scenario")) {
    auto error = device.apply(*scenario);
    ASSERT_FALSE(error) << *error;
  }
  RunnerOptions options;
  options.settleTimeout = std::chrono::milliseconds(caseFile->getInt("settleTimeoutMs").value_or(10000));
  HeadlessRunner runner(device, options);
  runner.registry().addAll(BridgeList<AnswerTwiceHandler, AnswerLaterHandler, PrintingHandler, ThreadedHandler,
                                     SteppedTransferHandler>{});

  auto expected = caseFile->getArray("expect").value_or(Array{});
  std::vector<Value> outputs;
  for (const Value& line : caseFile->getArray("lines").value_or(Array{})) {
    if (auto out = runner.processLine(line.isString() ? *line.asString() : json::write(line))) {
      auto output = json::parse(*out);
      ASSERT_TRUE(output.ok()) << "runner wrote invalid JSON: " << *out;
      outputs.push_back(output.value());
    }
  }
  ASSERT_EQ(outputs.size(), expected.size());
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    // An expected "error" ending in "*" matches any error text starting with
    // what precedes it (the JSON parser's own wording, say).
    const Dict* want = expected[i].asDict();
    Dict* got = outputs[i].asDict();
    auto pattern = want ? want->getString("error") : std::nullopt;
    auto actual = got ? got->getString("error") : std::nullopt;
    if (pattern && actual && pattern->ends_with('*') &&
        actual->starts_with(std::string_view(*pattern).substr(0, pattern->size() - 1))) {
      got->set("error", *pattern);
    }
    EXPECT_EQ(json::write(outputs[i]), json::write(expected[i])) << "output " << i + 1;
  }
}

std::vector<std::string> caseNames() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(VANTU_RUNNER_CASES)) {
    if (entry.path().extension() == ".json") names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

INSTANTIATE_TEST_SUITE_P(Cases, RunnerCases, testing::ValuesIn(caseNames()),
                         [](const testing::TestParamInfo<std::string>& info) {
                           std::string name = info.param.substr(0, info.param.find('.'));
                           for (char& c : name) c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                           return name;
                         });

TEST(RunnerStreams, WritesOneLinePerNonBlankInputLine) {
  SimDevice device;
  device.install();
  HeadlessRunner runner(device);
  std::istringstream in("{\"bridge\":\"vantuDeviceManufacturer\"}\n\n   \nnot json\n{\"advance\":1}");
  std::ostringstream out;
  runner.run(in, out);
  std::istringstream written(out.str());
  std::vector<std::string> lines;
  for (std::string line; std::getline(written, line);) lines.push_back(line);
  ASSERT_EQ(lines.size(), 3u);
  const int numbers[] = {1, 4, 5};  // blank lines are counted but not answered
  for (int i = 0; i < 3; ++i) {
    EXPECT_NE(lines[i].find("\"line\":" + std::to_string(numbers[i]) + ","), std::string::npos) << lines[i];
  }
}

}  // namespace
}  // namespace vantu::sim
