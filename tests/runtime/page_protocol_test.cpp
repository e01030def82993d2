// The page protocol without a web view: message parsing, the frame and
// whitelist gate, answers delivered as scripts, and answers owed to a page
// that has gone.

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/platform/alert_controller.h"
#include "vantu/runtime/page_bridge.h"
#include "vantu/runtime/page_events.h"

namespace vantu::page {
namespace {

using testing_support::Strings;

TEST(PageMessage, ReadsWellFormedMessagesAndSaysWhatIsWrongWithTheRest) {
  struct Case {
    const char* text;
    std::optional<std::int64_t> id;  // of a message, or of a malformed one
    const char* reasonPart;          // empty: well formed
  };
  const Case cases[] = {
      {R"({"id": 7, "bridge": "vantuGetData", "data": {"keys": ["a"]}})", 7, ""},
      {R"({"bridge": "b", "id": 1})", 1, ""},  // no data: an empty dictionary
      {R"([1, "b", {}])", std::nullopt, "not a JSON object"},
      {R"({"id": 0, "bridge": "b"})", std::nullopt, "\"id\" must be a positive integer"},
      {R"({"id": "3", "bridge": "b"})", std::nullopt, "\"id\" must be a positive integer"},
      {R"({"id": 4})", 4, "\"bridge\" must be a non-empty string"},
      {R"({"id": 4, "bridge": ""})", 4, "\"bridge\" must be a non-empty string"},
      {R"({"id": 5, "bridge": "b", "data": [1]})", 5, "\"data\" must be an object"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    auto parsed = parseMessage(c.text);
    if (*c.reasonPart == '\0') {
      auto* message = std::get_if<Message>(&parsed);
      ASSERT_NE(message, nullptr);
      EXPECT_EQ(message->id, *c.id);
    } else {
      auto* malformed = std::get_if<MalformedMessage>(&parsed);
      ASSERT_NE(malformed, nullptr);
      EXPECT_EQ(malformed->id, c.id);
      EXPECT_NE(malformed->reason.find(c.reasonPart), std::string::npos) << malformed->reason;
    }
  }
  auto message = std::get<Message>(parseMessage(R"({"id": 7, "bridge": "vantuGetData", "data": {"keys": ["a"]}})"));
  EXPECT_EQ(message.bridge, "vantuGetData");
  EXPECT_EQ(json::write(message.data), R"({"keys":["a"]})");
}

TEST(PageMessage, BatchEntriesAreJsonThatIsAlsoValidJavaScript) {
  std::string entries;
  // U+2028 ends a line in older JavaScript: it must arrive escaped.
  appendAnswerEntry(entries, 12, Dict{{"data", "a\u2028b"}, {"n", 1.5}});
  appendProgressEntry(entries, 13, TransferProgress{65536, std::nullopt});
  appendProgressEntry(entries, 13, TransferProgress{70000, 70000});
  appendEventEntry(entries, "say \"hi\"", Value());
  EXPECT_EQ(entries,
            R"([0,12,{"data":"a\u2028b","n":1.5}],[1,13,{"received":65536,"total":null}],)"
            R"([1,13,{"received":70000,"total":70000}],[2,"say \"hi\"",null])");
  EXPECT_EQ(receiveScript("[" + entries + "]"), "window.vantu.__receive([" + entries + "]);");
}

class PageBridgeTest : public testing_support::BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({"screens": [{"name": "page", "uniqueAppIdentifier": "shop.mini"}]})");
    Laizaxlu::shared().setupWhiteListWebDomains({"shop.example"});
    bridge = std::make_unique<PageBridge>(std::shared_ptr<BridgeRegistry>(std::shared_ptr<void>(), &registry),
                                          [this](std::string batch) { scripts.push_back(std::move(batch)); },
                                          [this] { return pageUrl; });
    bridge->setScreen(device.screen("page"));
  }

  Receipt send(std::string_view text, Origin origin = {true, "https://shop.example/index.html"}) {
    auto receipt = bridge->receive(text, origin);
    settle();
    return receipt;
  }

  std::unique_ptr<PageBridge> bridge;
  Strings scripts;  // the batches delivered
  std::string pageUrl = "https://shop.example/index.html";
};

TEST_F(PageBridgeTest, OnlyTheTopFrameOfAWhitelistedPageReachesTheBridges) {
  const std::string call = R"({"id": 1, "bridge": "vantuDeviceManufacturer"})";
  EXPECT_EQ(send(call, {false, "https://shop.example/frame.html"}), Receipt::refused);
  EXPECT_EQ(send(call, {true, "https://elsewhere.example/"}), Receipt::refused);
  EXPECT_EQ(send(call, {true, "not a url at all"}), Receipt::refused);
  EXPECT_TRUE(scripts.empty());  // a refused frame learns nothing
  EXPECT_EQ(send(call), Receipt::dispatched);
  EXPECT_EQ(scripts, Strings{R"([[0,1,{"data":"Apple"}]])"});
}

