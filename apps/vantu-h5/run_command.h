#pragma once
// `vantu-h5 run DIR|URL`: a mini-app in the WebKitGTK container.

#include <string>
#include <vector>

namespace vantu::cli {

struct RunOptions {
  std::string target;  // a directory to serve, or a URL
  std::string page = "index.html";
  std::string appId;
  std::string appType = "miniapp";
  std::string dataDir;
  std::vector<std::string> allowDomains;
  std::string deviceProfile;
  std::string cameraSource;  // a GStreamer pipeline description standing in for the camera
  bool selfTest = false;
  std::string screenshot;
  double timeoutSeconds = 120;
  bool inspector = false;
  bool quiet = false;
};

int runContainer(const RunOptions& options);

}  // namespace vantu::cli
