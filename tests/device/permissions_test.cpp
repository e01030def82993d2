#include <tuple>

#include "tests/device/device_fixture.h"
#include "vantu/device/check_permission_handler.h"
#include "vantu/device/request_permission_handler.h"

namespace vantu::testing_support {
namespace {

using Permissions = DeviceFixture;

TEST(PermissionWords, LowerCasesDropsSpacesAndKeepsEmptyPieces) {
  const std::vector<std::pair<std::string_view, Strings>> cases{
      {"Camera , Photos", {"camera", "photos"}},
      {"camera,", {"camera", ""}},
      {" ", {""}},
      {",,", {"", "", ""}},
      {"CaMe ra\t", {"camera\t"}},  // only the space character goes
  };
  for (const auto& [text, words] : cases) EXPECT_EQ(CheckPermissionHandler::permissionWords(text), words) << text;
}

TEST_F(Permissions, CheckAnswersEveryWordOrFailsAsAWhole) {
  apply(R"({"permissions": {"camera": "authorized", "photoLibrary": "denied"}})");
  const std::vector<std::pair<std::string_view, std::string>> cases{
      {R"({"permission": "Camera , Photos"})", R"({"success":true,"data":{"camera":1,"photos":0}})"},
      {R"({"permission": "camera,camera,VIDEO"})", R"({"success":true,"data":{"camera":1,"video":0}})"},
      {R"({"permission": "camera,"})", flatError("Unhandled permission: ")},
      {R"({"permission": " "})", flatError("Unhandled permission: ")},
      {R"({"permission": "camera,Flash"})", flatError("Unhandled permission: flash")},
      {R"({"permission": ""})", flatError("Invalid parameters(permission string empty)!")},
      {R"({"permission": ["camera"]})", flatError("Invalid parameters(could not bind permission in the passed data)!")},
      {R"({})", flatError("Invalid parameters(could not bind permission in the passed data)!")},
  };
  for (const auto& [data, answer] : cases) EXPECT_EQ(send("vantuCheckPermission", data, "page"), Strings{answer}) << data;
}

// Each word against each platform state: the status, or "none" for a state
// outside the word's table (the check then has no entry for it).
TEST_F(Permissions, StatusOfEveryWordInEveryState) {
  const std::vector<std::tuple<std::string_view, std::string_view, std::string_view>> rows{
      {"camera", "camera", "1 0 0 -1 none none none"},
      {"contacts", "contacts", "1 0 0 -1 none none none"},
      {"speech", "speechRecognition", "1 0 0 -1 none none none"},
      {"photos", "photoLibrary", "1 0 0 -1 none none none"},
      {"video", "photoLibrary", "1 0 0 -1 none none none"},
      {"location", "location", "1 0 0 -1 1 none none"},
      {"microphone", "microphone", "1 none 0 -1 none none none"},
  };
  const char* states[] = {"authorized", "restricted", "denied", "notDetermined", "authorizedWhenInUse", "limited",
                          "unrecognized"};
  for (const auto& [word, resource, expected] : rows) {
    std::string got;
    for (const char* state : states) {
      apply(R"({"permissions": {")" + std::string(resource) + R"(": ")" + state + R"("}})");
      auto answer = send("vantuCheckPermission", R"({"permission": ")" + std::string(word) + R"("})", "page");
      auto data = json::parse(answer.at(0)).value().asDict()->getDict("data").value();
      auto status = data.getInt(std::string(word));
      got += (got.empty() ? "" : " ") + (status ? std::to_string(*status) : std::string("none"));
    }
    EXPECT_EQ(got, expected) << word;
  }
}

TEST_F(Permissions, FacilitiesTheDeviceLacks) {
  // No photo-library source: granted whatever the library says.
  apply(R"({"permissions": {"photoLibrary": "denied", "location": "authorized"},
            "device": {"imagePickerSources": ["camera"]}, "location": {"servicesEnabled": false}})");
  EXPECT_EQ(send("vantuCheckPermission", R"({"permission": "photos,location"})", "page"),
            Strings{R"({"success":true,"data":{"photos":1,"location":0}})"});
  EXPECT_EQ(send("vantuRequestPermission", R"({"permission": "photos"})", "page"),
            Strings{R"({"data":{"photos":1},"success":true,"authorizedStatus":true})"});
  // A platform without the ports: refused, and a request says no at once.
  device.platformBundle()->authorization = nullptr;
  device.platformBundle()->locationServices = nullptr;
  EXPECT_EQ(send("vantuCheckPermission", R"({"permission": "camera,location"})", "page"),
            Strings{R"({"success":true,"data":{"camera":0,"location":0}})"});
  EXPECT_EQ(send("vantuRequestPermission", R"({"permission": "location"})", "page"),
            Strings{R"({"data":{"location":0},"success":true,"authorizedStatus":false})"});
  EXPECT_EQ(shownAlert(), nullptr);
}

TEST_F(Permissions, RequestFailures) {
  EXPECT_EQ(send("vantuRequestPermission", R"({"permission": "camera"})", ""),
            Strings{flatError("Invalid parameters(could not find view controller)!")});
  EXPECT_EQ(send("vantuRequestPermission", R"({"permission": "camera,photos"})", "page"),
            Strings{flatError("Unhandled permission")});
  EXPECT_EQ(send("vantuRequestPermission", R"({"permission": ""})", "page"),
            Strings{flatError("Invalid parameters(permission string empty)!")});
  EXPECT_EQ(send("vantuRequestPermission", R"({"permission": 1})", "page"),
            Strings{flatError("Invalid parameters(could not bind permission in the passed data)!")});
}

TEST_F(Permissions, RefusedPermissionOffersTheSettingsAndAnswersAfterTheTap) {
  const std::vector<std::tuple<std::string_view, std::string_view, std::string_view>> rows{
      {"camera", "camera",
       "We need access to Camera to proceed. Would you like to open Settings and grant us permission to use Camera?"},
      {"photos", "photoLibrary",
       "We need access to Photos to proceed. Would you like to open Settings and grant us permission to use Camera?"},
      {"location", "location",
       "We need access to Location to proceed. Would you like to open settings and grant us permission to Location "
       "Services?"},
      {"microphone", "microphone",
       "We need access to microphone to proceed. Would you like to open settings and grant us  permission to access "
       "the Microphone?"},
      {"contacts", "contacts",
       "We need access to your Contacts to proceed. Would you like to open settings and grant permission to "
       "Contacts?"},
      {"speech", "speechRecognition",
       "We need access to Speech Recognition to proceed. Would you like to open settings and grant permission to "
       "Speech Recognition?"},
  };
  bool openSettings = false;
  for (const auto& [word, resource, message] : rows) {
    SCOPED_TRACE(std::string(word));
    apply(R"({"permissions": {")" + std::string(resource) + R"(": "denied"}})");
    EXPECT_TRUE(call("vantuRequestPermission", R"({"permission": ")" + std::string(word) + R"("})").answers.empty());
    auto alert = shownAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_EQ(alert->title(), "");
    EXPECT_EQ(alert->message(), message);
    ASSERT_EQ(alert->actions().size(), 2u);
    EXPECT_EQ(alert->actions()[0].title(), "Open Settings");
    EXPECT_EQ(alert->actions()[0].style(), AlertAction::Style::Default);
    EXPECT_EQ(alert->actions()[1].title(), "Cancel");
    EXPECT_EQ(alert->actions()[1].style(), AlertAction::Style::Cancel);
    openSettings = !openSettings;  // alternate the buttons
    tap(openSettings ? "Open Settings" : "Cancel");
    auto out = collect();
    EXPECT_EQ(out.answers, Strings{R"({"data":{")" + std::string(word) + R"(":0},"success":true,"authorizedStatus":false})"});
    std::string effects;
    for (const auto& e : out.effects) effects += e;
    EXPECT_EQ(effects.find("openSettings") != std::string::npos, openSettings) << effects;
    EXPECT_EQ(shownAlert(), nullptr);
  }
}

TEST_F(Permissions, UndecidedPermissionAsksTheSystem) {
  const std::vector<std::tuple<std::string_view, std::string_view, std::string_view, std::int64_t>> rows{
      {"camera", "camera", "authorized", 1},   {"camera", "camera", "denied", 0},
      {"video", "photoLibrary", "limited", 0}, {"speech", "speechRecognition", "authorized", 1},
      {"microphone", "microphone", "denied", 0}, {"location", "location", "authorizedWhenInUse", 1},
      {"location", "location", "restricted", 0},
  };
  for (const auto& [word, resource, answer, granted] : rows) {
    SCOPED_TRACE(std::string(word) + " " + std::string(answer));
    apply(R"({"permissions": {")" + std::string(resource) + R"(": {"state": "notDetermined", "answer": ")" +
          std::string(answer) + R"("}}})");
    auto out = call("vantuRequestPermission", R"({"permission": ")" + std::string(word) + R"("})");
    EXPECT_EQ(out.answers, Strings{R"({"data":{")" + std::string(word) + R"(":)" + std::to_string(granted) +
                                   R"(},"success":true,"authorizedStatus":)" + (granted ? "true" : "false") + "}"});
    EXPECT_EQ(out.effects, Strings{R"({"effect":"permissionPrompt","resource":")" + std::string(resource) + R"("})"});
  }
  // A state outside the table: no prompt, no alert, no answer.
  apply(R"({"permissions": {"photoLibrary": "limited"}})");
  auto out = call("vantuRequestPermission", R"({"permission": "photos"})");
  EXPECT_TRUE(out.answers.empty() && out.effects.empty());
}