TEST_F(PageBridgeTest, EveryReadableMessageIsAnswered) {
  EXPECT_EQ(send(R"({"id": 3, "bridge": "noSuchBridge"})"), Receipt::dispatched);
  EXPECT_EQ(send(R"({"id": 4, "bridge": "vantuGetData", "data": "keys"})"), Receipt::malformedAnswered);
  EXPECT_EQ(send("{oops"), Receipt::malformedDropped);
  ASSERT_EQ(scripts.size(), 2u);
  EXPECT_EQ(scripts[0], R"([[0,3,{"error":2,"message":"Unknown bridge: noSuchBridge"}]])");
  EXPECT_EQ(scripts[1],
            R"([[0,4,{"error":2,"message":"Malformed bridge message: \"data\" must be an object"}]])");
}

TEST_F(PageBridgeTest, AnswersOwedToAReplacedOrClosedPageAreDropped) {
  Strings observed;
  bridge->setObserver({[&](const Message& m) { observed.push_back("call " + m.bridge); },
                       [&](std::int64_t id, std::string_view, const Value&) { observed.push_back("answer " + std::to_string(id)); },
                       nullptr});
  auto tapFirstButton = [&] {
    auto alert = std::dynamic_pointer_cast<AlertController>(device.screen("page")->presentedViewController());
    ASSERT_NE(alert, nullptr);
    alert->tapAction(0);
    settle();
  };
  const std::string alert = R"({"id": 1, "bridge": "showAlert", "data": {"message": "m", "type": "normal"}})";
  send(alert);
  tapFirstButton();
  EXPECT_EQ(scripts, Strings{R"([[0,1,{"data":{"success":true}}]])"});

  send(alert);
  bridge->pageReplaced();
  tapFirstButton();
  send(alert);
  bridge.reset();
  tapFirstButton();
  EXPECT_EQ(scripts.size(), 1u);
  EXPECT_EQ(observed, (Strings{"call showAlert", "answer 1", "call showAlert", "call showAlert"}));
}

TEST_F(PageBridgeTest, AnAnswerGivenOnAnotherThreadReachesThePageFromTheMainQueue) {
  // Owner authentication answers on the platform's queue, possibly while
  // the process is already taking the platform down; this handler answers
  // from a thread of its own after the platform is gone.
  struct ElsewhereHandler : H5BaseHandler {
    void handleWith(H5HandlerInputParams params) override { kept = params.callback; }
    H5Callback kept;
  };
  auto handler = std::make_shared<ElsewhereHandler>();
  registry.add("elsewhere", [handler] { return handler; });
  std::vector<std::thread::id> evaluatedOn;
  bridge = std::make_unique<PageBridge>(std::shared_ptr<BridgeRegistry>(std::shared_ptr<void>(), &registry),
                                        [&](std::string batch) {
                                          evaluatedOn.push_back(std::this_thread::get_id());
                                          scripts.push_back(std::move(batch));
                                        });
  bridge->setScreen(device.screen("page"));
  EXPECT_EQ(bridge->receive(R"({"id": 7, "bridge": "elsewhere"})", {true, "https://shop.example/"}),
            Receipt::dispatched);
  installPlatform(nullptr);
  std::thread([callback = handler->kept] { callback(Dict{{"data", "late"}}); }).join();
  EXPECT_TRUE(scripts.empty());  // waits for the main queue
  settle();
  EXPECT_EQ(scripts, Strings{R"([[0,7,{"data":"late"}]])"});
  EXPECT_EQ(evaluatedOn, std::vector<std::thread::id>{std::this_thread::get_id()});
}

}  // namespace
}  // namespace vantu::page

