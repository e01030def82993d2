#include "tests/device/device_fixture.h"
#include "vantu/device/address_geo_code_handler.h"
#include "vantu/device/get_location_handler.h"
#include "vantu/device/local_authentication_handler.h"

namespace vantu::testing_support {
namespace {

using Location = DeviceFixture;
using Authentication = DeviceFixture;

TEST(CoordinateText, ShortestTextThatReadsBackTheSameDouble) {
  const std::vector<std::pair<double, std::string>> cases{
      {12.9715987, "12.9715987"}, {-33.8688, "-33.8688"}, {0.1 + 0.2, "0.30000000000000004"}, {1e-7, "1e-07"},
      {10.0, "10"}};
  for (const auto& [degrees, text] : cases) EXPECT_EQ(GetLocationHandler::coordinateText(degrees), text);
}

TEST_F(Location, AnswersTheLastFixOnceTheUserHasAgreed) {
  apply(R"({"permissions": {"location": {"state": "notDetermined", "answer": null}},
            "location": {"lastFix": {"latitude": 12.9715987, "longitude": 77.5945627}}})");
  auto out = call("vantuGetLocation", "{}");
  EXPECT_EQ(out.answers, Strings{flatError("User has not made a choice!")});
  EXPECT_EQ(out.effects, Strings{R"({"effect":"permissionPrompt","resource":"location"})"});  // one prompt
  device.authorization().answerHeldPrompt(ProtectedResource::location, AuthorizationState::authorizedWhenInUse);
  settle();
  EXPECT_EQ(send("vantuGetLocation", "{}", "page"),
            Strings{R"({"success":true,"data":{"lat":"12.9715987","long":"77.5945627"}})"});

