// The device-capability bridges (permissions, location, address, owner
// authentication), called from one plain screen. Runner case 16 pins the
// plain flows and location requests sharing one prompt.

#include <tuple>

#include "tests/support/bridge_test_fixture.h"
#include "vantu/device/address_geo_code_handler.h"
#include "vantu/device/get_location_handler.h"
#include "vantu/device/local_authentication_handler.h"
#include "vantu/device/request_permission_handler.h"
#include "vantu/platform/alert_controller.h"

namespace vantu::testing_support {
namespace {

class Device : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    apply(R"({"screens": [{"name": "page"}]})");
  }

  std::shared_ptr<AlertController> shownAlert() {
    return std::dynamic_pointer_cast<AlertController>(device.screen("page")->presentedViewController());
  }

  /// The effect of presenting an alert on "page".
  static std::string alertShown(std::string_view title, std::string_view message, Array buttons) {
    return json::write(Dict{{"effect", "present"}, {"on", "page"}, {"presented", "alert"}, {"animated", true},
                            {"alert", Dict{{"title", title}, {"message", message}, {"buttons", std::move(buttons)}}}});
  }

  /// A handler of type T handling `dataJson` from "page", answering into `answers`.
  template <class T>
  std::shared_ptr<T> handling(std::string_view dataJson, Strings& answers) {
    auto handler = std::make_shared<T>();
    handler->handleWith(H5HandlerInputParams(device.screen("page"), dataOf(dataJson),
                                             [&answers](const Value& v) { answers.push_back(json::write(v)); }));
    return handler;
  }
};

std::string permissionAnswer(std::string_view word, bool granted) {
  return R"({"data":{")" + std::string(word) + R"(":)" + (granted ? "1" : "0") + R"(},"success":true,"authorizedStatus":)" +
         (granted ? "true" : "false") + "}";
}

TEST_F(Device, PermissionCallsThatFailAsAWholeAndCheckAnswers) {
  apply(R"({"permissions": {"camera": "authorized", "photoLibrary": "denied"}})");
  const std::string unbound = flatError("Invalid parameters(could not bind permission in the passed data)!"),
                    empty = flatError("Invalid parameters(permission string empty)!");
  const std::tuple<std::string_view, std::string_view, std::string_view, std::string> cases[] = {
      // Words are lower-cased and lose their spaces (only the space character); a repeated word answers once.
      {"vantuCheckPermission", R"({"permission": "camera,camera,VIDEO"})", "page", R"({"success":true,"data":{"camera":1,"video":0}})"},
      {"vantuCheckPermission", R"({"permission": "CaMe ra\t"})", "page", flatError("Unhandled permission: camera\t")},
      {"vantuCheckPermission", R"({"permission": "camera,Flash"})", "page", flatError("Unhandled permission: flash")},
      {"vantuCheckPermission", R"({"permission": ""})", "page", empty},
      {"vantuCheckPermission", R"({"permission": ["camera"]})", "page", unbound},
      {"vantuRequestPermission", R"({"permission": "camera"})", "", flatError("Invalid parameters(could not find view controller)!")},
      {"vantuRequestPermission", R"({"permission": "camera,photos"})", "page", flatError("Unhandled permission")},
      {"vantuRequestPermission", R"({"permission": ""})", "page", empty},
      {"vantuRequestPermission", R"({"permission": 1})", "page", unbound},
  };
  for (const auto& [bridge, data, screen, answer] : cases) EXPECT_EQ(send(bridge, data, screen), Strings{answer}) << data;
}

// A word of each handler against each platform state: the status, or "none"
// for a state outside the handler's table (the check then has no entry for it).
// The refused-permission test below ties the other words to their resources.
TEST_F(Device, PermissionStatusOfEveryWordInEveryState) {
  const std::tuple<std::string, std::string, std::string_view> rows[] = {
      {"camera", "camera", "1 0 0 -1 none none none"},      {"video", "photoLibrary", "1 0 0 -1 none none none"},
      {"location", "location", "1 0 0 -1 1 none none"}, {"microphone", "microphone", "1 none 0 -1 none none none"},
  };
  for (const auto& [word, resource, expected] : rows) {
    std::string got;
    for (const char* state : {"authorized", "restricted", "denied", "notDetermined", "authorizedWhenInUse", "limited", "unrecognized"}) {
      apply(R"({"permissions": {")" + resource + R"(": ")" + state + R"("}})");
      auto answer = send("vantuCheckPermission", R"({"permission": ")" + word + R"("})", "page");
      auto status = json::parse(answer.at(0)).value().asDict()->getDict("data")->getInt(word);
      got += (got.empty() ? "" : " ") + (status ? std::to_string(*status) : std::string("none"));
    }
    EXPECT_EQ(got, expected) << word;
  }
}

