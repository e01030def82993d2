#pragma once
// One page's end of the page protocol: takes the page's message texts,
// refuses what may not call bridges, runs the calls through a registry and
// sends answers, progress reports and events back in batches.
//
// The gate: only the top frame of a page whose URL passes the web-domain
// check may call: the bridge's own whitelist when it was given one (a
// container with a whitelist of its own), else the environment's
// (`Laizaxlu::isURLWhitelisted`). A refused
// message gets no answer at all: a frame that may not call bridges learns
// nothing from them. Everything else gets an answer: a malformed message
// with a readable id gets a flat error for that id, an unknown bridge the
// registry's flat error.
//
// Batches: whatever becomes ready for the page during one turn of the main
// queue goes out as one batch, in the order it became ready, from a task
// queued on the main queue behind the work already there.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "vantu/core/h5_white_list_domain_data.h"
#include "vantu/platform/transfer_progress.h"
#include "vantu/platform/view_controller.h"
#include "vantu/runtime/bridge_registry.h"
#include "vantu/runtime/page_message.h"

namespace vantu::page {

/// Where a message came from, as the container knows it.
struct Origin {
  bool topFrame = false;
  /// The URL of the page the message came from.
  std::string pageUrl;
};

/// What happened to one message.
enum class Receipt { dispatched, malformedAnswered, malformedDropped, refused };

/// Watches the traffic (the command's call log).
struct PageObserver {
  std::function<void(const Message&)> call;
  std::function<void(std::int64_t id, std::string_view bridge, const Value& answer)> answer;
  /// A message that was refused or could not be read at all.
  std::function<void(std::string_view reason)> rejected;
  /// A progress report on its way to the page (after throttling).
  std::function<void(std::int64_t id, std::string_view bridge, const TransferProgress& progress)> progress;
  /// An event on its way to the page.
  std::function<void(std::string_view name, const Value& detail)> event;
};

class PageBridge {
 public:
  /// Hands one batch to the page's top frame: `batch` is the JSON text of an
  /// array of entries for `window.vantu.__receive` (docs/page-protocol.md).
  using Deliver = std::function<void(std::string batch)>;
  /// The URL of the page the web view shows now.
  using PageUrl = std::function<std::string()>;

  /// Events reach the page only while `pageUrl` gives a URL that passes the
  /// whitelist (checked once per document); without it, no events.
  PageBridge(std::shared_ptr<BridgeRegistry> registry, Deliver deliver, PageUrl pageUrl = {});
  ~PageBridge();
  PageBridge(const PageBridge&) = delete;
  PageBridge& operator=(const PageBridge&) = delete;

  /// The screen whose calls these are (the handlers' calling view controller).
  void setScreen(std::weak_ptr<ViewController> screen) { screen_ = std::move(screen); }
  void setObserver(PageObserver observer);

  /// Checks pages against `domains` in place of the environment's list and
  /// its one-time bypass; nullptr goes back to the environment's.
  void setDomainWhitelist(std::shared_ptr<const H5WhiteListDomainData> domains) { domains_ = std::move(domains); }

  /// Whether a message from `origin` may call bridges by the environment's
  /// web-domain check.
  static bool isAllowed(const Origin& origin);
  /// Whether a message from `origin` may call bridges through this bridge
  /// (its own whitelist, or the environment's check).
  bool admits(const Origin& origin) const;

  /// Handles one message text. Call on the main thread.
  Receipt receive(std::string_view text, const Origin& origin);

  /// Sends an event to the page (after what is already on its way). An
  /// empty name is ignored. Call on the main thread.
  void emit(std::string_view name, const Value& detail);

  /// A new document replaced the page: answers, progress and events still
  /// owed to the old one are dropped rather than handed to the new one.
  void pageReplaced();

 private:
  struct Channel;
  std::shared_ptr<BridgeRegistry> registry_;
  std::shared_ptr<Channel> channel_;
  std::weak_ptr<ViewController> screen_;
  PageObserver observer_;
  std::shared_ptr<const H5WhiteListDomainData> domains_;
  std::shared_ptr<void> eventSubscription_;
};

}  // namespace vantu::page
