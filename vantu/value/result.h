#pragma once
// Result<T, E>: either a value or the error that stands in its place. The
// library reports failures this way instead of throwing, so a caller always
// sees both outcomes in the type it receives.

#include <utility>
#include <variant>

namespace vantu {

/// Either a `T` or an `E`; `ok()` tells which. Both convert implicitly, so a
/// function returning a Result simply returns the value or the error.
template <class T, class E>
class Result {
 public:
  Result(T value) : r_(std::in_place_index<0>, std::move(value)) {}  // NOLINT(google-explicit-constructor)
  Result(E error) : r_(std::in_place_index<1>, std::move(error)) {}  // NOLINT(google-explicit-constructor)

  bool ok() const { return r_.index() == 0; }
  const T& value() const { return std::get<0>(r_); }
  T& value() { return std::get<0>(r_); }
  const E& error() const { return std::get<1>(r_); }

 private:
  std::variant<T, E> r_;
};

}  // namespace vantu
