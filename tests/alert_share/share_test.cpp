// "vantuShareText" and "vantuShareTextAndImage": the order of their checks,
// what the share sheet receives (text, image, both, in that order), the
// image forms a page may send (Base64, data URL) and images that fail; the
// decoder's and the URL loader's own cases are in their tests.

#include <variant>

#include "tests/alert_share/alert_share_fixture.h"
#include "tests/alert_share/test_images.h"
#include "vantu/bridges/host/share_util.h"
#include "vantu/platform/activity_view_controller.h"

namespace vantu::testing_support {
namespace {

constexpr std::string_view kInvalidText = "SharePostHandler: Invalid text parameter!";
constexpr std::string_view kNoContext = "Unable to get current H5 Context";
constexpr std::string_view kImageNoContext = "ShareTextAndImageHandler: Unable to get current H5 Context";
constexpr std::string_view kNothingPassed = "ShareTextAndImageHandler: Neither text not image base 64 passed!";
constexpr std::string_view kBadImage = "ShareTextAndImageHandler: Failed to create image from base 64 string!";

class ShareBridges : public AlertShareFixture {
 protected:
  /// The items of the share sheet `screen` presents, described: "text:..."
  /// or "image:WxH".
  Strings sharedItems(std::string_view screen = "page") {
    auto sheet = presentedOn<ActivityViewController>(screen);
    if (!sheet) return {"<no share sheet>"};
    Strings items;
    for (const auto& item : sheet->activityItems()) {
      if (const auto* text = std::get_if<std::string>(&item)) {
        items.push_back("text:" + *text);
      } else {
        const auto& image = std::get<Image>(item);
        items.push_back("image:" + std::to_string(static_cast<int>(image.size.width)) + "x" +
                        std::to_string(static_cast<int>(image.size.height)));
      }
    }
    return items;
  }

  /// Closes what `screen` presents, as the user does.
  void close(std::string_view screen = "page") {
    if (auto vc = device.screen(screen)) vc->dismiss(true);
    collect();
  }

  static std::string dataJson(const Dict& data) { return json::write(data); }
};

struct CheckCase {
  const char* bridge;
  std::string data;
  const char* screen;
  std::string_view message;
};

TEST_F(ShareBridges, ChecksComeInTheirOrder) {
  const std::string png = base64Of(encodePng(2, 2, quadrantPixels()));
  const CheckCase cases[] = {
      // "vantuShareText": the text before the screen.
      {"vantuShareText", "{}", "page", kInvalidText},
      {"vantuShareText", "{}", "", kInvalidText},
      {"vantuShareText", R"({"text": 12})", "page", kInvalidText},
      {"vantuShareText", R"({"text": "hi"})", "", kNoContext},
      // "vantuShareTextAndImage": the screen first.
      {"vantuShareTextAndImage", "{}", "", kImageNoContext},
      {"vantuShareTextAndImage", R"({"image": ")" + png + R"("})", "", kImageNoContext},
      {"vantuShareTextAndImage", "{}", "page", kNothingPassed},
      {"vantuShareTextAndImage", R"({"text": 1, "image": 2})", "page", kNothingPassed},
      {"vantuShareTextAndImage", R"({"image": ""})", "page", kBadImage},
      {"vantuShareTextAndImage", R"({"image": "bm90IGFuIGltYWdl"})", "page", kBadImage},  // "not an image"
      // With an image that fails, the text is not shared alone.
      {"vantuShareTextAndImage", R"({"text": "hi", "image": "@@@"})", "page", kBadImage},
      // A text that is not a string is absent, and the image still counts.
      {"vantuShareTextAndImage", R"({"text": 5, "image": "@@@"})", "page", kBadImage},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.bridge) + " " + c.data.substr(0, 60) + " from '" + c.screen + "'");
    auto out = call(c.bridge, c.data, c.screen);
    EXPECT_EQ(out.answers, Strings{flatError(c.message)});
    EXPECT_TRUE(out.effects.empty());
    EXPECT_EQ(out.reported, std::string_view(c.screen) == "page" ? Strings{c.bridge} : Strings{});
  }
}

TEST_F(ShareBridges, ShareTextSharesEvenAnEmptyTextAndIgnoresAnImage) {
  // The plain case is pinned by runner case 12.
  auto out = call("vantuShareText", R"({"text": "", "image": "ignored"})", "navPage");  // an empty text is still a text
  EXPECT_EQ(out.answers, Strings{kSuccessFlag});
  EXPECT_EQ(sharedItems("navPage"), Strings{"text:"});
}

