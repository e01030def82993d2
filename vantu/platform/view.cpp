#include "vantu/platform/view.h"

#include <algorithm>

namespace vantu {

void View::setFrame(Rect frame) {
  frame_ = frame;
  notify(Change::Frame);
}

void View::setHidden(bool hidden) {
  hidden_ = hidden;
  notify(Change::Hidden);
}

void View::setBackgroundColor(std::optional<Color> color) {
  backgroundColor_ = color;
  notify(Change::BackgroundColor);
}

void View::setTintColor(std::optional<Color> color) {
  tintColor_ = color;
  notify(Change::TintColor);
}

void View::setTag(std::int64_t tag) {
  tag_ = tag;
  notify(Change::Tag);
}

void View::addSubview(const std::shared_ptr<View>& view) {
  if (!view || view.get() == this) return;
  view->removeFromSuperview();
  subviews_.push_back(view);
  view->superview_ = weak_from_this();
  notify(Change::Subviews);
}

void View::removeFromSuperview() {
  auto parent = superview_.lock();
  superview_.reset();
  if (!parent) return;
  auto& siblings = parent->subviews_;
  siblings.erase(std::remove_if(siblings.begin(), siblings.end(), [this](const auto& v) { return v.get() == this; }),
                 siblings.end());
  parent->notify(Change::Subviews);
}

std::shared_ptr<View> View::viewWithTag(std::int64_t tag) {
  if (tag_ == tag) return shared_from_this();
  for (const auto& child : subviews_) {
    if (auto found = child->viewWithTag(tag)) return found;
  }
  return nullptr;
}

void ScrollView::setContentOffset(Point offset, bool animated) {
  contentOffset_ = offset;
  lastOffsetAnimated_ = animated;
  notify(Change::ContentOffset);
}

void ScrollView::setContentInsetAdjustmentBehavior(std::int64_t value) {
  contentInsetAdjustmentBehavior_ = value;
  notify(Change::ScrollSettings);
}

void ScrollView::setKeyboardDismissMode(std::int64_t value) {
  keyboardDismissMode_ = value;
  notify(Change::ScrollSettings);
}

std::shared_ptr<WebView> WebView::make(Rect frame) {
  auto webView = std::make_shared<WebView>(frame);
  webView->installScrollView(std::make_shared<ScrollView>(Rect{0, 0, frame.width, frame.height}));
  return webView;
}

void WebView::installScrollView(std::shared_ptr<ScrollView> scrollView) {
  scrollView_ = std::move(scrollView);
  addSubview(scrollView_);
}

}  // namespace vantu
