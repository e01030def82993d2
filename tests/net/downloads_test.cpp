// The download folder bridges against a real loopback server: downloads
// and their failures, paths and removal, unsafe names, and pictures saved
// to the photo library under each authorisation state.

#include <algorithm>
#include <fstream>
#include <set>

#include "vantu/net/download_folder.h"

#include "tests/net/net_fixture.h"

namespace vantu::testing_support {
namespace {

namespace fs = std::filesystem;
using Downloads = NetFixture;

Dict download(const std::string& name, const std::string& url, std::string_view indicator = "") {
  Dict data{{"fileName", name}, {"fileDownloadUrl", url}};
  if (!indicator.empty()) data.set("showNetworkActivityIndicator", std::string(indicator));
  return data;
}

/// Every entry of `folder`, recursively, as relative paths.
Strings listing(const fs::path& folder) {
  Strings names;
  std::error_code ignored;
  for (const auto& entry : fs::recursive_directory_iterator(folder, ignored)) {
    names.push_back(fs::relative(entry.path(), folder).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST_F(Downloads, DownloadStreamsToTheFolderAndNeverReplacesAFile) {
  constexpr std::size_t kSize = 3'000'000;
  const std::string url = server.url("/large?bytes=" + std::to_string(kSize));
  auto out = callAndWait("vantuDownloadFile", download("big.bin", url, "true"));
  const std::string path = (downloads() / "big.bin").string();
  EXPECT_EQ(out.answers, Strings{json::write(payload::success(Dict{
                             {"fileName", "big.bin"}, {"fileDownloadUrl", url}, {"success", true}, {"filePath", path}}))});
  EXPECT_EQ(out.effects, (Strings{R"({"effect":"networkActivityIndicator","visible":true})",
                                  R"({"effect":"networkActivityIndicator","visible":false})"}));
  std::ifstream in(path, std::ios::binary);
  std::string content((std::istreambuf_iterator<char>(in)), {});
  ASSERT_EQ(content.size(), kSize);
  EXPECT_EQ(content[kSize - 1], largeByteAt(kSize - 1));

  auto again = answerOf(callAndWait("vantuDownloadFile", download("big.bin", server.url("/status/200"))));
  auto error = again.getDict("data").value_or(Dict{}).getDict("error").value_or(Dict{});
  EXPECT_EQ(error.getInt("code"), 11);
  EXPECT_NE(error.getString("message").value_or("").find("already exists"), std::string::npos);
  EXPECT_EQ(fs::file_size(path), kSize);
  EXPECT_EQ(listing(downloads()), Strings{"big.bin"});  // no partial file left

  EXPECT_EQ(callAndWait("vantuGetFilePath", R"({"fileName": "big.bin"})").answers,
            Strings{json::write(payload::success(Dict{{"filePath", path}, {"success", true}}))});
  EXPECT_EQ(callAndWait("vantuRemoveFile", R"({"fileName": "big.bin"})").answers, Strings{R"({"data":{"success":true}})"});
  const std::string notFound = json::write(H5OpErrorUtil::errorResponse(6, "File not found."));
  EXPECT_EQ(callAndWait("vantuRemoveFile", R"({"fileName": "big.bin"})").answers, Strings{notFound});
  EXPECT_EQ(callAndWait("vantuGetFilePath", R"({"fileName": "big.bin"})").answers, Strings{notFound});
}

TEST_F(Downloads, FailedDownloadsAnswerTheirErrorInsideTheResultAndLeaveNoFile) {
  GarbageListener garbage;
  const std::string notOk = "The server returned a not OK HTTP Response Code:  ";
  const std::tuple<std::string, std::int64_t, std::string> cases[] = {
      {server.url("/status/201"), 1, notOk + "201"},
      {server.url("/status/204"), 1, notOk + "204"},
      {server.url("/status/404"), 1, notOk + "404"},
      {server.url("/status/500"), 1, notOk + "500"},
      {garbage.url(), 13, "Bad Response received."},
      {refusedUrl(), -1004, "Could not connect to the server."},
      {"http://exa mple/", 10, "Valid URL could not be formulated."},
  };
  for (const auto& [url, code, message] : cases) {
    SCOPED_TRACE(url);
    auto out = callAndWait("vantuDownloadFile", download("f.txt", url, "false"));
    EXPECT_EQ(out.answers, Strings{json::write(payload::success(Dict{{"fileName", "f.txt"},
                                                                     {"fileDownloadUrl", url},
                                                                     {"error", Dict{{"code", code}, {"message", message}}},
                                                                     {"success", false},
                                                                     {"filePath", ""}}))});
    EXPECT_TRUE(out.effects.empty());
    EXPECT_EQ(listing(downloads()), Strings{});
  }
}

TEST_F(Downloads, NamesThatAreNotOneFileNameAreRefusedAndNothingOutsideIsTouched) {
  const fs::path outside = device.dataDirectory() / "outside.txt";
  fs::create_directories(downloads());
  std::ofstream(outside) << "keep";
  const std::string names[] = {"../outside.txt", "a/../../outside.txt", outside.string(), "/etc/passwd", "",
                               ".", "..", std::string("a\0b", 3), std::string(300, 'n'), "sub/file"};
  struct Bridge {
    const char* name;
    const char* message;
  };
  const Bridge bridges[] = {{"vantuDownloadFile", "DownloadFileJSAPIHandler: Failed to bind fileName!"},
                            {"vantuGetFilePath", "GetFilePathJSAPIHandler: Failed to bind fileName!"},
                            {"vantuRemoveFile", "RemoveFileJSAPIHandler: Failed to bind fileName!"}};
  const Strings before = listing(device.dataDirectory());
  for (const auto& name : names) {
    for (const auto& bridge : bridges) {
      SCOPED_TRACE(std::string(bridge.name) + " " + name.substr(0, 40));
      auto data = download(name, server.url("/status/200"));
      EXPECT_EQ(callAndWait(bridge.name, data).answers, Strings{flatError(bridge.message)});
    }
  }
  EXPECT_EQ(listing(device.dataDirectory()), before);
  EXPECT_EQ(fs::file_size(outside), 4u);
  // Binding failures in order: the name first, then the URL.
  EXPECT_EQ(callAndWait("vantuDownloadFile", R"({"fileDownloadUrl": 3})").answers,
            Strings{flatError("DownloadFileJSAPIHandler: Failed to bind fileName!")});
  EXPECT_EQ(callAndWait("vantuDownloadFile", R"({"fileName": "a"})").answers,
            Strings{flatError("DownloadFileJSAPIHandler: Failed to bind download url!")});
}

TEST_F(Downloads, GalleryFollowsThePhotoLibraryAuthorisation) {
  const std::string saved = R"({"success":true})";
  const std::string failed = flatError("SaveImagetoGalleryJSAPIHandler: Failed to move image to gallery!");
  struct Case {
    std::string permission, path, answer;
  };
  const Case cases[] = {
      {R"("restricted")", "/image.png", flatError("DownloadFileJSAPIHandler: Not authorized to access photo library")},
      {R"("denied")", "/image.png", flatError("DownloadFileJSAPIHandler: Denied access to photo library")},
      {R"("limited")", "/image.png", ""},
      {R"({"state": "notDetermined", "answer": null})", "/image.png", ""},
      {R"("authorized")", "/image.png", saved},
      {R"({"state": "notDetermined", "answer": "authorized"})", "/image.png", saved},
      {R"("authorized")", "/status/200", failed},
      {R"("authorized")", "/status/404", failed},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.permission + " " + c.path);
    apply(R"({"permissions": {"photoLibrary": )" + c.permission + "}}");
    auto out = callAndWait("vantuDownloadAndSaveImageToGallery", Dict{{"imageUrl", server.url(c.path)}});
    EXPECT_EQ(out.answers, c.answer.empty() ? Strings{} : Strings{c.answer});
    const bool savedOne = c.answer == saved;
    EXPECT_EQ(std::count(out.effects.begin(), out.effects.end(), R"({"effect":"photoLibrarySave","width":3,"height":2})"),
              savedOne ? 1 : 0);
    EXPECT_EQ(listing(downloads()), Strings{});  // the local copy is gone
  }
  apply(R"({"permissions": {"photoLibrary": "authorized"}, "photoLibrary": {"failSaves": true}})");
  EXPECT_EQ(callAndWait("vantuDownloadAndSaveImageToGallery", Dict{{"imageUrl", server.url("/image.png")}}).answers,
            Strings{failed});
  EXPECT_EQ(callAndWait("vantuDownloadAndSaveImageToGallery", Dict{{"imageUrl", refusedUrl()}}).answers,
            Strings{flatError("SaveImagetoGalleryJSAPIHandler: Error Domain=URLErrorDomain Code=-1004 "
                              "\"Could not connect to the server.\"")});
  EXPECT_EQ(callAndWait("vantuDownloadAndSaveImageToGallery", R"({"imageUrl": ["x"]})").answers,
            Strings{flatError("DownloadFileJSAPIHandler: Failed to bind image download url!")});
}

TEST(RandomFileName, HasTheLengthAndAlphabetAsked) {
  EXPECT_EQ(randomFileName(0), "");
  std::set<char> seen;
  for (int i = 0; i < 200; ++i) {
    const std::string name = randomFileName(7);
    ASSERT_EQ(name.size(), 7u);
    for (char c : name) {
      ASSERT_TRUE(std::isalnum(static_cast<unsigned char>(c))) << name;
      seen.insert(c);
    }
  }
  EXPECT_EQ(seen.size(), 62u);  // 1400 draws miss one of 62 characters with odds under 1e-7
}

}  // namespace
}  // namespace vantu::testing_support
