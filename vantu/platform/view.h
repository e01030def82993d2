#pragma once
// UI port: views. The library reads and writes a model of the platform's
// views (frames, hidden flags, colours, tags, subviews in order); a platform
// mirrors the model onto real widgets by overriding `didChange`, and feeds
// facts it owns (a window's safe-area insets, say) back into the model.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "vantu/platform/geometry.h"
#include "vantu/platform/object.h"

namespace vantu {

class View : public Object, public std::enable_shared_from_this<View> {
 public:
  enum class Change { Frame, Hidden, BackgroundColor, TintColor, Tag, Subviews, ContentOffset, ScrollSettings };

  explicit View(Rect frame = {}) : frame_(frame) {}

  Rect frame() const { return frame_; }
  void setFrame(Rect frame);
  bool isHidden() const { return hidden_; }
  void setHidden(bool hidden);
  std::optional<Color> backgroundColor() const { return backgroundColor_; }
  void setBackgroundColor(std::optional<Color> color);
  std::optional<Color> tintColor() const { return tintColor_; }
  void setTintColor(std::optional<Color> color);
  std::int64_t tag() const { return tag_; }
  void setTag(std::int64_t tag);

  const std::vector<std::shared_ptr<View>>& subviews() const { return subviews_; }
  std::shared_ptr<View> superview() const { return superview_.lock(); }
  /// Appends `view` as the last subview, taking it from its old superview.
  void addSubview(const std::shared_ptr<View>& view);
  void removeFromSuperview();
  /// This view or the first descendant (depth first, subview order) with `tag`.
  std::shared_ptr<View> viewWithTag(std::int64_t tag);

  /// A name for reports and diagnostics ("web", "statusStrip", ...).
  const std::string& name() const { return name_; }
  void setName(std::string name) { name_ = std::move(name); }

 protected:
  /// Called after every change of the model; platforms mirror it.
  virtual void didChange(Change) {}
  void notify(Change change) { didChange(change); }

 private:
  Rect frame_;
  bool hidden_ = false;
  std::optional<Color> backgroundColor_;
  std::optional<Color> tintColor_;
  std::int64_t tag_ = 0;
  std::vector<std::shared_ptr<View>> subviews_;
  std::weak_ptr<View> superview_;
  std::string name_;
};

class ScrollView : public View {
 public:
  using View::View;

  Point contentOffset() const { return contentOffset_; }
  void setContentOffset(Point offset, bool animated = false);
  bool lastOffsetChangeAnimated() const { return lastOffsetAnimated_; }
  /// The platform enumerations' integer values, passed through unchecked.
  std::optional<std::int64_t> contentInsetAdjustmentBehavior() const { return contentInsetAdjustmentBehavior_; }
  void setContentInsetAdjustmentBehavior(std::int64_t value);
  std::optional<std::int64_t> keyboardDismissMode() const { return keyboardDismissMode_; }
  void setKeyboardDismissMode(std::int64_t value);

 private:
  Point contentOffset_;
  bool lastOffsetAnimated_ = false;
  std::optional<std::int64_t> contentInsetAdjustmentBehavior_;
  std::optional<std::int64_t> keyboardDismissMode_;
};

/// The platform web view. Its scroll view is its first subview; create web
/// views with `make` (or call `installScrollView` after making a subclass).
class WebView : public View {
 public:
  using View::View;
  static std::shared_ptr<WebView> make(Rect frame = {});

  std::shared_ptr<ScrollView> scrollView() const { return scrollView_; }

 protected:
  void installScrollView(std::shared_ptr<ScrollView> scrollView);

 private:
  std::shared_ptr<ScrollView> scrollView_;
};

}  // namespace vantu