TEST_F(Device, PermissionFacilitiesTheDeviceLacks) {
  // No photo-library source: granted whatever the library says.
  apply(R"({"permissions": {"photoLibrary": "denied", "location": "authorized"},
            "device": {"imagePickerSources": ["camera"]}, "location": {"servicesEnabled": false}})");
  EXPECT_EQ(send("vantuCheckPermission", R"({"permission": "photos,location"})", "page"),
            Strings{R"({"success":true,"data":{"photos":1,"location":0}})"});
  EXPECT_EQ(send("vantuRequestPermission", R"({"permission": "photos"})", "page"), Strings{permissionAnswer("photos", true)});
  // A platform without the ports: refused, and a request says no at once.
  device.platformBundle()->authorization = nullptr;
  device.platformBundle()->locationServices = nullptr;
  EXPECT_EQ(send("vantuCheckPermission", R"({"permission": "camera,location"})", "page"),
            Strings{R"({"success":true,"data":{"camera":0,"location":0}})"});
  EXPECT_EQ(send("vantuRequestPermission", R"({"permission": "location"})", "page"), Strings{permissionAnswer("location", false)});
}

TEST_F(Device, RefusedPermissionOffersTheSettingsAndAnswersAfterTheTap) {
  // Camera's alert: runner case 16.
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {"photos", "photoLibrary",
       "We need access to Photos to proceed. Would you like to open Settings and grant us permission to use Camera?"},
      {"location", "location",
       "We need access to Location to proceed. Would you like to open settings and grant us permission to Location "
       "Services?"},
      {"microphone", "microphone",
       "We need access to microphone to proceed. Would you like to open settings and grant us  permission to access "
       "the Microphone?"},
      {"contacts", "contacts",
       "We need access to your Contacts to proceed. Would you like to open settings and grant permission to Contacts?"},
      {"speech", "speechRecognition",
       "We need access to Speech Recognition to proceed. Would you like to open settings and grant permission to "
       "Speech Recognition?"},
  };
  int row = 0;
  for (const auto& [word, resource, message] : rows) {
    SCOPED_TRACE(word);
    apply(R"({"permissions": {")" + resource + R"(": "denied"}})");
    auto out = call("vantuRequestPermission", R"({"permission": ")" + word + R"("})");
    EXPECT_EQ(out.effects, Strings{alertShown("", message, {"Open Settings", "Cancel"})});
    auto alert = shownAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->actions()[0].style(), AlertAction::Style::Default);
    EXPECT_EQ(alert->actions()[1].style(), AlertAction::Style::Cancel);
    const bool openSettings = row++ % 2 == 0;  // alternate the buttons
    ASSERT_TRUE(alert->tapAction(openSettings ? 0 : 1));
    out = collect();
    EXPECT_EQ(out.answers, Strings{permissionAnswer(word, false)});
    std::string effects;
    for (const auto& e : out.effects) effects += e;
    EXPECT_EQ(effects.find("openSettings") != std::string::npos, openSettings) << effects;
    EXPECT_EQ(shownAlert(), nullptr);
  }
}

