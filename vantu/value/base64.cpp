#include "vantu/value/base64.h"

#include <array>
#include <cstring>

namespace vantu::base64 {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::uint8_t kInvalid = 0xFF;

constexpr std::array<std::uint8_t, 256> makeDecodeTable() {
  std::array<std::uint8_t, 256> table{};
  for (auto& t : table) t = kInvalid;
  for (std::uint8_t i = 0; i < 64; ++i) table[static_cast<unsigned char>(kAlphabet[i])] = i;
  return table;
}

constexpr std::array<std::uint8_t, 256> kDecode = makeDecodeTable();

std::uint8_t sextet(char c) { return kDecode[static_cast<unsigned char>(c)]; }

}  // namespace

std::size_t encodedLength(std::size_t byteCount) { return (byteCount + 2) / 3 * 4; }

std::string encode(std::span<const std::uint8_t> bytes) {
  std::string out;
  encodeAppend(out, bytes);
  return out;
}

namespace {

// Every 12-bit value's two output characters: 3 input bytes become two
// lookups and two 2-byte stores, a loop without branches that the
// compiler unrolls.
using CharPair = std::array<char, 2>;

constexpr std::array<CharPair, 4096> makePairTable() {
  std::array<CharPair, 4096> table{};
  for (std::size_t i = 0; i < table.size(); ++i) table[i] = {kAlphabet[i >> 6], kAlphabet[i & 0x3F]};
  return table;
}

constexpr std::array<CharPair, 4096> kPairs = makePairTable();

// Encodes `groups` whole 3-byte groups from `src` into `dst`.
void encodeGroups(const std::uint8_t* src, std::size_t groups, char* dst) {
  for (std::size_t g = 0; g < groups; ++g, src += 3, dst += 4) {
    const std::uint32_t n = (std::uint32_t{src[0]} << 16) | (std::uint32_t{src[1]} << 8) | src[2];
    std::memcpy(dst, kPairs[n >> 12].data(), 2);
    std::memcpy(dst + 2, kPairs[n & 0xFFF].data(), 2);
  }
}

// Writes the last group of one or two bytes with its padding.
void encodeTail(const std::uint8_t* src, std::size_t count, char* dst) {
  const std::uint32_t n = (std::uint32_t{src[0]} << 16) | (count == 2 ? std::uint32_t{src[1]} << 8 : 0);
  dst[0] = kAlphabet[(n >> 18) & 0x3F];
  dst[1] = kAlphabet[(n >> 12) & 0x3F];
  dst[2] = count == 2 ? kAlphabet[(n >> 6) & 0x3F] : '=';
  dst[3] = '=';
}

}  // namespace

void encodeAppend(std::string& out, std::span<const std::uint8_t> bytes) {
  const std::size_t start = out.size();
  out.resize(start + encodedLength(bytes.size()));
  const std::size_t groups = bytes.size() / 3;
  encodeGroups(bytes.data(), groups, out.data() + start);
  if (const std::size_t rest = bytes.size() % 3) encodeTail(bytes.data() + groups * 3, rest, out.data() + start + groups * 4);
}

void StreamingEncoder::append(std::span<const std::uint8_t> bytes) {
  if (pendingCount_ > 0) {
    // Complete the waiting group first.
    while (pendingCount_ < 2 && !bytes.empty()) {
      pending_[pendingCount_++] = bytes.front();
      bytes = bytes.subspan(1);
    }
    if (bytes.empty()) return;
    const std::uint8_t group[3] = {pending_[0], pending_[1], bytes.front()};
    bytes = bytes.subspan(1);
    pendingCount_ = 0;
    const std::size_t at = out_.size();
    out_.resize(at + 4);
    encodeGroups(group, 1, out_.data() + at);
  }
  const std::size_t groups = bytes.size() / 3;
  const std::size_t at = out_.size();
  out_.resize(at + groups * 4);
  encodeGroups(bytes.data(), groups, out_.data() + at);
  for (std::size_t i = groups * 3; i < bytes.size(); ++i) pending_[pendingCount_++] = bytes[i];
}

void StreamingEncoder::finish() {
  if (pendingCount_ == 0) return;
  const std::size_t at = out_.size();
  out_.resize(at + 4);
  encodeTail(pending_, pendingCount_, out_.data() + at);
  pendingCount_ = 0;
}

// Unused low bits of the last character before the padding ("QR==" instead
// of "QQ==") are accepted and ignored, as most decoders do; everything else
// that is not canonical Base64 text is rejected.
std::optional<std::vector<std::uint8_t>> decode(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::vector<std::uint8_t> out;
  if (text.empty()) return out;

  std::size_t padding = 0;
  if (text.back() == '=') padding = text[text.size() - 2] == '=' ? 2 : 1;
  out.reserve(text.size() / 4 * 3 - padding);

  const std::size_t fullGroups = text.size() / 4 - (padding ? 1 : 0);
  const char* p = text.data();
  for (std::size_t g = 0; g < fullGroups; ++g, p += 4) {
    const std::uint8_t a = sextet(p[0]), b = sextet(p[1]), c = sextet(p[2]), d = sextet(p[3]);
    if ((a | b | c | d) & 0xC0) return std::nullopt;  // kInvalid has the top bits set
    const std::uint32_t n = (std::uint32_t{a} << 18) | (std::uint32_t{b} << 12) | (std::uint32_t{c} << 6) | d;
    out.push_back(static_cast<std::uint8_t>(n >> 16));
    out.push_back(static_cast<std::uint8_t>(n >> 8));
    out.push_back(static_cast<std::uint8_t>(n));
  }
  if (padding) {
    const std::uint8_t a = sextet(p[0]), b = sextet(p[1]);
    const std::uint8_t c = padding == 1 ? sextet(p[2]) : 0;
    if ((a | b | c) & 0xC0) return std::nullopt;
    const std::uint32_t n = (std::uint32_t{a} << 18) | (std::uint32_t{b} << 12) | (std::uint32_t{c} << 6);
    out.push_back(static_cast<std::uint8_t>(n >> 16));
    if (padding == 1) out.push_back(static_cast<std::uint8_t>(n >> 8));
  }
  return out;
}

std::vector<std::uint8_t> decodeIgnoringUnknown(std::string_view text) {
  std::vector<std::uint8_t> out;
  out.reserve(text.size() / 4 * 3 + 2);
  std::uint32_t acc = 0;
  int count = 0;
  for (char ch : text) {
    if (ch == '=') break;
    const std::uint8_t v = sextet(ch);
    if (v == kInvalid) continue;
    acc = (acc << 6) | v;
    if (++count == 4) {
      out.push_back(static_cast<std::uint8_t>(acc >> 16));
      out.push_back(static_cast<std::uint8_t>(acc >> 8));
      out.push_back(static_cast<std::uint8_t>(acc));
      acc = 0;
      count = 0;
    }
  }
  if (count == 2) {
    out.push_back(static_cast<std::uint8_t>(acc >> 4));
  } else if (count == 3) {
    out.push_back(static_cast<std::uint8_t>(acc >> 10));
    out.push_back(static_cast<std::uint8_t>(acc >> 2));
  }
  return out;
}

}  // namespace vantu::base64