namespace vantu::page {
namespace {

// Reports `steps` progress counts 50 ms of virtual time apart, then answers.
class SteppedTransferHandler : public H5BaseHandler {
 public:
  void handleWith(H5HandlerInputParams params) override {
    const auto steps = params.data.getInt("steps").value_or(1);
    for (std::int64_t i = 1; i <= steps; ++i) {
      platform().dispatch->main()->asyncAfter(std::chrono::milliseconds(50 * (i - 1)), [params, i, steps] {
        params.progress(TransferProgress{i * 10, steps * 10});
        if (i == steps) params.callback(Dict{{"data", "done"}});
      });
    }
  }
};

class PageDeliveryTest : public PageBridgeTest {
 protected:
  void SetUp() override {
    PageBridgeTest::SetUp();
    registry.add("stepped", [] { return std::make_shared<SteppedTransferHandler>(); });
  }
};

TEST_F(PageDeliveryTest, WhatIsReadyInOneTurnGoesOutAsOneBatchInOrder) {
  const Origin page{true, "https://shop.example/index.html"};
  bridge->receive(R"({"id": 1, "bridge": "vantuDeviceManufacturer"})", page);
  bridge->emit("signedIn", Dict{{"user", "ana"}});
  bridge->receive(R"({"id": 2, "bridge": "noSuchBridge"})", page);
  bridge->receive(R"({"id": 3, "bridge": "vantuDeviceManufacturer"})", page);
  EXPECT_TRUE(scripts.empty());  // sent from the main queue, after this turn
  settle();
  EXPECT_EQ(scripts, Strings{R"([[0,1,{"data":"Apple"}],[2,"signedIn",{"user":"ana"}],)"
                             R"([0,2,{"error":2,"message":"Unknown bridge: noSuchBridge"}],[0,3,{"data":"Apple"}]])"});
  send(R"({"id": 4, "bridge": "vantuDeviceManufacturer"})");
  EXPECT_EQ(scripts.back(), R"([[0,4,{"data":"Apple"}]])");  // the next turn, the next batch
}

TEST_F(PageDeliveryTest, EventsReachOnlyAWhitelistedPageAndNeverTheDocumentAfterIt) {
  struct Case {
    const char* pageUrl;
    bool replaceBeforeSending;
    Strings batches;
  };
  const Case cases[] = {
      {"https://shop.example/index.html", false, {R"([[2,"back",null]])"}},
      {"https://elsewhere.example/", false, {}},
      {"https://shop.example/index.html", true, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.pageUrl);
    scripts.clear();
    pageUrl = c.pageUrl;
    bridge->pageReplaced();  // a new document: admission is decided again
    bridge->emit("back", Value());
    bridge->emit("", Value());  // no name: ignored
    if (c.replaceBeforeSending) bridge->pageReplaced();
    settle();
    EXPECT_EQ(scripts, c.batches);
  }
}

TEST_F(PageDeliveryTest, NetworkChangesAndSharedEventsReachEveryPage) {
  Strings observed;
  bridge->setObserver({nullptr, nullptr, nullptr, nullptr,
                       [&](std::string_view name, const Value& detail) {
                         observed.push_back(std::string(name) + " " + json::write(detail));
                       }});
  apply(R"({"device": {"network": {"flags": []}}})");
  settle();
  PageEvents::shared().post("signedOut", Value());
  settle();
  apply(R"({"device": {"network": {"flags": ["reachable", "isWWAN"], "radioAccessTechnology": "CTRadioAccessTechnologyLTE"}}})");
  settle();
  // Flags that differ but give the same text say nothing new.
  apply(R"({"device": {"network": {"flags": ["reachable", "isWWAN", "isDirect"]}}})");
  settle();
  EXPECT_EQ(scripts, (Strings{R"([[2,"networkChanged",{"type":"No Connection"}]])", R"([[2,"signedOut",null]])",
                              R"([[2,"networkChanged",{"type":"4G"}]])"}));
  EXPECT_EQ(observed.size(), 3u);
}

TEST_F(PageDeliveryTest, ProgressIsThrottledAndTheLastCountPrecedesTheAnswer) {
  Strings observed;
  bridge->setObserver({nullptr, nullptr, nullptr,
                       [&](std::int64_t id, std::string_view bridgeName, const TransferProgress& p) {
                         observed.push_back(std::to_string(id) + " " + std::string(bridgeName) + " " +
                                            std::to_string(p.received));
                       },
                       nullptr});
  send(R"({"id": 5, "bridge": "stepped", "data": {"steps": 5}})");
  device.dispatch().advance(std::chrono::milliseconds(200));
  // Counts at 0, 50, 100, 150 and 200 ms: 10 goes out at once; 20 is held
  // and overtaken by 30, which goes out at 100 ms; 40 is held and overtaken
  // by 50, which goes out at 200 ms in the same batch as the answer.
  EXPECT_EQ(scripts, (Strings{R"([[1,5,{"received":10,"total":50}]])", R"([[1,5,{"received":30,"total":50}]])",
                              R"([[1,5,{"received":50,"total":50}],[0,5,{"data":"done"}]])"}));
  EXPECT_EQ(observed, (Strings{"5 stepped 10", "5 stepped 30", "5 stepped 50"}));
}

}  // namespace
}  // namespace vantu::page
