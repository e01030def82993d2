// The bridge registry, result payloads and version facts.

#include "vantu/runtime/bridge_registry.h"

#include <memory>
#include <string>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/core/h5_op_error.h"
#include "vantu/core/version_util.h"

namespace vantu {
namespace {

using RegistryTest = testing_support::BridgeTestFixture;

// The answer to an unknown bridge is pinned by runtime's page_protocol_test and gtk_e2e's container_e2e_test.
TEST_F(RegistryTest, HandlerIsMadeOnceAndAnewAfterRelease) {
  BridgeRegistry registry;
  int made = 0;
  registry.add("counted", [&made] {
    ++made;
    return std::make_shared<H5BaseHandler>();
  });
  EXPECT_EQ(made, 0);
  auto first = registry.handlerFor("counted");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(registry.handlerFor("counted"), first);
  EXPECT_EQ(made, 1);
  registry.releaseHandlers();
  auto second = registry.handlerFor("counted");
  EXPECT_NE(second, first);
  EXPECT_EQ(registry.handlerFor("counted"), second);
  EXPECT_EQ(made, 2);
}

TEST(H5OpErrorTest, DescriptionAndPayloadShapes) {
  EXPECT_EQ((H5OpError{7, "File could not be deleted."}.localizedDescription()),
            "H5OpError-> code: 7 message: File could not be deleted.");
  EXPECT_EQ(json::write(H5OpErrorUtil::errorResponse(6, "File not found.")),
            R"({"error":{"code":6,"message":"File not found."},"success":false})");
}

using VersionTest = testing_support::BridgeTestFixture;

TEST_F(VersionTest, AppVersionIsTheBundleShortVersionStringOrEmpty) {
  EXPECT_EQ(VersionUtil::getAppVersion(), "");
  struct Case {
    const char* info;
    const char* expected;
  };
  const Case cases[] = {
      {R"({"CFBundleShortVersionString": "2.3.1", "CFBundleVersion": "99"})", "2.3.1"},
      {"null", ""},
      {R"({"CFBundleVersion": "99"})", ""},
      {R"({"CFBundleShortVersionString": 2.3})", ""},
  };
  for (const auto& c : cases) {
    apply(std::string(R"({"app": {"info": )") + c.info + "}}");
    EXPECT_EQ(VersionUtil::getAppVersion(), c.expected) << c.info;
  }
  EXPECT_EQ(VersionUtil::getSDKVersion(), "5.6.0");
}

}  // namespace
}  // namespace vantu
