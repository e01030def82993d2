#pragma once
// Analytics events written as JSON lines to a log file: one line per event
// with the time, the mini-app and the event's variables.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

#include "vantu/value/json.h"
#include "vantu/value/value.h"

namespace host_app {

class AnalyticsLog {
 public:
  explicit AnalyticsLog(std::filesystem::path file) : file_(std::move(file)), out_(file_, std::ios::app) {}

  void record(const std::string& appId, const vantu::Dict& variables) {
    const auto now = std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    out_ << vantu::json::write(vantu::Dict{{"at", now}, {"app", appId}, {"variables", variables}}) << '\n';
    out_.flush();
  }
  const std::filesystem::path& file() const { return file_; }

 private:
  std::filesystem::path file_;
  std::ofstream out_;
};

}  // namespace host_app
