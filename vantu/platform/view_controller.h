#pragma once
// UI port: view controllers, their containment chain, navigation and tab bar
// controllers. Each view controller owns an association table: the values
// the library attaches to a screen live exactly as long as the screen.

#include <memory>
#include <string>
#include <vector>

#include "vantu/platform/associations.h"
#include "vantu/platform/view.h"

namespace vantu {

class NavigationController;
class TabBarController;

class ViewController : public Object, public std::enable_shared_from_this<ViewController> {
 public:
  /// The root view, loaded on first access.
  std::shared_ptr<View> view();
  std::shared_ptr<View> viewIfLoaded() const { return view_; }

  std::shared_ptr<ViewController> parent() const { return parent_.lock(); }
  const std::vector<std::shared_ptr<ViewController>>& children() const { return children_; }
  void addChild(const std::shared_ptr<ViewController>& child);
  void removeFromParent();

  /// The nearest ancestor that is a navigation (tab bar) controller.
  std::shared_ptr<NavigationController> navigationController() const;
  std::shared_ptr<TabBarController> tabBarController() const;

  bool hidesBottomBarWhenPushed() const { return hidesBottomBarWhenPushed_; }
  void setHidesBottomBarWhenPushed(bool value) { hidesBottomBarWhenPushed_ = value; }

  /// Modal presentation (alerts, share sheets, pickers). One at a time: a
  /// controller that is already presenting refuses another (it is not shown,
  /// as on the reference platform), and so does one asked to present itself
  /// or a controller that is already presented elsewhere.
  void present(const std::shared_ptr<ViewController>& presented, bool animated);
  void dismiss(bool animated);
  std::shared_ptr<ViewController> presentedViewController() const { return presented_; }
  std::shared_ptr<ViewController> presentingViewController() const { return presenting_.lock(); }

  AssociationTable& associations() { return associations_; }
  const AssociationTable& associations() const { return associations_; }

  const std::string& name() const { return name_; }
  void setName(std::string name) { name_ = std::move(name); }

 protected:
  /// Makes the root view; platforms return their own view.
  virtual std::shared_ptr<View> loadView() { return std::make_shared<View>(); }
  virtual void didPresent(const std::shared_ptr<ViewController>& /*presented*/, bool /*animated*/) {}
  virtual void didDismiss(const std::shared_ptr<ViewController>& /*presented*/, bool /*animated*/) {}
  /// A presentation that was refused (see `present`); platforms report it.
  virtual void didRefusePresentation(const std::shared_ptr<ViewController>& /*presented*/, bool /*animated*/) {}

 private:
  std::shared_ptr<View> view_;
  std::weak_ptr<ViewController> parent_;
  std::vector<std::shared_ptr<ViewController>> children_;
  std::shared_ptr<ViewController> presented_;
  std::weak_ptr<ViewController> presenting_;
  bool hidesBottomBarWhenPushed_ = false;
  AssociationTable associations_;
  std::string name_;
};

/// The bar of a navigation controller: hidden flag, tint and frame come from View.
class NavigationBar : public View {
 public:
  using View::View;
};

class NavigationController : public ViewController {
 public:
  NavigationController();

  std::shared_ptr<NavigationBar> navigationBar() const { return navigationBar_; }
  /// The stack, bottom first (the navigation controller's children).
  const std::vector<std::shared_ptr<ViewController>>& viewControllers() const { return children(); }
  void pushViewController(const std::shared_ptr<ViewController>& viewController, bool animated);

 protected:
  virtual void didPush(const std::shared_ptr<ViewController>& /*pushed*/, bool /*animated*/) {}
  void replaceNavigationBar(std::shared_ptr<NavigationBar> bar) { navigationBar_ = std::move(bar); }

 private:
  std::shared_ptr<NavigationBar> navigationBar_;
};

class TabBarController : public ViewController {
 public:
  TabBarController();
  std::shared_ptr<View> tabBar() const { return tabBar_; }

 protected:
  void replaceTabBar(std::shared_ptr<View> bar) { tabBar_ = std::move(bar); }

 private:
  std::shared_ptr<View> tabBar_;
};

}  // namespace vantu
