// The download folder bridges against a real loopback server: downloads, paths, removal, unsafe
// names, and pictures saved to the photo library under each authorisation state.

#include <algorithm>
#include <fstream>
#include <set>

#include <cerrno>

#include "platforms/common/posix_file_system.h"
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

  // vantuGetFilePath's answer for a downloaded file is pinned end to end in tests/platforms/gtk.
  EXPECT_EQ(callAndWait("vantuRemoveFile", R"({"fileName": "big.bin"})").answers, Strings{R"({"data":{"success":true}})"});
  // The same answer from vantuGetFilePath is pinned by runner case 16_network_files.
  EXPECT_EQ(callAndWait("vantuRemoveFile", R"({"fileName": "big.bin"})").answers,
            Strings{json::write(H5OpErrorUtil::errorResponse(6, "File not found."))});
}

TEST_F(Downloads, FailedDownloadsAnswerTheirErrorInsideTheResultAndLeaveNoFile) {
  GarbageListener garbage;
  std::vector<std::tuple<std::string, std::int64_t, std::string>> cases = {
      {garbage.url(), 13, "Bad Response received."}, {refusedUrl(), -1004, "Could not connect to the server."}};
  for (std::string code : {"201", "404"}) {  // a URL that cannot be formed: runner case 16_network_files
    cases.emplace_back(server.url("/status/" + code), 1, "The server returned a not OK HTTP Response Code:  " + code);
  }
  for (const auto& [url, code, message] : cases) {
    SCOPED_TRACE(url);
    auto out = callAndWait("vantuDownloadFile", download("f.txt", url, "false"));
    const Dict error{{"code", code}, {"message", message}};
    const Dict result{{"fileName", "f.txt"}, {"fileDownloadUrl", url}, {"error", error}, {"success", false}, {"filePath", ""}};
    EXPECT_EQ(out.answers, Strings{json::write(payload::success(result))});
    EXPECT_TRUE(out.effects.empty());
    EXPECT_EQ(listing(downloads()), Strings{});
  }
}

TEST_F(Downloads, AMoveTheFileSystemRefusesIsAnsweredWithItsReasonAndLeavesNoFile) {
  const std::string url = server.url("/status/200");
  const std::string folder = downloads().filename().string();
  device.fileSystem().failNextMove({FileSystemError::Kind::other, 13, "Permission denied"});
  device.fileSystem().failNextMove({FileSystemError::Kind::alreadyExists, 17, "File exists"});
  for (const std::string& message :
       {"\u201cf.txt\u201d couldn\u2019t be moved to \u201c" + folder + "\u201d: Permission denied.",
        "\u201cf.txt\u201d couldn\u2019t be moved to \u201c" + folder +
            "\u201d because an item with the same name already exists."}) {
    auto out = callAndWait("vantuDownloadFile", download("f.txt", url));
    const Dict result{{"fileName", "f.txt"},
                      {"fileDownloadUrl", url},
                      {"error", Dict{{"code", 11}, {"message", message}}},
                      {"success", false},
                      {"filePath", ""}};
    EXPECT_EQ(out.answers, Strings{json::write(payload::success(result))});
    EXPECT_EQ(listing(downloads()), Strings{});
  }
}

TEST(PosixFileSystem, MovesOnlyOntoAFreeName) {
  const fs::path dir = fs::temp_directory_path() / ("vantu-move-" + randomFileName(8));
  fs::create_directories(dir);
  std::ofstream(dir / "a") << "first";
  std::ofstream(dir / "b") << "second";
  PosixFileSystem files;
  auto refused = files.moveWithoutReplacing(dir / "a", dir / "b");
  ASSERT_TRUE(refused);
  EXPECT_EQ(refused->kind, FileSystemError::Kind::alreadyExists);
  EXPECT_EQ(refused->code, EEXIST);
  auto missing = files.moveWithoutReplacing(dir / "gone", dir / "c");
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->kind, FileSystemError::Kind::other);
  EXPECT_EQ(missing->code, ENOENT);
  EXPECT_FALSE(files.moveWithoutReplacing(dir / "a", dir / "c"));
  EXPECT_EQ(listing(dir), (Strings{"b", "c"}));
  std::ifstream moved(dir / "c");
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(moved), {}), "first");
  fs::remove_all(dir);
}

