#pragma once
// The simulated photo library: saved pictures become files of a folder in
// the device's data directory, each save recorded as a
// {"effect": "photoLibrarySave", "width", "height"} effect. A scenario can
// make saves fail ("photoLibrary": {"failSaves": true}); a failed save
// records {"effect": "photoLibrarySaveFailed"}.

#include <filesystem>
#include <memory>

#include "platforms/sim/sim_ui.h"
#include "vantu/platform/dispatch.h"
#include "vantu/platform/photo_library.h"

namespace vantu::sim {

class SimPhotoLibrary : public PhotoLibrary {
 public:
  SimPhotoLibrary(std::shared_ptr<Dispatch> dispatch, std::shared_ptr<EffectLog> log, std::filesystem::path folder)
      : dispatch_(std::move(dispatch)), log_(std::move(log)), folder_(std::move(folder)) {}

  bool failSaves = false;
  const std::filesystem::path& folder() const { return folder_; }

 protected:
  /// Answers on the main queue, as a later turn of the run loop.
  void doCreateAsset(Bytes encodedImage, Completion completion) override;

 private:
  std::shared_ptr<Dispatch> dispatch_;
  std::shared_ptr<EffectLog> log_;
  std::filesystem::path folder_;
  int saved_ = 0;
};

}  // namespace vantu::sim
