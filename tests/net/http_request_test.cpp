// "httpRequest" against a real loopback server: every kind of outcome, what is sent, timeouts, measurements.

#include "tests/net/net_fixture.h"

namespace vantu::testing_support {
namespace {

using HttpRequestBridge = NetFixture;

std::string withUrl(const std::string& url, std::string_view rest = R"("method": "GET")") {
  return R"({"url": ")" + url + R"(", )" + std::string(rest) + "}";
}

TEST_F(HttpRequestBridge, AnyStatusIsASuccessWithHeadersStatusAndTextAndRequestsGoAsGiven) {
  const std::string get = R"("method": "GET")";
  // Any status is a success (200 and 404 are also pinned end to end in tests/platforms/gtk).
  const std::tuple<std::string, std::string, std::int64_t, std::string> cases[] = {
      {"/status/404", get, 404, "oops"}, {"/status/204", get, 204, ""}, {"/binary", get, 200, ""},
      {"/redirect", get, 200, "oops"},
      // Method, body and headers go as given; "/echo" answers "METHOD|X-Token header|body".
      {"/echo", R"("method": "POST", "data": {"a": 1, "b": [true]}, "headers": {"X-Token": "t1"})", 200,
       "POST|t1|{\n  \"a\" : 1,\n  \"b\" : [\n    true\n  ]\n}"},
      {"/echo", R"("method": "PUT", "data": "plain text", "headers": {"X-Token": "t1", "Count": 2})", 200, "PUT||plain text"},
      {"/echo", R"("method": "DELETE", "data": [1, 2])", 200, "DELETE||"},
  };
  for (const auto& [path, rest, status, text] : cases) {
    SCOPED_TRACE(path + " " + rest);
    Dict answer = answerOf(callAndWait("httpRequest", withUrl(server.url(path), rest)));
    EXPECT_EQ(answer.getInt("status"), status);
    EXPECT_EQ(answer.getString("data"), text);
    auto headers = answer.getDict("headers");
    ASSERT_TRUE(headers);
    EXPECT_EQ(answer.getString("headersStr"), json::write(*headers));
    if (!text.empty()) {
      EXPECT_EQ(headers->getString("Content-Type"), "text/plain");
    }
  }
}

// A url or method that is not text: runner case 16_network_files.
TEST_F(HttpRequestBridge, FailuresAnswerTheirMessageAsKeyAndCodeAsValueAlsoWithoutATransport) {
  GarbageListener garbage;
  const std::pair<std::string, std::string> cases[] = {
      {R"({"url": "http://exa mple/", "method": "GET"})", R"({"invalid url":2})"},
      {withUrl(refusedUrl()), R"({"error":12})"},
      {withUrl("ftp://127.0.0.1/x"), R"({"error":12})"},
      {withUrl(server.url("/echo"), R"("method": "BAD\r\nX-Injected: 1")"), R"({"error":12})"},
      {withUrl(garbage.url()), R"({"no HTTPresponse received":-2})"},
  };
  for (const auto& [data, expected] : cases) {
    SCOPED_TRACE(data);
    auto out = callAndWait("httpRequest", data);
    EXPECT_EQ(out.answers, Strings{expected});
    EXPECT_EQ(out.reported, Strings{"httpRequest"});
  }
  device.platformBundle()->httpTransport = nullptr;
  EXPECT_EQ(callAndWait("httpRequest", withUrl(server.url("/status/200"))).answers, Strings{R"({"error":12})"});
}

TEST_F(HttpRequestBridge, TimeoutIsWholeSecondsAndZeroFailsWithoutConnecting) {
  const int before = server.requests();
  EXPECT_EQ(callAndWait("httpRequest", withUrl(server.url("/slow"), R"("method": "GET", "timeout": 999)")).answers,
            Strings{R"({"error":12})"});
  EXPECT_EQ(server.requests(), before);
  // 1500 ms is one second, shorter than the server's two.
  EXPECT_EQ(callAndWait("httpRequest", withUrl(server.url("/slow"), R"("method": "GET", "timeout": 1500)")).answers,
            Strings{R"({"error":12})"});
  // A timeout that is not an integer leaves the default minute.
  auto late = callAndWait("httpRequest", withUrl(server.url("/slow"), R"("method": "GET", "timeout": "1000")"));
  EXPECT_EQ(answerOf(late).getString("data"), "late");
}

TEST_F(HttpRequestBridge, HostHearsOnceWhenMetricsComeFirstAndTwiceWhenTheyComeLast) {
  auto trackCalls = [](const CallOutcome& out) {
    Strings metrics;
    for (const auto& call : out.hostCalls) {
      auto parsed = json::parse(call);
      auto arguments = parsed.value().asDict()->getDict("arguments").value_or(Dict{});
      EXPECT_EQ(parsed.value().asDict()->getString("operation"), "trackWithOstrix");
      EXPECT_EQ(arguments.getInt("status"), 404);
      EXPECT_EQ(arguments.getInt("responseDataLength"), 4);
      EXPECT_GT(arguments.getNumber("responseTime").value_or(0), 0);
      metrics.push_back(arguments.getBool("hasMetrics") == true ? "metrics" : "none");
    }
    return metrics;
  };
  const std::string notFound = withUrl(server.url("/status/404"));
  EXPECT_EQ(trackCalls(callAndWait("httpRequest", notFound)), Strings{"metrics"});
  apply(R"({"http": {"metricsOrder": "afterCompletion"}})");
  EXPECT_EQ(trackCalls(callAndWait("httpRequest", notFound)), (Strings{"none", "metrics"}));
  // Failed transfers and screens without a host delegate report nothing.
  EXPECT_TRUE(callAndWait("httpRequest", withUrl(refusedUrl())).hostCalls.empty());
  auto bare = callAndWait("httpRequest", notFound, "bare");
  EXPECT_TRUE(bare.hostCalls.empty());
  EXPECT_EQ(answerOf(bare).getInt("status"), 404);
}

}  // namespace
}  // namespace vantu::testing_support
