#pragma once
// The password prompt that owner authentication shows while PAM asks for
// the user's credentials. The prompt is a UI port: a desktop shell supplies
// a dialog (the GTK container does), and a host without one leaves it out,
// in which case owner authentication answers "no passcode set" at once.

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace vantu::linux_platform {

/// Text that must not linger in memory: wiped when destroyed or cleared.
/// Move-only, so that no stray copy is left behind.
class Secret {
 public:
  Secret() = default;
  explicit Secret(std::string text) : text_(std::move(text)) {}
  Secret(Secret&& other) noexcept : text_(std::move(other.text_)) { other.clear(); }
  Secret& operator=(Secret&& other) noexcept;
  Secret(const Secret&) = delete;
  Secret& operator=(const Secret&) = delete;
  ~Secret() { clear(); }

  const std::string& text() const { return text_; }
  /// Overwrites the text with zero bytes and empties it.
  void clear();

 private:
  std::string text_;
};

/// Overwrites `size` bytes at `data` so that the compiler cannot drop it.
void wipeMemory(void* data, std::size_t size);

class PasswordPrompt {
 public:
  struct Request {
    /// Why the page asks (the bridge's reason text).
    std::string reason;
    /// What PAM asks for ("Password: ").
    std::string prompt;
    /// Whether the answer may be shown while typed (PAM asks for a user
    /// name or a one-time code that way); passwords are hidden.
    bool echo = false;
    /// The title of the button that gives up.
    std::string cancelTitle;
    /// Failed attempts so far in this evaluation; the prompt says the
    /// previous password was wrong when it is above zero.
    int failedAttempts = 0;
    /// Messages PAM sent since the previous prompt (warnings, information).
    std::string notice;
  };
  /// The typed answer, or nothing when the user cancelled.
  using Answer = std::function<void(std::optional<Secret>)>;

  virtual ~PasswordPrompt() = default;

  /// Shows the prompt. Called on the main thread; `answer` must be called
  /// exactly once, from any thread.
  void ask(Request request, Answer answer) { show(std::move(request), std::move(answer)); }

 protected:
  virtual void show(Request request, Answer answer) = 0;
};

}  // namespace vantu::linux_platform
