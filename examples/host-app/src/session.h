#pragma once
// The host's signed-in state: who is signed in and the access token the
// mini-apps may ask for. One per host app, shared by every mini-app.

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host_app {

class Session {
 public:
  using Listener = std::function<void(const Session&)>;

  bool signedIn() const { return user_.has_value(); }
  const std::optional<std::string>& user() const { return user_; }
  /// The customer id of the signed-in user.
  std::string customerId() const { return user_ ? "cust-" + *user_ : ""; }
  /// A token that changes with every sign-in.
  const std::string& token() const { return token_; }

  void signIn(const std::string& user) {
    user_ = user;
    token_ = "tok-" + user + "-" + std::to_string(++generation_);
    changed();
  }
  void signOut() {
    user_.reset();
    token_.clear();
    changed();
  }

  void onChange(Listener listener) { listeners_.push_back(std::move(listener)); }

 private:
  void changed() {
    for (const auto& listener : listeners_) listener(*this);
  }

  std::optional<std::string> user_;
  std::string token_;
  int generation_ = 0;
  std::vector<Listener> listeners_;
};

}  // namespace host_app
