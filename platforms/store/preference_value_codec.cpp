#include "platforms/store/preference_value_codec.h"

#include <cstdint>
#include <cstring>
#include <vector>

namespace vantu::store {
namespace {

// Deeper nesting is refused rather than risking the decoder's stack.
constexpr std::size_t kMaxDecodeDepth = 512;

void putVarint(std::string& out, std::uint64_t n) {
  while (n >= 0x80) {
    out.push_back(static_cast<char>((n & 0x7f) | 0x80));
    n >>= 7;
  }
  out.push_back(static_cast<char>(n));
}

void putFixed(std::string& out, std::uint64_t bits) {
  for (int i = 0; i < 8; ++i) out.push_back(static_cast<char>((bits >> (8 * i)) & 0xff));
}

std::uint64_t doubleBits(double d) {
  std::uint64_t bits;
  std::memcpy(&bits, &d, sizeof bits);
  return bits;
}

double bitsDouble(std::uint64_t bits) {
  double d;
  std::memcpy(&d, &bits, sizeof d);
  return d;
}

void encodeTo(std::string& out, const PreferenceValue& value) {
  switch (value.kind()) {
    case PreferenceValue::Kind::Null: out.push_back('n'); break;
    case PreferenceValue::Kind::Bool: out.push_back(*value.asBool() ? 't' : 'f'); break;
    case PreferenceValue::Kind::Int:
      out.push_back('i');
      putFixed(out, static_cast<std::uint64_t>(*value.asInt()));
      break;
    case PreferenceValue::Kind::Double:
      out.push_back('d');
      putFixed(out, doubleBits(*value.asDouble()));
      break;
    case PreferenceValue::Kind::Date:
      out.push_back('D');
      putFixed(out, doubleBits(value.asDate()->secondsSince1970));
      break;
    case PreferenceValue::Kind::String:
      out.push_back('s');
      putVarint(out, value.asString()->size());
      out += *value.asString();
      break;
    case PreferenceValue::Kind::Bytes:
      out.push_back('b');
      putVarint(out, value.asBytes()->data.size());
      out.append(reinterpret_cast<const char*>(value.asBytes()->data.data()), value.asBytes()->data.size());
      break;
    case PreferenceValue::Kind::List:
      out.push_back('a');
      putVarint(out, value.asList()->size());
      for (const auto& item : *value.asList()) encodeTo(out, item);
      break;
    case PreferenceValue::Kind::Map:
      out.push_back('m');
      putVarint(out, value.asMap()->size());
      for (const auto& [key, item] : *value.asMap()) {
        putVarint(out, key.size());
        out += key;
        encodeTo(out, item);
      }
      break;
  }
}

class Decoder {
 public:
  explicit Decoder(std::string_view in) : in_(in) {}

  std::optional<PreferenceValue> value(std::size_t depth) {
    if (depth > kMaxDecodeDepth || pos_ >= in_.size()) return std::nullopt;
    char tag = in_[pos_++];
    switch (tag) {
      case 'n': return PreferenceValue();
      case 't': return PreferenceValue(true);
      case 'f': return PreferenceValue(false);
      case 'i': {
        auto bits = fixed();
        if (!bits) return std::nullopt;
        return PreferenceValue(static_cast<std::int64_t>(*bits));
      }
      case 'd': {
        auto bits = fixed();
        if (!bits) return std::nullopt;
        return PreferenceValue(bitsDouble(*bits));
      }
      case 'D': {
        auto bits = fixed();
        if (!bits) return std::nullopt;
        return PreferenceValue(PreferenceDate{bitsDouble(*bits)});
      }
      case 's': {
        auto text = bytes();
        if (!text) return std::nullopt;
        return PreferenceValue(std::string(*text));
      }
      case 'b': {
        auto raw = bytes();
        if (!raw) return std::nullopt;
        return PreferenceValue(Bytes{std::vector<std::uint8_t>(raw->begin(), raw->end())});
      }
      case 'a': {
        auto count = varint();
        if (!count || *count > in_.size() - pos_) return std::nullopt;  // each item takes a byte at least
        PreferenceValue::List list;
        list.reserve(*count);
        for (std::uint64_t i = 0; i < *count; ++i) {
          auto item = value(depth + 1);
          if (!item) return std::nullopt;
          list.push_back(std::move(*item));
        }
        return PreferenceValue(std::move(list));
      }
      case 'm': {
        auto count = varint();
        if (!count || *count > in_.size() - pos_) return std::nullopt;
        PreferenceValue::Map map;
        map.reserve(*count);
        for (std::uint64_t i = 0; i < *count; ++i) {
          auto key = bytes();
          if (!key) return std::nullopt;
          auto item = value(depth + 1);
          if (!item) return std::nullopt;
          map.emplace_back(std::string(*key), std::move(*item));
        }
        return PreferenceValue(std::move(map));
      }
      default: return std::nullopt;
    }
  }

  bool atEnd() const { return pos_ == in_.size(); }

 private:
  std::optional<std::uint64_t> fixed() {
    if (in_.size() - pos_ < 8) return std::nullopt;
    std::uint64_t bits = 0;
    for (int i = 0; i < 8; ++i) bits |= static_cast<std::uint64_t>(static_cast<unsigned char>(in_[pos_ + i])) << (8 * i);
    pos_ += 8;
    return bits;
  }

  std::optional<std::uint64_t> varint() {
    std::uint64_t n = 0;
    for (int shift = 0; shift < 64; shift += 7) {
      if (pos_ >= in_.size()) return std::nullopt;
      auto byte = static_cast<unsigned char>(in_[pos_++]);
      n |= static_cast<std::uint64_t>(byte & 0x7f) << shift;
      if (!(byte & 0x80)) return n;
    }
    return std::nullopt;
  }

  std::optional<std::string_view> bytes() {
    auto size = varint();
    if (!size || *size > in_.size() - pos_) return std::nullopt;
    auto view = in_.substr(pos_, *size);
    pos_ += *size;
    return view;
  }

  std::string_view in_;
  std::size_t pos_ = 0;
};
}  // namespace

std::string encodePreferenceValue(const PreferenceValue& value) {
  std::string out;
  encodeTo(out, value);
  return out;
}

std::optional<PreferenceValue> decodePreferenceValue(std::string_view bytes) {
  Decoder decoder(bytes);
  auto value = decoder.value(0);
  if (!value || !decoder.atEnd()) return std::nullopt;
  return value;
}

}  // namespace vantu::store
