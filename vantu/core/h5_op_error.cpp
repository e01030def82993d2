#include "vantu/core/h5_op_error.h"

#include <fmt/format.h>

namespace vantu {

std::string H5OpError::localizedDescription() const { return fmt::format("H5OpError-> code: {} message: {}", code, message); }

Dict H5OpErrorUtil::errorResponse(std::int64_t code, std::string_view message) {
  return Dict{{"error", Dict{{"code", code}, {"message", message}}}, {"success", false}};
}

Dict H5OpErrorUtil::successResponse(Dict data) { return Dict{{"data", std::move(data)}}; }

namespace payload {

Dict failure(std::string_view message) { return Dict{{"error", kFailureCode}, {"message", message}}; }

Dict success(Value value) {
  // Not an initializer list: that would copy the value, which can be a
  // large file's text.
  Dict answer;
  answer.set("data", std::move(value));
  return answer;
}

Dict successFlag() { return Dict{{"data", Dict{{"success", true}}}}; }

Dict successWithData(Value value) { return Dict{{"success", true}, {"data", std::move(value)}}; }

}  // namespace payload
}  // namespace vantu