TEST_F(Downloads, NamesThatAreNotOneFileNameAreRefusedAndNothingOutsideIsTouched) {
  const fs::path outside = device.dataDirectory() / "outside.txt";
  fs::create_directories(downloads());
  std::ofstream(outside) << "keep";
  const std::string names[] = {"../outside.txt", "a/../../outside.txt", outside.string(), "/etc/passwd", "",
                               ".", "..", std::string("a\0b", 3), std::string(300, 'n'), "sub/file"};
  const std::pair<const char*, const char*> bridges[] = {
      {"vantuDownloadFile", "DownloadFileJSAPIHandler: Failed to bind fileName!"},
      {"vantuGetFilePath", "GetFilePathJSAPIHandler: Failed to bind fileName!"},
      {"vantuRemoveFile", "RemoveFileJSAPIHandler: Failed to bind fileName!"}};
  const Strings before = listing(device.dataDirectory());
  for (const auto& name : names) {
    for (const auto& [bridge, message] : bridges) {
      SCOPED_TRACE(std::string(bridge) + " " + name.substr(0, 40));
      EXPECT_EQ(callAndWait(bridge, download(name, server.url("/status/200"))).answers, Strings{flatError(message)});
    }
  }
  EXPECT_EQ(listing(device.dataDirectory()), before);
  EXPECT_EQ(fs::file_size(outside), 4u);
  // The name is bound before the URL (a missing URL alone is pinned by runner case 16_network_files).
  EXPECT_EQ(callAndWait("vantuDownloadFile", R"({"fileDownloadUrl": 3})").answers,
            Strings{flatError(bridges[0].second)});
}

TEST_F(Downloads, GalleryFollowsThePhotoLibraryAuthorisationAndLeavesNoLocalCopy) {
  const std::string saved = R"({"success":true})";
  const std::string failed = flatError("SaveImagetoGalleryJSAPIHandler: Failed to move image to gallery!");
  const std::string image = server.url("/image.png");
  auto permission = [](std::string state) { return R"({"permissions": {"photoLibrary": )" + state + "}}"; };
  const std::string refused = "SaveImagetoGalleryJSAPIHandler: Error Domain=URLErrorDomain Code=-1004 ";
  // Restricted, denied and limited access and a URL that is not text: runner case 16_network_files.
  const std::tuple<std::string, Value, std::string> cases[] = {
      {permission(R"({"state": "notDetermined", "answer": null})"), image, ""},
      {permission(R"("authorized")"), image, saved},
      {permission(R"({"state": "notDetermined", "answer": "authorized"})"), image, saved},
      {permission(R"("authorized")"), server.url("/status/200"), failed},
      {permission(R"("authorized")"), server.url("/status/404"), failed},
      {permission(R"("authorized")"), refusedUrl(), flatError(refused + R"("Could not connect to the server.")")},
      {R"({"photoLibrary": {"failSaves": true}})", image, failed},
  };
  for (const auto& [scenario, url, answer] : cases) {
    SCOPED_TRACE(scenario + " " + json::write(url));
    apply(scenario);
    auto out = callAndWait("vantuDownloadAndSaveImageToGallery", Dict{{"imageUrl", url}});
    EXPECT_EQ(out.answers, answer.empty() ? Strings{} : Strings{answer});
    const std::string saveEffect = R"({"effect":"photoLibrarySave","width":3,"height":2})";
    EXPECT_EQ(std::count(out.effects.begin(), out.effects.end(), saveEffect), answer == saved ? 1 : 0);
    EXPECT_EQ(listing(downloads()), Strings{});
  }
}

// Links that another local process puts in the download folder, or in its
// place: each file bridge answers them as it answers a missing file, and
// nothing outside the folder is read, written or removed.
class LinksInTheDownloadFolder : public NetFixture {
 protected:
  void SetUp() override {
    NetFixture::SetUp();
    outside = device.dataDirectory() / "elsewhere";
    fs::create_directories(outside);
    fs::create_directories(downloads());
    std::ofstream(outside / "secret.txt") << "secret";
    std::ofstream(downloads() / "own.txt") << "own";
    fs::create_symlink(outside / "secret.txt", downloads() / "to-outside.txt");
    fs::create_symlink("own.txt", downloads() / "to-inside.txt");
    fs::create_symlink(outside / "gone.txt", downloads() / "dangling.txt");
  }
  /// Puts a link to the outside folder where the download folder was.
  void replaceFolderWithLink() {
    fs::rename(downloads(), device.dataDirectory() / "old-downloads");
    fs::create_directory_symlink(outside, downloads());
  }
  void expectOutsideUntouched() {
    EXPECT_EQ(listing(outside), Strings{"secret.txt"});
    std::ifstream in(outside / "secret.txt");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "secret");
  }

  fs::path outside;
  const std::string notFound = json::write(H5OpErrorUtil::errorResponse(6, "File not found."));
};

