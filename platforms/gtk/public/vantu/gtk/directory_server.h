#pragma once
// Serves a directory over HTTP on 127.0.0.1 (a port the system picks), on
// the GLib main context, so a mini-app's pages and files share one origin.
// GET and HEAD only; a path that leaves the directory is not found. A host
// serves a mini-app's files from disk with it and allows "127.0.0.1".

#include <filesystem>
#include <memory>
#include <string>

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
  struct Release {
    void operator()(SoupServer* server) const;
  };
  std::filesystem::path root_;
  std::unique_ptr<SoupServer, Release> server_;
  std::string origin_;
};

}  // namespace vantu::gtk