TEST_F(Permissions, ReleasedRequestHandlerSendsNothing) {
  apply(R"({"permissions": {"camera": {"state": "notDetermined", "answer": null}}})");
  for (bool release : {false, true}) {
    Strings answers;
    auto handler = std::make_shared<RequestPermissionHandler>();
    handler->handleWith(H5HandlerInputParams(device.screen("page"), dataOf(R"({"permission": "camera"})"),
                                             [&answers](const Value& v) { answers.push_back(json::write(v)); }));
    if (release) handler.reset();
    ASSERT_TRUE(device.authorization().answerHeldPrompt(ProtectedResource::camera, AuthorizationState::authorized));
    settle();
    EXPECT_EQ(answers.size(), release ? 0u : 1u);
    apply(R"({"permissions": {"camera": "notDetermined"}})");
  }
}

TEST_F(Permissions, LocationRequestsShareOnePromptUntilAFinalAnswer) {
  apply(R"({"permissions": {"location": {"state": "notDetermined", "answer": null}}})");
  const std::string prompt = R"({"effect":"permissionPrompt","resource":"location"})";
  const std::string granted = R"({"data":{"location":1},"success":true,"authorizedStatus":true})";
  EXPECT_EQ(call("vantuRequestPermission", R"({"permission": "location"})").effects, Strings{prompt});
  EXPECT_EQ(call("vantuRequestPermission", R"({"permission": "location"})").effects, Strings{});
  // An answer that decides nothing keeps both waiting; the next request asks again.
  device.authorization().answerHeldPrompt(ProtectedResource::location, AuthorizationState::notDetermined);
  settle();
  EXPECT_TRUE(collect().answers.empty());
  auto third = call("vantuRequestPermission", R"({"permission": "location"})");
  EXPECT_EQ(third.effects, Strings{prompt});
  EXPECT_TRUE(third.answers.empty());
  device.authorization().answerHeldPrompt(ProtectedResource::location, AuthorizationState::authorizedWhenInUse);
  settle();
  EXPECT_EQ(collect().answers, Strings(3, granted));
}

}  // namespace
}  // namespace vantu::testing_support
