#pragma once
// Puts a web view's scroll position back where it was before the on-screen
// keyboard appeared, undoing the platform's automatic scroll, 0.2 s after
// the keyboard hides.
//
// States: idle; keyboard shown; restore pending (from the hide until the
// delayed restore has run). A show while idle saves the scroll offset; a
// show while a restore is pending keeps the saved offset (focus moving
// between fields), and the pending restore then finds the keyboard shown
// and leaves the offset alone.

#include <memory>

#include "vantu/platform/geometry.h"
#include "vantu/platform/notification_center.h"
#include "vantu/platform/object.h"
#include "vantu/platform/view.h"

namespace vantu {

class WebViewKeyboardOffsetFixer : public Object, public std::enable_shared_from_this<WebViewKeyboardOffsetFixer> {
 public:
  /// Makes a fixer for `webview` (held weakly) and starts observing the
  /// keyboard notifications of the installed platform's notification
  /// centre, with no sender filter. The fixer observes for as long as it
  /// lives: releasing it (replacing the screen's `offsetFixer`, releasing
  /// the screen) ends the observation.
  static std::shared_ptr<WebViewKeyboardOffsetFixer> make(const std::shared_ptr<WebView>& webview);

  WebViewKeyboardOffsetFixer() = delete;
  WebViewKeyboardOffsetFixer(const WebViewKeyboardOffsetFixer&) = delete;
  WebViewKeyboardOffsetFixer& operator=(const WebViewKeyboardOffsetFixer&) = delete;

  /// Notification handlers (the notification's content is not read).
  void keyboardWillShow(const Notification& notification);
  void keyboardWillHide(const Notification& notification);

  std::shared_ptr<WebView> webview() const { return webview_.lock(); }
  Point scrollViewOffsetBeforeKeyboardShown() const { return scrollViewOffsetBeforeKeyboardShown_; }
  /// Declared state only: it stays false (the observers are added by
  /// `make` without touching it).
  bool keyboardObserversAdded() const { return keyboardObserversAdded_; }
  bool shiftingInProgress() const { return shiftingInProgress_; }
  /// The restore delay in seconds.
  double timeDelta() const { return timeDelta_; }
  bool keyboardShown() const { return keyboardShown_; }

 private:
  explicit WebViewKeyboardOffsetFixer(const std::shared_ptr<WebView>& webview);

  /// The web view's first direct subview that is a scroll view, looked up
  /// afresh at each event; none when the web view is gone.
  std::shared_ptr<ScrollView> currentScrollView() const;
  void restore(ScrollView& scrollView);

  std::weak_ptr<WebView> webview_;
  Point scrollViewOffsetBeforeKeyboardShown_{0, 0};
  bool keyboardObserversAdded_ = false;
  bool shiftingInProgress_ = false;
  double timeDelta_ = 0.2;
  bool keyboardShown_ = false;

  // Last, so that observation ends first when the fixer is destroyed.
  ObserverToken willShowObserver_;
  ObserverToken willHideObserver_;
};

}  // namespace vantu