TEST_F(Device, UndecidedPermissionAsksTheSystem) {
  const std::tuple<std::string, std::string, std::string, bool> rows[] = {
      {"camera", "camera", "authorized", true},    {"camera", "camera", "denied", false},
      {"video", "photoLibrary", "limited", false}, {"location", "location", "restricted", false},
  };
  for (const auto& [word, resource, answer, granted] : rows) {
    SCOPED_TRACE(word + " " + answer);
    apply(R"({"permissions": {")" + resource + R"(": {"state": "notDetermined", "answer": ")" + answer + R"("}}})");
    auto out = call("vantuRequestPermission", R"({"permission": ")" + word + R"("})");
    EXPECT_EQ(out.answers, Strings{permissionAnswer(word, granted)});
    EXPECT_EQ(out.effects, Strings{R"({"effect":"permissionPrompt","resource":")" + resource + R"("})"});
  }
  // A state outside the table: no prompt, no alert, no answer.
  apply(R"({"permissions": {"photoLibrary": "limited"}})");
  auto out = call("vantuRequestPermission", R"({"permission": "photos"})");
  EXPECT_TRUE(out.answers.empty() && out.effects.empty());
}

TEST(CoordinateText, ShortestTextThatReadsBackTheSameDouble) {
  const std::pair<double, std::string> cases[] = {
      {12.9715987, "12.9715987"}, {-33.8688, "-33.8688"}, {0.1 + 0.2, "0.30000000000000004"}, {1e-7, "1e-07"}, {10.0, "10"}};
  for (const auto& [degrees, text] : cases) EXPECT_EQ(GetLocationHandler::coordinateText(degrees), text);
}

// The prompt, then the fix once the user agreed: runner case 16.
TEST_F(Device, LocationFailures) {
  apply(R"({"permissions": {"location": "authorized"}, "location": {"lastFix": null}})");
  EXPECT_EQ(send("vantuGetLocation", "{}", "page"), Strings{flatError("Failed to get location from LocationManager!")});
  apply(R"({"permissions": {"location": "unrecognized"}})");
  EXPECT_EQ(send("vantuGetLocation", "{}", "page"), Strings{});
  EXPECT_EQ(send("vantuGetLocation", "{}", ""), Strings{flatError("invalid context.currentViewController parameter!")});
  device.platformBundle()->locationServices = nullptr;
  EXPECT_EQ(send("vantuGetLocation", "{}", "page"), Strings{flatError(GetLocationHandler::kNoLocationServices)});
}

TEST_F(Device, RefusedLocationAnswersThenOffersTheSettings) {
  apply(R"({"permissions": {"location": "denied"}})");
  auto out = call("vantuGetLocation", "{}");
  EXPECT_EQ(out.answers, Strings{flatError("User has disabled location access!")});
  EXPECT_EQ(out.effects,
            Strings{alertShown("Location Services disabled", "Please enable Location Services in Settings", {"OK"})});
  ASSERT_NE(shownAlert(), nullptr);
  ASSERT_TRUE(shownAlert()->tapAction(0));
  out = collect();
  EXPECT_TRUE(out.answers.empty());
  EXPECT_EQ(out.effects.back(), R"({"effect":"openSettings"})");
}

