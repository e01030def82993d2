#include "vantu/gtk/container.h"

#include <stdexcept>

#include "platforms/gtk/container_stack.h"
#include "platforms/gtk/host_platform_state.h"
#include "vantu/core/h5_white_list_domain_data.h"
#include "vantu/platform/platform.h"

namespace vantu::gtk {

struct Container::State {
  HostPlatform::State* host = nullptr;
  std::shared_ptr<ContainerStack> stack;
  bool opened = false;
};

namespace {

ContainerOptions stackOptions(Container::Options options) {
  ContainerOptions made;
  made.uniqueAppId = std::move(options.uniqueAppId);
  made.appType = options.appType;
  made.webView.registry = std::move(options.registry);
  if (!made.webView.registry) {
    made.webView.registry = std::make_shared<BridgeRegistry>();
    registerAllBridges(*made.webView.registry);
  }
  made.webView.observer = std::move(options.observer);
  made.webView.developerExtras = options.developerExtras;
  auto domains = std::make_shared<H5WhiteListDomainData>();
  domains->setWhiteListedDomains(std::move(options.allowedDomains));
  made.webView.allowedDomains = std::move(domains);
  made.delegate = std::move(options.delegate);
  made.allowedAppIds = std::move(options.allowedAppIds);
  made.ownWindow = options.ownWindow;
  made.width = options.width;
  made.height = options.height;
  return made;
}

std::shared_ptr<ContainerScreen> screenAt(const ContainerStack& stack, std::size_t index) {
  return std::dynamic_pointer_cast<ContainerScreen>(stack.navigation()->viewControllers()[index]);
}

}  // namespace

std::unique_ptr<Container> Container::create(HostPlatform& platform, Options options) {
  auto& host = *platform.state_;
  if (options.uniqueAppId.empty()) throw std::invalid_argument("a container needs a unique app id");
  if (host.appIds.contains(options.uniqueAppId)) {
    throw std::invalid_argument("a container for app \"" + options.uniqueAppId + "\" is open already");
  }
  auto state = std::make_unique<State>();
  state->host = &host;
  state->stack = std::make_shared<ContainerStack>(stackOptions(std::move(options)));
  host.appIds.insert(state->stack->options().uniqueAppId);
  host.directory->add(state->stack);
  return std::unique_ptr<Container>(new Container(std::move(state)));
}

Container::Container(std::unique_ptr<State> state) : state_(std::move(state)) {}

Container::~Container() {
  auto& stack = *state_->stack;
  state_->host->directory->remove(&stack);
  state_->host->appIds.erase(stack.options().uniqueAppId);
  auto& application = *platform().application;
  if (application.keyWindow() == stack.window()) application.setKeyWindow(nullptr);
}

const std::string& Container::uniqueAppId() const { return state_->stack->options().uniqueAppId; }

GtkWidget* Container::widget() const { return state_->stack->window()->content(); }

GtkWindow* Container::window() const { return state_->stack->window()->gtkWindow(); }

void Container::open(const std::string& url) {
  if (state_->opened) throw std::logic_error("Container::open is called once; further pages go through push");
  state_->opened = true;
  state_->stack->open(url);
}

void Container::push(const std::string& url) { state_->stack->push(url); }

bool Container::pop() { return state_->stack->pop(); }

void Container::emit(std::string_view name, const Value& detail) { state_->stack->emit(name, detail); }

std::size_t Container::depth() const { return state_->stack->navigation()->viewControllers().size(); }

std::vector<std::string> Container::urls() const {
  std::vector<std::string> urls;
  for (std::size_t i = 0; i < depth(); ++i) {
    auto screen = screenAt(*state_->stack, i);
    urls.push_back(screen ? screen->webView()->uri() : "");
  }
  return urls;
}

std::vector<std::string> Container::titles() const {
  std::vector<std::string> titles;
  for (std::size_t i = 0; i < depth(); ++i) {
    auto screen = screenAt(*state_->stack, i);
    titles.push_back(screen ? screen->webView()->title() : "");
  }
  return titles;
}

std::optional<std::string> Container::saveSnapshot(const std::string& pngPath, std::chrono::milliseconds timeout) {
  auto top = state_->stack->topScreen();
  if (!top) return std::string("no page is open");
  return top->webView()->saveSnapshot(pngPath, std::chrono::duration_cast<Duration>(timeout));
}

void Container::showInspector() {
  if (auto top = state_->stack->topScreen()) {
    webkit_web_inspector_show(webkit_web_view_get_inspector(top->webView()->webKitView()));
  }
}

}  // namespace vantu::gtk
