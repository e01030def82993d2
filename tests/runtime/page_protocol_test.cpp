// The page protocol without a web view: message parsing, the frame and
// whitelist gate, answers delivered as scripts, and answers owed to a page
// that has gone.

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/platform/alert_controller.h"
#include "vantu/runtime/page_bridge.h"

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

TEST(PageMessage, DeliveryScriptInlinesThePayloadAsValidJavaScript) {
  // U+2028 ends a line in older JavaScript: it must arrive escaped.
  EXPECT_EQ(deliveryScript(12, Dict{{"data", "a\u2028b"}, {"n", 1.5}}),
            R"(window.vantu.__deliver(12,{"data":"a\u2028b","n":1.5});)");
}

class PageBridgeTest : public testing_support::BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({"screens": [{"name": "page", "uniqueAppIdentifier": "shop.mini"}]})");
    Laizaxlu::shared().setupWhiteListWebDomains({"shop.example"});
    bridge = std::make_unique<PageBridge>(std::shared_ptr<BridgeRegistry>(std::shared_ptr<void>(), &registry),
                                          [this](std::string script) { scripts.push_back(std::move(script)); });
    bridge->setScreen(device.screen("page"));
  }

  Receipt send(std::string_view text, Origin origin = {true, "https://shop.example/index.html"}) {
    auto receipt = bridge->receive(text, origin);
    settle();
    return receipt;
  }

  std::unique_ptr<PageBridge> bridge;
  Strings scripts;
};

TEST_F(PageBridgeTest, OnlyTheTopFrameOfAWhitelistedPageReachesTheBridges) {
  const std::string call = R"({"id": 1, "bridge": "vantuDeviceManufacturer"})";
  EXPECT_EQ(send(call, {false, "https://shop.example/frame.html"}), Receipt::refused);
  EXPECT_EQ(send(call, {true, "https://elsewhere.example/"}), Receipt::refused);
  EXPECT_EQ(send(call, {true, "not a url at all"}), Receipt::refused);
  EXPECT_TRUE(scripts.empty());  // a refused frame learns nothing
  EXPECT_EQ(send(call), Receipt::dispatched);
  EXPECT_EQ(scripts, Strings{R"(window.vantu.__deliver(1,{"data":"Apple"});)"});
}

TEST_F(PageBridgeTest, EveryReadableMessageIsAnswered) {
  EXPECT_EQ(send(R"({"id": 3, "bridge": "noSuchBridge"})"), Receipt::dispatched);
  EXPECT_EQ(send(R"({"id": 4, "bridge": "vantuGetData", "data": "keys"})"), Receipt::malformedAnswered);
  EXPECT_EQ(send("{oops"), Receipt::malformedDropped);
  ASSERT_EQ(scripts.size(), 2u);
  EXPECT_EQ(scripts[0], R"(window.vantu.__deliver(3,{"error":2,"message":"Unknown bridge: noSuchBridge"});)");
  EXPECT_EQ(scripts[1],
            R"(window.vantu.__deliver(4,{"error":2,"message":"Malformed bridge message: \"data\" must be an object"});)");
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
  EXPECT_EQ(scripts, Strings{R"(window.vantu.__deliver(1,{"data":{"success":true}});)"});

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
                                        [&](std::string script) {
                                          evaluatedOn.push_back(std::this_thread::get_id());
                                          scripts.push_back(std::move(script));
                                        });
  bridge->setScreen(device.screen("page"));
  EXPECT_EQ(bridge->receive(R"({"id": 7, "bridge": "elsewhere"})", {true, "https://shop.example/"}),
            Receipt::dispatched);
  installPlatform(nullptr);
  std::thread([callback = handler->kept] { callback(Dict{{"data", "late"}}); }).join();
  EXPECT_TRUE(scripts.empty());  // waits for the main queue
  settle();
  EXPECT_EQ(scripts, Strings{R"(window.vantu.__deliver(7,{"data":"late"});)"});
  EXPECT_EQ(evaluatedOn, std::vector<std::thread::id>{std::this_thread::get_id()});
}

}  // namespace
}  // namespace vantu::page
