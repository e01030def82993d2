#include "vantu/runtime/page_bridge.h"

#include <thread>

#include "vantu/core/laizaxlu.h"
#include "vantu/core/url.h"
#include "vantu/platform/platform.h"

namespace vantu::page {

// What an answer needs to reach the page. Handlers may keep their callback
// past the page (or the bridge object): the channel tells them the page they
// answer is gone.
struct PageBridge::Channel : std::enable_shared_from_this<Channel> {
  Evaluate evaluate;
  std::uint64_t document = 0;  // bumped when a new document replaces the page
  bool open = true;
  std::function<void(std::int64_t, std::string_view, const Value&)> observe;
  // The page lives on the thread that made the bridge (the main thread).
  // Some handlers answer on a queue of the platform's (owner
  // authentication); their answers go over to the main queue first. The
  // queue is taken when the bridge is made: a late answer may come while
  // the process is tearing the platform down.
  std::thread::id pageThread = std::this_thread::get_id();
  std::shared_ptr<SerialQueue> mainQueue = platform().dispatch->main();

  void deliver(std::uint64_t forDocument, std::int64_t id, std::string_view bridge, const Value& answer) {
    if (std::this_thread::get_id() != pageThread) {
      mainQueue->async(
          [self = shared_from_this(), forDocument, id, bridge = std::string(bridge), answer] {
            self->deliver(forDocument, id, bridge, answer);
          });
      return;
    }
    if (!open || forDocument != document) return;
    if (observe) observe(id, bridge, answer);
    evaluate(deliveryScript(id, answer));
  }
};

PageBridge::PageBridge(std::shared_ptr<BridgeRegistry> registry, Evaluate evaluate)
    : registry_(std::move(registry)), channel_(std::make_shared<Channel>()) {
  channel_->evaluate = std::move(evaluate);
}

PageBridge::~PageBridge() { channel_->open = false; }

void PageBridge::setObserver(PageObserver observer) {
  observer_ = std::move(observer);
  channel_->observe = observer_.answer;
}

bool PageBridge::isAllowed(const Origin& origin) {
  if (!origin.topFrame) return false;
  auto url = Url::parse(origin.pageUrl);
  return url && Laizaxlu::shared().isURLWhitelisted(*url);
}

bool PageBridge::admits(const Origin& origin) const {
  if (!domains_) return isAllowed(origin);
  if (!origin.topFrame) return false;
  auto url = Url::parse(origin.pageUrl);
  return url && domains_->isURLWhitelisted(*url);
}

Receipt PageBridge::receive(std::string_view text, const Origin& origin) {
  if (!admits(origin)) {
    if (observer_.rejected) {
      observer_.rejected((origin.topFrame ? "refused a message from " : "refused a sub-frame message from ") +
                         origin.pageUrl);
    }
    return Receipt::refused;
  }
  auto parsed = parseMessage(text);
  if (auto* malformed = std::get_if<MalformedMessage>(&parsed)) {
    if (!malformed->id) {
      if (observer_.rejected) observer_.rejected(malformed->reason);
      return Receipt::malformedDropped;
    }
    channel_->deliver(channel_->document, *malformed->id, "", malformedAnswer(*malformed));
    return Receipt::malformedAnswered;
  }
  auto& message = std::get<Message>(parsed);
  if (observer_.call) observer_.call(message);
  auto callback = [channel = channel_, document = channel_->document, id = message.id,
                   bridge = message.bridge](const Value& answer) { channel->deliver(document, id, bridge, answer); };
  registry_->dispatch(message.bridge, H5HandlerInputParams(screen_.lock(), std::move(message.data), std::move(callback)));
  return Receipt::dispatched;
}

void PageBridge::pageReplaced() { ++channel_->document; }

}  // namespace vantu::page
