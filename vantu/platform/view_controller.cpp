#include "vantu/platform/view_controller.h"

#include <algorithm>

namespace vantu {

std::shared_ptr<View> ViewController::view() {
  if (!view_) view_ = loadView();
  return view_;
}

void ViewController::addChild(const std::shared_ptr<ViewController>& child) {
  if (!child || child.get() == this) return;
  child->removeFromParent();
  children_.push_back(child);
  child->parent_ = weak_from_this();
}

void ViewController::removeFromParent() {
  auto parent = parent_.lock();
  parent_.reset();
  if (!parent) return;
  auto& siblings = parent->children_;
  siblings.erase(std::remove_if(siblings.begin(), siblings.end(), [this](const auto& c) { return c.get() == this; }),
                 siblings.end());
}

std::shared_ptr<NavigationController> ViewController::navigationController() const {
  for (auto vc = parent(); vc; vc = vc->parent()) {
    if (auto nav = std::dynamic_pointer_cast<NavigationController>(vc)) return nav;
  }
  return nullptr;
}

std::shared_ptr<TabBarController> ViewController::tabBarController() const {
  for (auto vc = parent(); vc; vc = vc->parent()) {
    if (auto tabs = std::dynamic_pointer_cast<TabBarController>(vc)) return tabs;
  }
  return nullptr;
}

void ViewController::present(const std::shared_ptr<ViewController>& presented, bool animated) {
  if (!presented) return;
  if (presented_ || presented.get() == this || presented->presentingViewController()) {
    didRefusePresentation(presented, animated);  // one presentation at a time, as on the reference platform
    return;
  }
  presented_ = presented;
  presented->presenting_ = weak_from_this();
  didPresent(presented, animated);
}

void ViewController::dismiss(bool animated) {
  // Called on the presented controller or on its presenter.
  if (auto presenter = presenting_.lock()) {
    presenter->dismiss(animated);
    return;
  }
  if (!presented_) return;
  auto presented = std::move(presented_);
  presented_.reset();
  presented->presenting_.reset();
  didDismiss(presented, animated);
}

NavigationController::NavigationController() : navigationBar_(std::make_shared<NavigationBar>(Rect{0, 0, 0, 44})) {}

void NavigationController::pushViewController(const std::shared_ptr<ViewController>& viewController, bool animated) {
  if (!viewController) return;
  addChild(viewController);
  didPush(viewController, animated);
}

TabBarController::TabBarController() : tabBar_(std::make_shared<View>(Rect{0, 0, 0, 49})) {}

}  // namespace vantu