TEST_F(LinksInTheDownloadFolder, GetFilePathAnswersALinkAsAMissingFile) {
  const std::pair<std::string, std::string> cases[] = {
      {"own.txt", json::write(payload::success(Dict{{"filePath", (downloads() / "own.txt").string()}, {"success", true}}))},
      {"to-outside.txt", notFound},
      {"to-inside.txt", notFound},
      {"dangling.txt", notFound},
  };
  for (const auto& [name, answer] : cases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(callAndWait("vantuGetFilePath", Dict{{"fileName", name}}).answers, Strings{answer});
  }
  replaceFolderWithLink();
  EXPECT_EQ(callAndWait("vantuGetFilePath", R"({"fileName": "secret.txt"})").answers, Strings{notFound});
  expectOutsideUntouched();
}

TEST_F(LinksInTheDownloadFolder, RemoveFileLeavesALinkAndWhatItPointsAt) {
  for (const char* name : {"to-outside.txt", "to-inside.txt", "dangling.txt"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(callAndWait("vantuRemoveFile", Dict{{"fileName", name}}).answers, Strings{notFound});
    EXPECT_TRUE(fs::is_symlink(downloads() / name));
  }
  EXPECT_TRUE(fs::exists(downloads() / "own.txt"));
  EXPECT_EQ(callAndWait("vantuRemoveFile", R"({"fileName": "own.txt"})").answers,
            Strings{R"({"data":{"success":true}})"});
  EXPECT_FALSE(fs::exists(fs::symlink_status(downloads() / "own.txt")));

  replaceFolderWithLink();
  EXPECT_EQ(callAndWait("vantuRemoveFile", R"({"fileName": "secret.txt"})").answers, Strings{notFound});
  expectOutsideUntouched();
}

TEST_F(LinksInTheDownloadFolder, DownloadFileNeverWritesThroughALink) {
  const std::string url = server.url("/echo");
  auto errorOf = [](const Dict& answer) {
    return answer.getDict("data").value_or(Dict{}).getDict("error").value_or(Dict{});
  };
  // A link under the name asked for is a name that is taken.
  auto taken = errorOf(answerOf(callAndWait("vantuDownloadFile", download("to-outside.txt", url))));
  EXPECT_EQ(taken.getInt("code"), 11);
  EXPECT_NE(taken.getString("message").value_or("").find("already exists"), std::string::npos);
  EXPECT_TRUE(fs::is_symlink(downloads() / "to-outside.txt"));

  replaceFolderWithLink();
  auto refused = errorOf(answerOf(callAndWait("vantuDownloadFile", download("new.txt", url))));
  EXPECT_EQ(refused, (Dict{{"code", 11}, {"message", "The download folder is not available."}}));
  expectOutsideUntouched();
}

TEST_F(LinksInTheDownloadFolder, GalleryNeverWritesThroughALinkInPlaceOfTheFolder) {
  apply(R"({"permissions": {"photoLibrary": "authorized"}})");
  replaceFolderWithLink();
  auto out = callAndWait("vantuDownloadAndSaveImageToGallery", Dict{{"imageUrl", server.url("/image.png")}});
  EXPECT_EQ(out.answers, Strings{flatError("SaveImagetoGalleryJSAPIHandler: Failed to move image to gallery!")});
  EXPECT_TRUE(out.effects.empty());
  expectOutsideUntouched();
}

TEST(RandomFileName, HasTheLengthAndAlphabetAsked) {
  EXPECT_EQ(randomFileName(0), "");
  std::set<char> seen;
  for (int i = 0; i < 200; ++i) {
    const std::string name = randomFileName(7);
    ASSERT_EQ(name.size(), 7u);
    seen.insert(name.begin(), name.end());
  }
  // Exactly the 62 letters and digits; 1400 draws miss one of them with odds under 1e-7.
  EXPECT_EQ(seen.size(), 62u);
  EXPECT_TRUE(std::all_of(seen.begin(), seen.end(), [](unsigned char c) { return std::isalnum(c); }));
}

}  // namespace
}  // namespace vantu::testing_support
