// End-to-end cases of the headless runner: JSON lines in, JSON lines out.
// Each file in cases/ holds a scenario, the input lines and the expected
// output objects (compared with their key order).

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include "platforms/sim/headless_runner.h"
#include "vantu/core/diagnostics.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/value/json.h"

namespace vantu::sim {
namespace {

// Test bridges that exercise the runner's settling and reporting.
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
    auto seconds = params.data.getNumber("after").value_or(1);
    platform().dispatch->main()->asyncAfter(secondsToDuration(seconds),
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

// Answers from another thread, as a real transfer does.
class ThreadedHandler : public H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "test.threaded";
  void handleWith(H5HandlerInputParams params) override {
    auto work = platform().dispatch->beginOutstandingWork();
    auto main = platform().dispatch->main();
    bool hang = params.data.getBool("hang").value_or(false);
    std::thread([work, main, hang, cb = params.callback]() mutable {
      if (hang) return;  // the work token is dropped without an answer
      main->async([cb] { cb(payload::success("from a thread")); });
      work.reset();
    }).detach();
    if (hang) leaked_ = work;  // never released: the call cannot settle
  }
  std::shared_ptr<OutstandingWork> leaked_;
};

Value readJsonFile(const std::filesystem::path& path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  auto parsed = json::parse(text.str());
  EXPECT_TRUE(parsed.ok()) << path << ": " << (parsed.ok() ? "" : parsed.error().message);
  return parsed.ok() ? parsed.value() : Value();
}

class RunnerCases : public testing::TestWithParam<std::string> {};

TEST_P(RunnerCases, ProducesTheExpectedLines) {
  auto path = std::filesystem::path(VANTU_RUNNER_CASES) / GetParam();
  Value file = readJsonFile(path);
  const Dict* caseFile = file.asDict();
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
  runner.registry().addAll(BridgeList<AnswerTwiceHandler, AnswerLaterHandler, PrintingHandler, ThreadedHandler>{});

  auto lines = caseFile->getArray("lines").value_or(Array{});
  auto expected = caseFile->getArray("expect").value_or(Array{});
  std::vector<Value> outputs;
  for (const Value& line : lines) {
    std::string text = line.isString() ? *line.asString() : json::write(line);
    if (auto out = runner.processLine(text)) {
      auto parsed = json::parse(*out);
      ASSERT_TRUE(parsed.ok()) << "runner wrote invalid JSON: " << *out;
      outputs.push_back(parsed.value());
    }
  }
  ASSERT_EQ(outputs.size(), expected.size());
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    // An expected "error" ending in "*" matches any error text starting
    // with what precedes it (the JSON parser's own wording, say).
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
  std::vector<std::string> lines;
  std::istringstream written(out.str());
  for (std::string line; std::getline(written, line);) lines.push_back(line);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_NE(lines[0].find("\"line\":1,"), std::string::npos);
  EXPECT_NE(lines[1].find("\"line\":4,"), std::string::npos);
  EXPECT_NE(lines[2].find("\"line\":5,"), std::string::npos);
}

}  // namespace
}  // namespace vantu::sim
