#include "vantu/container/web_view_keyboard_offset_fixer.h"

#include "vantu/platform/keyboard_notifications.h"
#include "vantu/platform/platform.h"

namespace vantu {

WebViewKeyboardOffsetFixer::WebViewKeyboardOffsetFixer(const std::shared_ptr<WebView>& webview) : webview_(webview) {}

std::shared_ptr<WebViewKeyboardOffsetFixer> WebViewKeyboardOffsetFixer::make(const std::shared_ptr<WebView>& webview) {
  std::shared_ptr<WebViewKeyboardOffsetFixer> fixer(new WebViewKeyboardOffsetFixer(webview));
  // The observers hold the fixer weakly; its tokens end them when it goes.
  // A platform without a notification centre never reports the keyboard.
  auto center = platform().notificationCenter;
  if (!center) return fixer;
  std::weak_ptr<WebViewKeyboardOffsetFixer> weak = fixer;
  fixer->willShowObserver_ = center->addObserver(std::string(kKeyboardWillShowNotification), [weak](const Notification& n) {
    if (auto self = weak.lock()) self->keyboardWillShow(n);
  });
  fixer->willHideObserver_ = center->addObserver(std::string(kKeyboardWillHideNotification), [weak](const Notification& n) {
    if (auto self = weak.lock()) self->keyboardWillHide(n);
  });
  return fixer;
}

std::shared_ptr<ScrollView> WebViewKeyboardOffsetFixer::currentScrollView() const {
  auto webview = webview_.lock();
  if (!webview) return nullptr;
  for (const auto& subview : webview->subviews()) {
    if (auto scrollView = std::dynamic_pointer_cast<ScrollView>(subview)) return scrollView;
  }
  return nullptr;
}

void WebViewKeyboardOffsetFixer::keyboardWillShow(const Notification& /*notification*/) {
  auto scrollView = currentScrollView();
  if (!scrollView) return;
  keyboardShown_ = true;
  if (!shiftingInProgress_) scrollViewOffsetBeforeKeyboardShown_ = scrollView->contentOffset();
}

void WebViewKeyboardOffsetFixer::keyboardWillHide(const Notification& /*notification*/) {
  auto scrollView = currentScrollView();
  if (!scrollView) return;
  keyboardShown_ = false;
  shiftingInProgress_ = true;
  platform().dispatch->main()->asyncAfter(secondsToDuration(timeDelta_),
                                          [self = shared_from_this(), scrollView] { self->restore(*scrollView); });
}

void WebViewKeyboardOffsetFixer::restore(ScrollView& scrollView) {
  if (!keyboardShown_) scrollView.setContentOffset(scrollViewOffsetBeforeKeyboardShown_, false);
  shiftingInProgress_ = false;
}

}  // namespace vantu
