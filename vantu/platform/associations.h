#pragma once
// Values attached to a UI object under keys of their own, the way the
// reference platform's associated objects work. Each key is the address of
// a static object, so two subsystems can never collide.

#include <any>
#include <map>

namespace vantu {

struct AssociationKey {
  const char* name;  // for diagnostics only; identity is the address
};

class AssociationTable {
 public:
  /// The stored value if present and of type T, else nullptr.
  template <class T>
  const T* get(const AssociationKey& key) const {
    auto it = values_.find(&key);
    return it == values_.end() ? nullptr : std::any_cast<T>(&it->second);
  }
  bool has(const AssociationKey& key) const { return values_.count(&key) != 0; }
  void set(const AssociationKey& key, std::any value) { values_[&key] = std::move(value); }
  void remove(const AssociationKey& key) { values_.erase(&key); }

 private:
  std::map<const AssociationKey*, std::any> values_;
};

}  // namespace vantu