TEST_F(Device, AddressFromTheFirstPlacemarkOrTheFailure) {
  apply(R"({"location": {"geocoder": {"placemarks": [
      {"subLocality": "Indiranagar", "locality": "Bengaluru", "administrativeArea": "KA", "postalCode": "560038",
       "isoCountryCode": "IN", "country": "India"},
      {"locality": "Elsewhere"}]}}})");
  auto out = call("vantuGetAddress", R"({"latitude": 12.97, "longitude": 77})");
  EXPECT_EQ(out.effects, Strings{R"({"effect":"reverseGeocode","latitude":12.97,"longitude":77})"});
  EXPECT_EQ(out.answers, Strings{R"({"data":{"locality":"Bengaluru","subLocality":"Indiranagar","admin":"KA",)"
                                 R"("subAdmin":"","postalCode":"560038","countryCode":"IN","countryName":"India",)"
                                 R"("address":"Indiranagar, Bengaluru, 560038, KA, India"}})"});
  H5Placemark street{"Hanoi", std::nullopt, std::nullopt, std::nullopt, std::nullopt, "VN", "Vietnam", "Trang Tien", "12"};
  EXPECT_EQ(AddressGeoCodeHandler::addressPayload(street).getDict("data")->getString("address"),
            "Trang Tien, 12, Hanoi, Vietnam");

  apply(R"({"location": {"geocoder": {"placemarks": []}}})");
  EXPECT_EQ(send("vantuGetAddress", R"({"latitude": 1, "longitude": 2})", "page"),
            Strings{R"({"data":{"code":1,"message":"The array of geocoded placemarks was found empty or invalid!"}})"});
  apply(R"({"location": {"geocoder": {"error": {"code": 8, "message": "The operation couldn't be completed."}}}})");
  EXPECT_EQ(send("vantuGetAddress", R"({"latitude": 1, "longitude": 2})", "page"),
            Strings{R"({"data":{"code":2,"message":"The operation couldn't be completed."}})"});
}

TEST(LocalAuthenticationErrors, MapsTheSystemCodes) {
  auto systemError = [](std::int64_t code) { return PlatformError{"system", code, "x", std::nullopt, {}}; };
  const std::pair<std::optional<PlatformError>, std::int64_t> cases[] = {
      {systemError(-2), 1}, {systemError(-8), 2}, {systemError(-5), 0}, {std::nullopt, 0}};
  const char* messages[] = {"Local authentication encountered an error!", "Authentication was cancelled by the user!",
                            "Maximum number of attempts exceeded!"};
  for (const auto& [given, code] : cases) {
    auto mapped = LocalAuthenticationHandler::mappedError(given);
    EXPECT_EQ(mapped.domain, "com.vantu.LocalAuthenticationHandler");
    EXPECT_EQ(mapped.code, code);
    EXPECT_EQ(mapped.localizedDescription, messages[code]);
  }
}

TEST_F(Device, AuthenticationSheetTextsAndVerdicts) {
  auto out = call("vantuAuthenticateOnDevice", R"({"Cancel": 5})");
  EXPECT_EQ(out.effects, Strings{R"({"effect":"authenticationPrompt","reason":"You need to authenticate yourself.",)"
                                 R"("cancelTitle":"Cancel","fallbackTitle":"Fallback"})"});
  EXPECT_EQ(out.answers, Strings{R"({"data":{"success":true}})"});
  // No passcode: the policy fails without a sheet; so does a platform without the port.
  apply(R"({"deviceOwnerAuthentication": {"policyError": -5}})");
  out = call("vantuAuthenticateOnDevice", "{}");
  EXPECT_TRUE(out.effects.empty());
  EXPECT_EQ(out.answers, Strings{R"({"data":{"success":false,"error":{"code":0,)"
                                 R"("message":"Local authentication encountered an error!"}}})"});
  device.platformBundle()->deviceOwnerAuthentication = nullptr;
  EXPECT_EQ(send("vantuAuthenticateOnDevice", "{}", "page"), out.answers);
}

// A held sheet answers from its queue (the answer: runner case 16) and clears
// the context; handlers released before their answer (the sheet's, the
// prompt's, the geocoder's) send nothing.
TEST_F(Device, HeldAnswersAndReleasedHandlers) {
  apply(R"({"deviceOwnerAuthentication": {"answer": null}, "location": {"geocoder": {"placemarks": [{"locality": "X"}]}}})");
  for (bool release : {false, true}) {
    SCOPED_TRACE(release ? "released" : "kept");
    Strings answers;
    auto handler = handling<LocalAuthenticationHandler>("{}", answers);
    settle();
    ASSERT_NE(handler->authContext(), nullptr);
    EXPECT_TRUE(answers.empty());
    auto context = std::weak_ptr<AuthenticationContext>(handler->authContext());
    if (release) handler.reset();
    ASSERT_TRUE(device.deviceOwnerAuthentication().answerHeldSheets({false, -8}));
    settle();
    EXPECT_TRUE(context.expired());  // let go of by a kept handler too
    EXPECT_EQ(answers.size(), release ? 0u : 1u);

    apply(R"({"permissions": {"camera": {"state": "notDetermined", "answer": null}}})");
    auto request = handling<RequestPermissionHandler>(R"({"permission": "camera"})", answers);
    if (release) request.reset();
    ASSERT_TRUE(device.authorization().answerHeldPrompt(ProtectedResource::camera, AuthorizationState::authorized));
    settle();
    auto geocoder = handling<AddressGeoCodeHandler>(R"({"latitude": 1, "longitude": 2})", answers);
    if (release) geocoder.reset();
    settle();
    EXPECT_EQ(answers.size(), release ? 0u : 3u);
  }
}

}  // namespace
}  // namespace vantu::testing_support
