#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>

#include "tests/net/net_fixture.h"

#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace vantu::testing_support {
namespace {

int boundLoopbackSocket(int& port) {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ::bind(fd, reinterpret_cast<sockaddr*>(&address), sizeof address);
  socklen_t length = sizeof address;
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length);
  port = ntohs(address.sin_port);
  return fd;
}

std::string tinyPng() {
  const unsigned char pixels[3 * 2 * 3] = {255, 0, 0, 0, 255, 0, 0, 0, 255, 9, 9, 9, 90, 90, 90, 200, 200, 200};
  std::string png;
  stbi_write_png_to_func([](void* out, void* data, int size) { static_cast<std::string*>(out)->append(static_cast<char*>(data), size); },
                         &png, 3, 2, 3, pixels, 9);
  return png;
}

}  // namespace

LoopbackHttpServer::LoopbackHttpServer() {
  using Request = httplib::Request;
  using Response = httplib::Response;
  server_.set_pre_routing_handler([this](const Request&, Response&) {
    ++requests_;
    return httplib::Server::HandlerResponse::Unhandled;
  });
  server_.Get(R"(/status/(\d+))", [](const Request& req, Response& res) {
    res.status = std::stoi(req.matches[1]);
    if (res.status != 204) res.set_content("oops", "text/plain");
  });
  server_.Get("/binary", [](const Request&, Response& res) {
    res.set_content(std::string("\xff\xfe\x00\x80", 4), "application/octet-stream");
  });
  auto echo = [](const Request& req, Response& res) {
    res.set_content(req.method + "|" + req.get_header_value("X-Token") + "|" + req.body, "text/plain");
  };
  server_.Get("/echo", echo).Post("/echo", echo).Put("/echo", echo).Delete("/echo", echo);
  server_.Get("/slow", [](const Request&, Response& res) {
    std::this_thread::sleep_for(std::chrono::seconds(2));
    res.set_content("late", "text/plain");
  });
  server_.Get("/large", [](const Request& req, Response& res) {
    res.set_content_provider(std::stoull(req.get_param_value("bytes")), "application/octet-stream",
                             [](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                               std::string chunk(std::min<std::size_t>(length, 1 << 16), ' ');
                               for (std::size_t i = 0; i < chunk.size(); ++i) chunk[i] = largeByteAt(offset + i);
                               return sink.write(chunk.data(), chunk.size());
                             });
  });
  server_.Get("/image.png", [](const Request&, Response& res) { res.set_content(tinyPng(), "image/png"); });
  server_.Get("/redirect", [](const Request&, Response& res) { res.set_redirect("/status/200"); });
  // One request per connection: the client keeps idle connections, and
  // stop() would wait for each of them to time out.
  server_.set_keep_alive_max_count(1);
  port_ = server_.bind_to_any_port("127.0.0.1");
  thread_ = std::thread([this] { server_.listen_after_bind(); });
  while (!server_.is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

GarbageListener::GarbageListener() {
  socket_ = boundLoopbackSocket(port_);
  ::listen(socket_, 8);
  thread_ = std::thread([this] {  // until the destructor shuts the socket down
    for (int client; (client = ::accept(socket_, nullptr, nullptr)) >= 0; ::close(client)) {
      char request[1024];
      (void)::recv(client, request, sizeof request, 0);
      const char garbage[] = "\x01\x02 this is not a web server\n";
      (void)::send(client, garbage, sizeof garbage - 1, MSG_NOSIGNAL);
    }
  });
}

GarbageListener::~GarbageListener() {
  ::shutdown(socket_, SHUT_RDWR);
  thread_.join();
  ::close(socket_);
}

std::string refusedUrl() {
  int port = 0;
  ::close(boundLoopbackSocket(port));
  return "http://127.0.0.1:" + std::to_string(port) + "/";
}

}  // namespace vantu::testing_support
