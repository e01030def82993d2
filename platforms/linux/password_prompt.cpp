#include "platforms/linux/password_prompt.h"

#include <string.h>

namespace vantu::linux_platform {

void wipeMemory(void* data, std::size_t size) {
  if (data && size) explicit_bzero(data, size);
}

Secret& Secret::operator=(Secret&& other) noexcept {
  if (this != &other) {
    clear();
    text_ = std::move(other.text_);
    other.clear();
  }
  return *this;
}

void Secret::clear() {
  // The whole buffer, not only the characters in use: a shorter text may
  // have been assigned over a longer one.
  text_.resize(text_.capacity());
  wipeMemory(text_.data(), text_.size());
  text_.clear();
}

}  // namespace vantu::linux_platform
