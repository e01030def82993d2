#include "platforms/linux/linux_device_facts.h"

#include <sys/utsname.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace vantu::linux_platform {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

std::string_view trim(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

/// The bytes of a fixed-size `uname` field up to its first zero byte.
template <std::size_t N>
std::string fieldText(const char (&field)[N]) {
  return std::string(field, strnlen(field, N));
}

std::optional<std::string> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

std::optional<std::string> unquoteOsReleaseValue(std::string_view raw) {
  std::string value;
  std::size_t i = 0;
  while (i < raw.size() && !isBlank(raw[i])) {
    char c = raw[i];
    if (c == '\'') {
      auto end = raw.find('\'', i + 1);
      if (end == std::string_view::npos) return std::nullopt;
      value.append(raw.substr(i + 1, end - i - 1));
      i = end + 1;
    } else if (c == '"') {
      ++i;
      for (;;) {
        if (i >= raw.size()) return std::nullopt;
        char d = raw[i++];
        if (d == '"') break;
        if (d == '\\' && i < raw.size()) {
          // Inside double quotes a backslash escapes only these; elsewhere it stays.
          char next = raw[i];
          if (next == '"' || next == '\\' || next == '$' || next == '`') {
            value.push_back(next);
            ++i;
            continue;
          }
        }
        value.push_back(d);
      }
    } else if (c == '\\') {
      if (i + 1 < raw.size()) value.push_back(raw[i + 1]);
      i += 2;
    } else {
      value.push_back(c);
      ++i;
    }
  }
  return value;
}

std::optional<std::string> osReleaseVersionId(std::string_view text) {
  std::optional<std::string> found;
  while (!text.empty()) {
    auto end = text.find('\n');
    auto line = trim(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    if (line.empty() || line.front() == '#') continue;
    auto eq = line.find('=');
    if (eq == std::string_view::npos || line.substr(0, eq) != "VERSION_ID") continue;
    found = unquoteOsReleaseValue(line.substr(eq + 1));
  }
  if (found && found->empty()) return std::nullopt;
  return found;
}

std::string messagesLocale(const char* lcAll, const char* lcMessages, const char* lang) {
  for (const char* name : {lcAll, lcMessages, lang}) {
    if (name && *name) return name;
  }
  return "";
}

std::optional<std::string> languageCodeOfLocale(std::string_view locale) {
  auto end = locale.find_first_of("_.@");
  auto language = locale.substr(0, end);
  if (language.size() < 2 || language.size() > 3) return std::nullopt;  // "", "C", "POSIX"
  std::string code;
  for (char c : language) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (c < 'a' || c > 'z') return std::nullopt;
    code.push_back(c);
  }
  return code;
}

LinuxDeviceFacts::LinuxDeviceFacts(Options options) : bundleInfo_(std::move(options.bundleInfo)) {
  struct utsname names {};
  std::string release;
  if (uname(&names) == 0) {
    machine_ = fieldText(names.machine);
    release = fieldText(names.release);
  }
  for (const auto& path : options.osReleasePaths) {
    auto text = readFile(path);
    if (!text) continue;  // os-release(5): use the first file that exists
    if (auto version = osReleaseVersionId(*text)) version_ = *version;
    break;
  }
  if (version_.empty()) version_ = release;
  language_ = languageCodeOfLocale(
      messagesLocale(std::getenv("LC_ALL"), std::getenv("LC_MESSAGES"), std::getenv("LANG")));
}

}  // namespace vantu::linux_platform
