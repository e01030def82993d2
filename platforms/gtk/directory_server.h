#pragma once
// Serves a directory over HTTP on 127.0.0.1 (a port the system picks), on
// the GLib main context, so a mini-app's pages and files share one origin.
// GET and HEAD only; a path that leaves the directory is not found.

#include <filesystem>
#include <memory>
#include <string>

#include "platforms/linux/gobject_ptr.h"

typedef struct _SoupServer SoupServer;

namespace vantu::gtk {

class DirectoryServer {
 public:
  /// Starts serving `root`; throws std::runtime_error when it cannot listen.
  explicit DirectoryServer(std::filesystem::path root);
  ~DirectoryServer();
  DirectoryServer(const DirectoryServer&) = delete;
  DirectoryServer& operator=(const DirectoryServer&) = delete;

  /// "http://127.0.0.1:<port>" (no trailing slash).
  const std::string& origin() const { return origin_; }

 private:
  std::filesystem::path root_;
  linux_platform::GObjectPtr<SoupServer> server_;
  std::string origin_;
};

}  // namespace vantu::gtk
