#include "vantu/runtime/page_bridge.h"

#include <optional>
#include <thread>

#include "vantu/core/laizaxlu.h"
#include "vantu/core/progress_throttle.h"
#include "vantu/core/url.h"
#include "vantu/platform/platform.h"
#include "vantu/runtime/page_events.h"

namespace vantu::page {

// What answers, progress and events need to reach the page. Handlers may
// keep their callback past the page (or the bridge object): the channel
// tells them the page they answer is gone.
struct PageBridge::Channel : std::enable_shared_from_this<Channel> {
  Deliver deliver;
  PageUrl pageUrl;
  std::uint64_t document = 0;  // bumped when a new document replaces the page
  bool open = true;
  PageObserver observer;
  // The page lives on the thread that made the bridge (the main thread).
  // Some handlers answer on a queue of the platform's (owner
  // authentication); their answers go over to the main queue first. The
  // queue and dispatch are taken when the bridge is made: a late answer may
  // come while the process is tearing the platform down.
  std::thread::id pageThread = std::this_thread::get_id();
  std::shared_ptr<Dispatch> dispatch = platform().dispatch;
  std::shared_ptr<SerialQueue> mainQueue = dispatch->main();

  // The next batch without its closing bracket ("[" and the entries so
  // far), and whether a task to send it is queued.
  std::string outbox;
  bool flushQueued = false;
  // Whether the current document may hear events; decided at its first event.
  std::optional<bool> admitted;

  bool onPageThread() const { return std::this_thread::get_id() == pageThread; }

  void answer(std::uint64_t forDocument, std::int64_t id, std::string_view bridge, const Value& payload) {
    if (!onPageThread()) {
      mainQueue->async([self = shared_from_this(), forDocument, id, bridge = std::string(bridge), payload] {
        self->answer(forDocument, id, bridge, payload);
      });
      return;
    }
    if (!open || forDocument != document) return;
    if (observer.answer) observer.answer(id, bridge, payload);
    if (outbox.empty()) outbox = "[";
    appendAnswerEntry(outbox, id, payload);
    scheduleFlush();
  }

  void progress(std::uint64_t forDocument, std::int64_t id, std::string_view bridge, const TransferProgress& sofar) {
    if (!onPageThread()) {  // a held report flushed by an answer given elsewhere
      mainQueue->async([self = shared_from_this(), forDocument, id, bridge = std::string(bridge), sofar] {
        self->progress(forDocument, id, bridge, sofar);
      });
      return;
    }
    if (!open || forDocument != document) return;
    if (observer.progress) observer.progress(id, bridge, sofar);
    if (outbox.empty()) outbox = "[";
    appendProgressEntry(outbox, id, sofar);
    scheduleFlush();
  }

  void event(std::string_view name, const Value& detail) {
    if (!open || name.empty()) return;
    if (!admitted) admitted = pageUrl && PageBridge::isAllowed({true, pageUrl()});
    if (!*admitted) return;
    if (observer.event) observer.event(name, detail);
    if (outbox.empty()) outbox = "[";
    appendEventEntry(outbox, name, detail);
    scheduleFlush();
  }

  void scheduleFlush() {
    if (flushQueued) return;
    flushQueued = true;
    mainQueue->async([self = shared_from_this()] { self->flush(); });
  }

  void flush() {
    flushQueued = false;
    if (!open || outbox.empty()) return;
    // The outbox becomes the batch in place: a large answer is not copied.
    std::string batch = std::move(outbox);
    outbox.clear();
    batch += ']';
    deliver(std::move(batch));
  }

  void replaced() {
    ++document;
    outbox.clear();
    admitted.reset();
  }
};

PageBridge::PageBridge(std::shared_ptr<BridgeRegistry> registry, Deliver deliver, PageUrl pageUrl)
    : registry_(std::move(registry)), channel_(std::make_shared<Channel>()) {
  channel_->deliver = std::move(deliver);
  channel_->pageUrl = std::move(pageUrl);
  eventSubscription_ = PageEvents::shared().listen(
      [channel = channel_](std::string_view name, const Value& detail) { channel->event(name, detail); });
}

PageBridge::~PageBridge() { channel_->open = false; }

void PageBridge::setObserver(PageObserver observer) {
  observer_ = std::move(observer);
  channel_->observer = observer_;
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
    channel_->answer(channel_->document, *malformed->id, "", malformedAnswer(*malformed));
    return Receipt::malformedAnswered;
  }
  auto& message = std::get<Message>(parsed);
  if (observer_.call) observer_.call(message);
  auto call = throttledCall(
      [channel = channel_, document = channel_->document, id = message.id, bridge = message.bridge](
          const Value& answer) { channel->answer(document, id, bridge, answer); },
      [channel = channel_, document = channel_->document, id = message.id, bridge = message.bridge](
          const TransferProgress& sofar) { channel->progress(document, id, bridge, sofar); },
      channel_->dispatch);
  registry_->dispatch(message.bridge, H5HandlerInputParams(screen_.lock(), std::move(message.data),
                                                           std::move(call.callback), std::move(call.progress)));
  return Receipt::dispatched;
}

void PageBridge::emit(std::string_view name, const Value& detail) { channel_->event(name, detail); }

void PageBridge::pageReplaced() { channel_->replaced(); }

}  // namespace vantu::page
