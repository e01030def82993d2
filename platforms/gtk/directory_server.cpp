#include "vantu/gtk/directory_server.h"

#include <libsoup/soup.h>

#include <optional>
#include <stdexcept>

#include "platforms/linux/gobject_ptr.h"

namespace vantu::gtk {
namespace {

using linux_platform::GCharPtr;

// `requestPath` is the URL's path, already percent-decoded by libsoup.
std::optional<std::filesystem::path> resolve(const std::filesystem::path& root, const std::string& requestPath) {
  auto relative = std::filesystem::path(requestPath).relative_path().lexically_normal();
  if (!relative.empty() && *relative.begin() == "..") return std::nullopt;
  auto path = root / relative;
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) path /= "index.html";
  if (!std::filesystem::is_regular_file(path, ec)) return std::nullopt;
  return path;
}

void serve(SoupServer*, SoupServerMessage* message, const char* path, GHashTable*, gpointer self) {
  const auto& root = *static_cast<const std::filesystem::path*>(self);
  const std::string method = soup_server_message_get_method(message);
  if (method != "GET" && method != "HEAD") {
    soup_server_message_set_status(message, SOUP_STATUS_METHOD_NOT_ALLOWED, nullptr);
    return;
  }
  auto file = resolve(root, path);
  gchar* contents = nullptr;
  gsize length = 0;
  if (!file || !g_file_get_contents(file->c_str(), &contents, &length, nullptr)) {
    soup_server_message_set_status(message, SOUP_STATUS_NOT_FOUND, nullptr);
    return;
  }
  GCharPtr type(g_content_type_guess(file->c_str(), nullptr, 0, nullptr));
  GCharPtr mime(g_content_type_get_mime_type(type.get()));
  std::string contentType = mime ? mime.get() : "application/octet-stream";
  if (contentType.rfind("text/", 0) == 0 || contentType == "application/javascript") contentType += "; charset=utf-8";
  soup_server_message_set_status(message, SOUP_STATUS_OK, nullptr);
  soup_message_headers_replace(soup_server_message_get_response_headers(message), "Cache-Control", "no-store");
  soup_server_message_set_response(message, contentType.c_str(), SOUP_MEMORY_TAKE, contents, length);
}

}  // namespace

DirectoryServer::DirectoryServer(std::filesystem::path root)
    : root_(std::filesystem::absolute(std::move(root))), server_(soup_server_new("server-header", "vantu-h5", nullptr)) {
  soup_server_add_handler(server_.get(), nullptr, serve, &root_, nullptr);
  linux_platform::GErrorPtr error;
  if (!soup_server_listen_local(server_.get(), 0, SOUP_SERVER_LISTEN_IPV4_ONLY, linux_platform::outParam(error))) {
    throw std::runtime_error("cannot serve " + root_.string() + ": " + (error ? error->message : "unknown error"));
  }
  GSList* uris = soup_server_get_uris(server_.get());
  const int port = uris ? g_uri_get_port(static_cast<GUri*>(uris->data)) : -1;
  g_slist_free_full(uris, reinterpret_cast<GDestroyNotify>(g_uri_unref));
  origin_ = "http://127.0.0.1:" + std::to_string(port);
}

void DirectoryServer::Release::operator()(SoupServer* server) const { g_object_unref(server); }

DirectoryServer::~DirectoryServer() {
  soup_server_disconnect(server_.get());
}

}  // namespace vantu::gtk