TEST_F(ShareBridges, ShareTextAndImageSharesTextImageOrBothInThatOrder) {
  const std::string png = base64Of(encodePng(2, 2, quadrantPixels()));
  struct Case {
    std::string data;
    Strings items;
    std::string share;  // the effect's "share" value
  };
  const Case cases[] = {
      {R"({"text": "hi"})", {"text:hi"}, R"({"text":"hi","image":null})"},
      {R"({"text": "hi", "image": 42})", {"text:hi"}, R"({"text":"hi","image":null})"},
      {R"({"image": ")" + png + R"("})", {"image:2x2"}, R"({"text":null,"image":{"width":2,"height":2}})"},
      {R"({"image": ")" + png + R"(", "text": "both"})", {"text:both", "image:2x2"},
       R"({"text":"both","image":{"width":2,"height":2}})"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.data.substr(0, 60));
    auto out = call("vantuShareTextAndImage", c.data);
    EXPECT_EQ(out.answers, Strings{kSuccessFlag});
    EXPECT_EQ(out.reported, Strings{"vantuShareTextAndImage"});
    EXPECT_EQ(sharedItems(), c.items);
    EXPECT_EQ(out.effects, Strings{R"({"effect":"present","on":"page","presented":"shareSheet","animated":true,"share":)" +
                                   c.share + "}"});
    close();
  }
}

TEST_F(ShareBridges, TheSharedImageHasTheDecodedPixels) {
  call("vantuShareTextAndImage", Dict{{"image", base64Of(encodePng(2, 2, quadrantPixels()))}});
  auto sheet = presentedOn<ActivityViewController>("page");
  ASSERT_NE(sheet, nullptr);
  ASSERT_EQ(sheet->activityItems().size(), 1u);
  const auto* image = std::get_if<Image>(&sheet->activityItems()[0]);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->bytes, quadrantPixels());
}

TEST_F(ShareBridges, ImagesMaySpreadTheirBase64WithUnknownCharacters) {
  std::string spread;
  const std::string plain = base64Of(encodePng(3, 1, solidPixels(3, 1, {1, 2, 3, 255})));
  for (std::size_t i = 0; i < plain.size(); ++i) {
    spread += plain[i];
    if (i % 10 == 9) spread += "\r\n";
    if (i % 17 == 3) spread += " *";
  }
  auto out = call("vantuShareTextAndImage", Dict{{"image", spread}});
  EXPECT_EQ(out.answers, Strings{kSuccessFlag});
  EXPECT_EQ(sharedItems(), Strings{"image:3x1"});
}

TEST_F(ShareBridges, ImagesAsDataUrls) {
  const Bytes8 png = encodePng(2, 2, quadrantPixels());
  std::string escaped;  // the percent-encoded form: every byte escaped
  for (std::uint8_t b : png) {
    static const char* hex = "0123456789ABCDEF";
    escaped += '%';
    escaped += hex[b >> 4];
    escaped += hex[b & 15];
  }
  struct Case {
    std::string image;
    std::string_view answer;  // empty: success
    Strings items;
  };
  const Case cases[] = {
      {"data:image/png;base64," + base64Of(png), {}, {"image:2x2"}},
      {"data:image/png," + escaped, {}, {"image:2x2"}},
      // The media type is not checked: the bytes decide.
      {"data:image/jpeg;base64," + base64Of(png), {}, {"image:2x2"}},
      // "data:image" anywhere makes Base64 text a URL, here one that loads nothing.
      {base64Of(png) + "data:image", kBadImage, {}},
      // A data URL that is no URL at all (the other malformed forms are the
      // loader's own tests; bytes that are no picture are in the checks above).
      {"data:image/png", kBadImage, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.image.substr(0, 50));
    auto out = call("vantuShareTextAndImage", Dict{{"text", "t"}, {"image", c.image}});
    if (c.answer.empty()) {
      EXPECT_EQ(out.answers, Strings{kSuccessFlag});
      Strings items{"text:t"};
      items.insert(items.end(), c.items.begin(), c.items.end());
      EXPECT_EQ(sharedItems(), items);
      close();
    } else {
      EXPECT_EQ(out.answers, Strings{flatError(c.answer)});
      EXPECT_TRUE(out.effects.empty());
    }
  }
}

TEST_F(ShareBridges, ASecondSheetOnABusyScreenIsRefusedButStillAnswered) {
  // The bridges answer as soon as they asked for the sheet; the platform
  // shows one presentation at a time.
  call("vantuShareText", R"({"text": "first"})");
  auto out = call("vantuShareTextAndImage", R"({"text": "second"})");
  EXPECT_EQ(out.answers, Strings{kSuccessFlag});
  EXPECT_EQ(out.effects, Strings{R"({"effect":"presentRefused","on":"page","presented":"shareSheet","animated":true,)"
                                 R"("showing":"shareSheet","share":{"text":"second","image":null}})"});
  EXPECT_EQ(sharedItems(), Strings{"text:first"});
}

TEST_F(ShareBridges, ShareUtilWithNothingToShareAnswersInsideData) {
  Strings answers;
  ShareUtil::share(std::nullopt, std::nullopt, *device.screen("page"),
                   [&](const Value& answer) { answers.push_back(json::write(answer)); });
  EXPECT_EQ(answers,
            Strings{R"({"data":{"success":false,"error":"ShareTextAndImageHandler: Text and image both found nil"}})"});
  EXPECT_EQ(device.screen("page")->presentedViewController(), nullptr);
  EXPECT_TRUE(collect().effects.empty());
}

}  // namespace
}  // namespace vantu::testing_support
