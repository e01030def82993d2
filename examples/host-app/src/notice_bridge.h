#pragma once
// The host's own bridge, "hostShowNotice": a page shows a line of text in
// the host window's notice bar.
//
//   vantu.invoke("hostShowNotice", {text: "Saved"})
//     -> {"data": {"shown": true, "app": "<the caller's app id>"}}
//   without a text -> {"error": 2, "message": "hostShowNotice needs a text"}

#include <functional>
#include <string>
#include <string_view>

#include "vantu/core/h5_base_handler.h"

namespace host_app {

class NoticeBridge : public vantu::H5BaseHandler {
 public:
  static constexpr std::string_view kBridgeName = "hostShowNotice";
  /// Shows `text` as the notice of mini-app `appId`.
  using Show = std::function<void(const std::string& appId, const std::string& text)>;

  explicit NoticeBridge(Show show) : show_(std::move(show)) {}
  void handleWith(vantu::H5HandlerInputParams params) override;

 private:
  Show show_;
};

}  // namespace host_app
