#pragma once
// Picker tests: a device with two screens, full access to photos and the
// camera, pickers left up until the test answers them, and the sample
// files of the runner cases.

#include <filesystem>
#include <string>
#include <string_view>

#include "tests/support/bridge_test_fixture.h"
#include "platforms/sim/sim_pickers_input.h"
#include "vantu/core/file_url.h"

namespace vantu::testing_support {

class PickerTest : public BridgeTestFixture {
 protected:
  void SetUp() override {
    BridgeTestFixture::SetUp();
    device.pickers().baseDirectory = filesDirectory();
    apply(R"({"delegates": {"host": {}}, "screens": [{"name": "page", "delegate": "host"}, {"name": "other"}],
              "permissions": {"photoLibrary": "authorized", "camera": "authorized"}})");
  }

  static std::filesystem::path filesDirectory() { return std::filesystem::path(VANTU_RUNNER_CASES) / "files"; }

  template <class Picker>
  static std::shared_ptr<Picker> shownOn(const std::vector<std::shared_ptr<Picker>>& shown, std::string_view screen) {
    for (const auto& picker : shown) {
      if (picker->presentingViewController()->name() == screen) return picker;
    }
    ADD_FAILURE() << "no picker on " << screen;
    return nullptr;
  }

  /// The user picks `choiceJson` (as the runner's pickImage takes it) in
  /// the image picker shown on `screen`.
  void pickImage(std::string_view screen, std::string_view choiceJson) {
    sim::SimPickers::ImageChoice choice;
    auto error = sim::readImageChoice(json::parse(choiceJson).value(), false, choice);
    ASSERT_FALSE(error) << *error;
    if (auto picker = shownOn(device.pickers().shownImagePickers(), screen)) device.pickers().answer(picker, choice);
    settle();
  }
  void cancelImagePicker(std::string_view screen) {
    if (auto picker = shownOn(device.pickers().shownImagePickers(), screen)) {
      device.pickers().answer(picker, {sim::SimPickers::Action::cancel, {}, {}});
    }
    settle();
  }
  void pickDocuments(std::string_view screen, std::vector<std::string> urls) {
    if (auto picker = shownOn(device.pickers().shownDocumentPickers(), screen)) {
      device.dispatch().main()->async([picker, urls] { picker->pickDocuments(urls); });
    }
    settle();
  }
  std::string fileUrl(std::string_view file) { return fileUrlFromPath((filesDirectory() / file).string()); }
};

}  // namespace vantu::testing_support