  apply(R"({"location": {"lastFix": null}})");
  EXPECT_EQ(send("vantuGetLocation", "{}", "page"), Strings{flatError("Failed to get location from LocationManager!")});
  apply(R"({"permissions": {"location": "unrecognized"}})");
  EXPECT_EQ(send("vantuGetLocation", "{}", "page"), Strings{});
  EXPECT_EQ(send("vantuGetLocation", "{}", ""), Strings{flatError("invalid context.currentViewController parameter!")});
  device.platformBundle()->locationServices = nullptr;
  EXPECT_EQ(send("vantuGetLocation", "{}", "page"), Strings{flatError(GetLocationHandler::kNoLocationServices)});
}

TEST_F(Location, RefusedAccessAnswersThenOffersTheSettings) {
  apply(R"({"permissions": {"location": "denied"}})");
  auto out = call("vantuGetLocation", "{}");
  EXPECT_EQ(out.answers, Strings{flatError("User has disabled location access!")});
  auto alert = shownAlert();
  ASSERT_NE(alert, nullptr);
  EXPECT_EQ(alert->title(), "Location Services disabled");
  EXPECT_EQ(alert->message(), "Please enable Location Services in Settings");
  ASSERT_EQ(alert->actions().size(), 1u);
  EXPECT_EQ(alert->actions()[0].title(), "OK");
  tap("OK");
  out = collect();
  EXPECT_TRUE(out.answers.empty());
  EXPECT_EQ(out.effects.back(), R"({"effect":"openSettings"})");
}

TEST_F(Location, AddressFromTheFirstPlacemark) {
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
}

TEST_F(Location, GeocodingFailuresAreAnsweredInsideData) {
  const std::vector<std::pair<std::string_view, std::string>> cases{
      {R"({"latitude": "12.9", "longitude": 77})", flatError("could not bind latitude parameter!")},
      {R"({"latitude": 12.9})", flatError("could not bind longitude parameter!")},
  };
  for (const auto& [data, answer] : cases) EXPECT_EQ(send("vantuGetAddress", data, "page"), Strings{answer});
  apply(R"({"location": {"geocoder": {"placemarks": []}}})");
  EXPECT_EQ(send("vantuGetAddress", R"({"latitude": 1, "longitude": 2})", "page"),
            Strings{R"({"data":{"code":1,"message":"The array of geocoded placemarks was found empty or invalid!"}})"});
  apply(R"({"location": {"geocoder": {"error": {"code": 8, "message": "The operation couldn't be completed."}}}})");
  EXPECT_EQ(send("vantuGetAddress", R"({"latitude": 1, "longitude": 2})", "page"),
            Strings{R"({"data":{"code":2,"message":"The operation couldn't be completed."}})"});

  // A handler released before the geocoder answers sends nothing.
  Strings answers;
  auto handler = std::make_shared<AddressGeoCodeHandler>();
  handler->handleWith(H5HandlerInputParams(nullptr, dataOf(R"({"latitude": 1, "longitude": 2})"),
                                           [&answers](const Value& v) { answers.push_back(json::write(v)); }));
  handler.reset();
  settle();
  EXPECT_TRUE(answers.empty());
}

TEST(LocalAuthenticationErrors, MapsTheSystemCodes) {
  auto systemError = [](std::int64_t code) { return PlatformError{"system", code, "x", std::nullopt, {}}; };
  const std::vector<std::pair<std::optional<PlatformError>, std::int64_t>> cases{
      {systemError(-2), 1}, {systemError(-8), 2}, {systemError(-5), 0}, {systemError(-1), 0}, {std::nullopt, 0}};
  const char* messages[] = {"Local authentication encountered an error!", "Authentication was cancelled by the user!",
                            "Maximum number of attempts exceeded!"};
  for (const auto& [given, code] : cases) {
    auto mapped = LocalAuthenticationHandler::mappedError(given);
    EXPECT_EQ(mapped.domain, "com.vantu.LocalAuthenticationHandler");
    EXPECT_EQ(mapped.code, code);
    EXPECT_EQ(mapped.localizedDescription, messages[code]);
  }
}

TEST_F(Authentication, SheetTextsAndVerdicts) {
  auto out = call("vantuAuthenticateOnDevice", R"({"Cancel": 5})");
  EXPECT_EQ(out.effects, Strings{R"({"effect":"authenticationPrompt","reason":"You need to authenticate yourself.",)"
                                 R"("cancelTitle":"Cancel","fallbackTitle":"Fallback"})"});
  EXPECT_EQ(out.answers, Strings{R"({"data":{"success":true}})"});

  apply(R"({"deviceOwnerAuthentication": {"answer": {"error": -2}}})");
  out = call("vantuAuthenticateOnDevice", R"({"Cancel": "Not now", "Fallback": "Use PIN", "authenticationReason": "Pay"})");
  EXPECT_EQ(out.effects, Strings{R"({"effect":"authenticationPrompt","reason":"Pay","cancelTitle":"Not now",)"
                                 R"("fallbackTitle":"Use PIN"})"});
  EXPECT_EQ(out.answers, Strings{R"({"data":{"success":false,"error":{"code":1,)"
                                 R"("message":"Authentication was cancelled by the user!"}}})"});

  // No passcode: the policy fails without a sheet.
  apply(R"({"deviceOwnerAuthentication": {"policyError": -5}})");
  out = call("vantuAuthenticateOnDevice", "{}");
  EXPECT_TRUE(out.effects.empty());
  EXPECT_EQ(out.answers, Strings{R"({"data":{"success":false,"error":{"code":0,)"
                                 R"("message":"Local authentication encountered an error!"}}})"});
  device.platformBundle()->deviceOwnerAuthentication = nullptr;
  EXPECT_EQ(send("vantuAuthenticateOnDevice", "{}", "page"), out.answers);
}

TEST_F(Authentication, HeldSheetAnswersFromItsQueueAndClearsTheContext) {
  apply(R"({"deviceOwnerAuthentication": {"answer": null}})");
  for (bool release : {false, true}) {
    Strings answers;
    auto handler = std::make_shared<LocalAuthenticationHandler>();
    handler->handleWith(H5HandlerInputParams(nullptr, Dict{}, [&answers](const Value& v) {
      answers.push_back(json::write(v));
    }));
    settle();
    ASSERT_NE(handler->authContext(), nullptr);
    EXPECT_TRUE(answers.empty());
    auto context = std::weak_ptr<AuthenticationContext>(handler->authContext());
    if (release) handler.reset();
    ASSERT_TRUE(device.deviceOwnerAuthentication().answerHeldSheets({false, -8}));
    settle();
    if (release) {
      EXPECT_TRUE(answers.empty());
    } else {
      EXPECT_EQ(answers, Strings{R"({"data":{"success":false,"error":{"code":2,)"
                                 R"("message":"Maximum number of attempts exceeded!"}}})"});
      EXPECT_EQ(handler->authContext(), nullptr);
    }
    EXPECT_TRUE(context.expired());
  }
}

}  // namespace
}  // namespace vantu::testing_support
