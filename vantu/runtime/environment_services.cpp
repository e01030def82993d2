#include "vantu/runtime/environment_services.h"

#include "vantu/container/web_view_keyboard_offset_fixer.h"
#include "vantu/core/h5_web_view_extractor.h"
#include "vantu/core/laizaxlu.h"
#include "vantu/core/view_controller_context.h"
#include "vantu/storage/secure_string_hasher.h"
#include "vantu/storage/user_defaults_data_store_impl.h"

namespace vantu {
namespace {

class SubsystemServices final : public LaizaxluServices {
 public:
  void clearSandbox(std::optional<Dict> exemptedUniqueAppIdMap) override {
    UserDefaultsDataStoreImpl::shared()->clearSandbox(std::move(exemptedUniqueAppIdMap));
  }
  void performSandboxMigration() override { UserDefaultsDataStoreImpl::shared()->performMigration(); }
  std::string sandboxedFileName(std::string_view appId) const override { return sandboxDomainName(appId); }
  void attachKeyboardOffsetFixer(ViewController& viewController) override {
    auto webView = H5WebViewExtractor::extractWebViewRecursivelyFrom(viewController);
    if (!webView) return;
    setOffsetFixer(viewController, WebViewKeyboardOffsetFixer::make(webView));
  }
};

}  // namespace

void connectEnvironmentServices() { Laizaxlu::shared().connectServices(std::make_shared<SubsystemServices>()); }

}  // namespace vantu
