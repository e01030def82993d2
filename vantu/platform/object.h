#pragma once
// Root class of every object the library hands around by reference: host
// delegates, providers, attached values. "Conforms to a protocol" is a
// successful dynamic_cast from Object.

namespace vantu {

class Object {
 public:
  virtual ~Object() = default;
};

}  // namespace vantu
