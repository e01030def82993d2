#include "vantu/value/json.h"

#include <simdjson.h>

#include <charconv>
#include <fstream>
#include <sstream>
#include <cmath>
#include <optional>
#include <vector>

#include "vantu/value/base64.h"

namespace vantu::json {

namespace {

bool isContinuation(unsigned char c) { return (c & 0xC0) == 0x80; }

// Length of the well-formed UTF-8 sequence starting at s[i], or, when the
// sequence is ill-formed, the negated number of bytes to replace by one
// U+FFFD: the lead byte plus the continuation bytes that were still valid
// (the "maximal subpart" rule), at least one.
std::ptrdiff_t utf8Sequence(std::string_view s, std::size_t i) {
  const auto lead = static_cast<unsigned char>(s[i]);
  std::size_t length = 0;
  unsigned char lo = 0x80, hi = 0xBF;  // allowed range of the second byte
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) lo = 0xA0;  // overlong
    if (lead == 0xED) hi = 0x9F;  // UTF-16 surrogates
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) lo = 0x90;  // overlong
    if (lead == 0xF4) hi = 0x8F;  // above U+10FFFF
  } else {
    return -1;  // stray continuation byte, C0/C1 (overlong) or F5..FF
  }
  std::size_t k = 1;
  for (; k < length && i + k < s.size(); ++k) {
    const auto c = static_cast<unsigned char>(s[i + k]);
    if (k == 1 ? (c < lo || c > hi) : !isContinuation(c)) break;
  }
  if (k == length) return static_cast<std::ptrdiff_t>(length);
  return -static_cast<std::ptrdiff_t>(k);
}

}  // namespace

// ===========================================================================
// Parsing
//
// The text is read with simdjson's On-Demand API and converted to Value with
// an explicit stack of open containers, so nesting costs heap, not native
// stack, and the depth limit is checked before each container is entered.
//
// Numbers are taken as raw tokens and converted here rather than by simdjson,
// because simdjson refuses integers beyond 64 bits. The rules:
//   - an integer (no fraction, no exponent) that fits int64 becomes Int;
//   - any other number becomes the nearest Double, including integers beyond
//     int64 or uint64 (123456789012345678901234567890 -> 1.2345678901234568e29);
//   - a number whose magnitude is beyond the double range (1e400, -1e400, an
//     integer of more than 309 digits) is an error: JSON has no infinity, and
//     accepting it would produce a value that `write` cannot reproduce;
//   - a number that is too small for a double (1e-400) becomes 0.0 (or -0.0).
//
// Strings go through simdjson: it validates UTF-8 for the whole input and
// rejects bad escapes, including lone UTF-16 surrogates such as "\ud800",
// which are therefore parse errors rather than silently replaced.

namespace {

namespace od = simdjson::ondemand;

// Inputs up to this size reuse a per-thread parser (and its buffers); larger
// ones get a parser of their own so that one big document does not pin its
// buffers to the thread forever.
constexpr std::size_t kReusableParserLimit = 1 << 20;

bool isJsonSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::string_view trimTrailingSpace(std::string_view s) {
  while (!s.empty() && isJsonSpace(s.back())) s.remove_suffix(1);
  return s;
}

// "line 2, column 5": 1-based; columns count characters, not bytes.
std::string describePosition(std::string_view text, std::size_t offset) {
  std::size_t line = 1, column = 1;
  for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
    if (text[i] == '\n') {
      ++line;
      column = 1;
    } else if (!isContinuation(static_cast<unsigned char>(text[i]))) {
      ++column;
    }
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

// What went wrong, in the reader's terms. simdjson's own texts describe its
// internals ("The document ends early." also for a stray closing bracket).
std::string describeError(simdjson::error_code code) {
  switch (code) {
    case simdjson::TAPE_ERROR:
      return "misplaced or missing comma, colon, key or value";
    case simdjson::INCOMPLETE_ARRAY_OR_OBJECT:
      return "unbalanced brackets";
    case simdjson::TRAILING_CONTENT:
      return "unexpected text after the JSON value";
    case simdjson::EMPTY:
      return "no JSON value (the text is empty or blank)";
    case simdjson::UNCLOSED_STRING:
      return "a string is never closed";
    case simdjson::STRING_ERROR:
      return "bad escape in a string (or an unpaired UTF-16 surrogate)";
    case simdjson::UNESCAPED_CHARS:
      return "control character in a string (write it as an escape such as \\n)";
    case simdjson::UTF8_ERROR:
      return "the text is not valid UTF-8";
    case simdjson::T_ATOM_ERROR:
    case simdjson::F_ATOM_ERROR:
    case simdjson::N_ATOM_ERROR:
      return "unknown literal (expected true, false or null)";
    case simdjson::NUMBER_ERROR:
      return "malformed number";
    case simdjson::INCORRECT_TYPE:
      return "expected a value (object, array, string, number, true, false or null)";
    case simdjson::DEPTH_ERROR:
      return "nesting too deep";
    default:
      return simdjson::error_message(code);
  }
}

struct Fault {
  std::string message;
  std::size_t offset;
  bool placed = false;  // the message already says where
};

// Moves `i` to the last byte of the UTF-8 sequence starting there; false
// when the sequence is ill-formed.
bool skipUtf8(std::string_view text, std::size_t& i) {
  const std::ptrdiff_t len = utf8Sequence(text, i);
  if (len < 0) return false;
  i += static_cast<std::size_t>(len) - 1;
  return true;
}

// The first fault in bracket balance, string closing or UTF-8, with where it
// is: a stray closer, a closer of the wrong kind, a bracket or string never
// closed, an invalid byte.
std::optional<Fault> findStructuralFault(std::string_view text) {
  constexpr std::string_view kStructural = "[]{},:\"";
  std::vector<std::size_t> open;  // offsets of the open brackets
  bool rootDone = false;          // a whole value stands at the top level
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (isJsonSpace(c)) continue;
    if (rootDone) return Fault{"unexpected text after the JSON value", i};
    if (static_cast<unsigned char>(c) >= 0x80) {
      if (!skipUtf8(text, i)) return Fault{"the text is not valid UTF-8", i};
    } else if (c == '"') {
      const std::size_t start = i;
      for (++i; i < text.size() && text[i] != '"'; ++i) {
        if (text[i] == '\\') {
          ++i;
        } else if (static_cast<unsigned char>(text[i]) >= 0x80 && !skipUtf8(text, i)) {
          return Fault{"the text is not valid UTF-8", i};
        }
      }
      if (i >= text.size()) return Fault{"a string is never closed", start};
    } else if (c == '[' || c == '{') {
      open.push_back(i);
    } else if (c == ']' || c == '}') {
      if (open.empty()) return Fault{std::string("'") + c + "' closes nothing", i};
      const char opener = text[open.back()];
      if ((opener == '[') != (c == ']')) {
        return Fault{std::string("'") + c + "' at " + describePosition(text, i) + " does not close the '" + opener +
                         "' at " + describePosition(text, open.back()),
                     i, true};
      }
      open.pop_back();
    } else if (c == ',' || c == ':') {
      if (open.empty()) return Fault{std::string("unexpected '") + c + "'", i};
      continue;
    } else {  // a number or literal: skip to its end
      while (i + 1 < text.size() && !isJsonSpace(text[i + 1]) && kStructural.find(text[i + 1]) == std::string_view::npos &&
             static_cast<unsigned char>(text[i + 1]) < 0x80) {
        ++i;
      }
    }
    if (open.empty()) rootDone = true;
  }
  if (!open.empty()) return Fault{std::string("'") + text[open.back()] + "' never closed", open.back()};
  return std::nullopt;
}

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  ParseResult run();

 private:
  struct Frame {
    explicit Frame(bool object) : isObject(object) {}
    bool isObject;
    bool advance = false;  // the iterator sits on a child that was already read
    od::array_iterator arrayIt, arrayEnd;
    od::object_iterator objectIt, objectEnd;
    Array array;
    Dict dict;
    std::string key;  // key of the child being read (objects only)
  };

  ParseResult parseWith(od::parser& parser);
  bool readRootScalar(od::document& doc, od::json_type type, Value& out);
  bool readScalar(od::value& v, od::json_type type, Value& out);
  bool openContainer(od::value& v, bool object);
  bool openRoot(od::document& doc, bool object);
  bool step();
  bool attach(Value child);

  bool readNumber(std::string_view token, Value& out);
  bool readLiteral(std::string_view token, od::json_type type, Value& out);

  bool fail(simdjson::error_code code, const char* where = nullptr);
  bool failAt(std::string_view message, const char* where);
  bool failAtOffset(std::string_view message, std::optional<std::size_t> offset);

  std::string_view text_;
  simdjson::padded_string padded_;
  std::vector<Frame> stack_;
  Value root_;
  std::optional<JsonError> error_;
  od::document* document_ = nullptr;  // for the position of faults simdjson does not place
};

bool Parser::failAt(std::string_view message, const char* where) {
  const char* base = padded_.data();
  std::optional<std::size_t> offset;
  if (where != nullptr && where >= base && where <= base + text_.size()) offset = where - base;
  return failAtOffset(message, offset);
}

bool Parser::failAtOffset(std::string_view message, std::optional<std::size_t> offset) {
  std::string m = "invalid JSON: ";
  m += message;
  if (offset) m += " at " + describePosition(text_, *offset);
  error_ = JsonError{std::move(m)};
  return false;
}

bool Parser::fail(simdjson::error_code code, const char* where) {
  if (where == nullptr && document_ != nullptr) {
    auto location = document_->current_location();
    if (!location.error()) where = location.value_unsafe();
  }
  // Faults simdjson finds while indexing the whole text (UTF-8, strings,
  // bracket balance) come without a position: the scan's finding stands in.
  // A misplaced bracket reads as a generic structure error: a scan finding
  // no later than where simdjson stopped is the clearer report.
  const bool indexingFault = code == simdjson::UTF8_ERROR || code == simdjson::UNCLOSED_STRING ||
                             code == simdjson::INCOMPLETE_ARRAY_OR_OBJECT;
  if (indexingFault || code == simdjson::TAPE_ERROR) {
    const char* base = padded_.data();
    const bool placed = where != nullptr && where >= base && where <= base + text_.size();
    auto fault = findStructuralFault(text_);
    if (fault && (indexingFault || !placed || fault->offset <= static_cast<std::size_t>(where - base))) {
      return failAtOffset(fault->message, fault->placed ? std::nullopt : std::optional<std::size_t>(fault->offset));
    }
  }
  return failAt(describeError(code), where);
}

// Validates the JSON number grammar -?(0|[1-9][0-9]*)(.[0-9]+)?([eE][+-]?[0-9]+)?
// and converts. See the rules at the top of this file.
bool Parser::readNumber(std::string_view token, Value& out) {
  const char* where = token.data();
  const std::size_t n = token.size();
  std::size_t i = 0;
  const bool negative = i < n && token[i] == '-';
  if (negative) ++i;

  const std::size_t intStart = i;
  if (i < n && token[i] == '0') {
    ++i;
  } else if (i < n && token[i] >= '1' && token[i] <= '9') {
    while (i < n && isDigit(token[i])) ++i;
  } else {
    return failAt("malformed number", where);
  }
  const std::size_t intEnd = i;

  std::size_t fracStart = i, fracEnd = i;
  if (i < n && token[i] == '.') {
    fracStart = ++i;
    while (i < n && isDigit(token[i])) ++i;
    fracEnd = i;
    if (fracEnd == fracStart) return failAt("malformed number", where);
  }

  // Decimal exponent, saturated: only its sign and rough size matter below.
  long long exponent = 0;
  const bool hasExponent = i < n && (token[i] == 'e' || token[i] == 'E');
  if (hasExponent) {
    ++i;
    bool expNegative = false;
    if (i < n && (token[i] == '+' || token[i] == '-')) expNegative = token[i++] == '-';
    const std::size_t expStart = i;
    while (i < n && isDigit(token[i])) {
      if (exponent < 1'000'000'000) exponent = exponent * 10 + (token[i] - '0');
      ++i;
    }
    if (i == expStart) return failAt("malformed number", where);
    if (expNegative) exponent = -exponent;
  }
  if (i != n) return failAt("malformed number", where);

  const char* first = token.data();
  const char* last = token.data() + n;
  if (fracStart == fracEnd && !hasExponent) {
    std::int64_t value = 0;
    auto r = std::from_chars(first, last, value);
    if (r.ec == std::errc() && r.ptr == last) {
      out = Value(value);
      return true;
    }
    // Beyond int64: fall through to the double conversion.
  }

  double d = 0;
  auto r = std::from_chars(first, last, d);
  if (r.ec == std::errc() && r.ptr == last) {
    out = Value(d);
    return true;
  }
  if (r.ec != std::errc::result_out_of_range) return failAt("malformed number", where);

  // Out of range: decide between overflow and underflow from the position of
  // the first significant digit. A value of at least 1 cannot underflow and a
  // value below 1 cannot overflow.
  long long magnitude = 0;
  const bool integerPartIsZero = intEnd - intStart == 1 && token[intStart] == '0';
  if (!integerPartIsZero) {
    magnitude = static_cast<long long>(intEnd - intStart) - 1 + exponent;
  } else {
    std::size_t k = fracStart;
    while (k < fracEnd && token[k] == '0') ++k;
    magnitude = -static_cast<long long>(k - fracStart) - 1 + exponent;
  }
  if (magnitude >= 0) return failAt("number out of range", where);
  out = Value(negative ? -0.0 : 0.0);
  return true;
}

bool Parser::readLiteral(std::string_view token, od::json_type type, Value& out) {
  if (type == od::json_type::null && token == "null") {
    out = Value();
    return true;
  }
  if (type == od::json_type::boolean && (token == "true" || token == "false")) {
    out = Value(token == "true");
    return true;
  }
  return failAt(describeError(simdjson::N_ATOM_ERROR), token.data());
}

bool Parser::readScalar(od::value& v, od::json_type type, Value& out) {
  switch (type) {
    case od::json_type::string: {
      std::string_view s;
      if (auto err = v.get_string().get(s)) return fail(err, v.raw_json_token().data());
      out = Value(std::string(s));
      return true;
    }
    case od::json_type::number:
      return readNumber(trimTrailingSpace(v.raw_json_token()), out);
    default:
      return readLiteral(trimTrailingSpace(v.raw_json_token()), type, out);
  }
}

bool Parser::readRootScalar(od::document& doc, od::json_type type, Value& out) {
  std::string_view token;
  if (auto err = doc.raw_json_token().get(token)) return fail(err);
  // The raw token runs up to the next token or to the end of the input; if
  // it stops short of the end, something follows the value.
  const char* end = padded_.data() + text_.size();
  if (token.data() + token.size() != end) {
    return failAt(describeError(simdjson::TRAILING_CONTENT), token.data() + token.size());
  }
  if (type == od::json_type::string) {
    std::string_view s;
    if (auto err = doc.get_string().get(s)) return fail(err, token.data());
    out = Value(std::string(s));
    return true;
  }
  if (type == od::json_type::number) return readNumber(trimTrailingSpace(token), out);
  return readLiteral(trimTrailingSpace(token), type, out);
}

bool Parser::openRoot(od::document& doc, bool object) {
  stack_.emplace_back(object);
  Frame& f = stack_.back();
  if (object) {
    od::object obj;
    if (auto err = doc.get_object().get(obj)) return fail(err);
    if (auto err = obj.begin().get(f.objectIt)) return fail(err);
    if (auto err = obj.end().get(f.objectEnd)) return fail(err);
  } else {
    od::array arr;
    if (auto err = doc.get_array().get(arr)) return fail(err);
    if (auto err = arr.begin().get(f.arrayIt)) return fail(err);
    if (auto err = arr.end().get(f.arrayEnd)) return fail(err);
  }
  return true;
}

bool Parser::openContainer(od::value& v, bool object) {
  const char* where = v.raw_json_token().data();
  if (stack_.size() >= kMaxDepth) {
    return failAt("nesting deeper than " + std::to_string(kMaxDepth) + " levels", where);
  }
  stack_.emplace_back(object);
  Frame& f = stack_.back();
  if (object) {
    od::object obj;
    if (auto err = v.get_object().get(obj)) return fail(err, where);
    if (auto err = obj.begin().get(f.objectIt)) return fail(err, where);
    if (auto err = obj.end().get(f.objectEnd)) return fail(err, where);
  } else {
    od::array arr;
    if (auto err = v.get_array().get(arr)) return fail(err, where);
    if (auto err = arr.begin().get(f.arrayIt)) return fail(err, where);
    if (auto err = arr.end().get(f.arrayEnd)) return fail(err, where);
  }
  return true;
}

// Stores a finished child in the innermost open container, or as the root.
bool Parser::attach(Value child) {
  if (stack_.empty()) {
    root_ = std::move(child);
    return true;
  }
  Frame& f = stack_.back();
  if (f.isObject) {
    // Duplicate keys: the last value wins, at the first key's position.
    f.dict.set(Key(std::move(f.key)), std::move(child));
    f.key.clear();
  } else {
    f.array.push_back(std::move(child));
  }
  return true;
}

// Reads the next child of the innermost container, or closes it when done.
bool Parser::step() {
  Frame& f = stack_.back();
  od::value child;
  if (f.isObject) {
    if (f.advance) ++f.objectIt;
    if (!(f.objectIt != f.objectEnd)) {
      Value done(std::move(f.dict));
      stack_.pop_back();
      return attach(std::move(done));
    }
    f.advance = true;
    od::field field;
    if (auto err = (*f.objectIt).get(field)) return fail(err);
    std::string_view key;
    if (auto err = field.unescaped_key().get(key)) return fail(err);
    f.key.assign(key);
    child = field.value();
  } else {
    if (f.advance) ++f.arrayIt;
    if (!(f.arrayIt != f.arrayEnd)) {
      Value done(std::move(f.array));
      stack_.pop_back();
      return attach(std::move(done));
    }
    f.advance = true;
    if (auto err = (*f.arrayIt).get(child)) return fail(err);
  }

  od::json_type type;
  if (auto err = child.type().get(type)) return fail(err, child.raw_json_token().data());
  if (type == od::json_type::array || type == od::json_type::object) {
    return openContainer(child, type == od::json_type::object);
  }
  Value scalar;
  if (!readScalar(child, type, scalar)) return false;
  return attach(std::move(scalar));
}

ParseResult Parser::parseWith(od::parser& parser) {
  od::document doc;
  if (auto err = parser.iterate(padded_).get(doc)) {
    fail(err);
    return std::move(*error_);
  }
  document_ = &doc;
  od::json_type type;
  if (auto err = doc.type().get(type)) {
    fail(err);
    return std::move(*error_);
  }

  if (type == od::json_type::array || type == od::json_type::object) {
    if (!openRoot(doc, type == od::json_type::object)) return std::move(*error_);
    while (!stack_.empty()) {
      if (!step()) return std::move(*error_);
    }
    // Anything after the closing bracket is an error.
    auto location = doc.current_location();
    if (location.error() != simdjson::OUT_OF_BOUNDS) {
      const char* where = location.error() ? nullptr : location.value_unsafe();
      failAt(describeError(simdjson::TRAILING_CONTENT), where);
      return std::move(*error_);
    }
  } else if (!readRootScalar(doc, type, root_)) {
    return std::move(*error_);
  }
  return std::move(root_);
}

ParseResult Parser::run() {
  padded_ = simdjson::padded_string(text_);
  if (text_.size() <= kReusableParserLimit) {
    thread_local od::parser parser;
    return parseWith(parser);
  }
  od::parser parser;
  return parseWith(parser);
}

}  // namespace

std::optional<ParseResult> parseFile(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::stringstream text;
  text << in.rdbuf();
  if (in.bad()) return std::nullopt;
  return parse(text.str());
}

ParseResult parse(std::string_view text) {
  try {
    return Parser(text).run();
  } catch (const std::bad_alloc&) {
    return JsonError{"invalid JSON: out of memory"};
  }
}

// ===========================================================================
// Writing
//
// Doubles are written in the shortest form that reads back to the same bits
// (std::to_chars). A double with an integral value therefore has no fraction
// ("1" for 1.0, "1e+100" for 1e100) and is read back as Int when it fits int64.
// NaN and infinities have no JSON form and are written as null.

namespace {

constexpr char kHex[] = "0123456789abcdef";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

void writeEscapedControl(std::string& out, unsigned char c) {
  switch (c) {
    case '\b':
      out += "\\b";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default: {
      const char esc[6] = {'\\', 'u', '0', '0', kHex[c >> 4], kHex[c & 0xF]};
      out.append(esc, sizeof esc);
    }
  }
}

void writeNumber(std::string& out, double d) {
  if (!std::isfinite(d)) {
    out += "null";
    return;
  }
  char buf[32];
  auto r = std::to_chars(buf, buf + sizeof buf, d);
  out.append(buf, r.ptr);
}

void writeNumber(std::string& out, std::int64_t i) {
  char buf[24];
  auto r = std::to_chars(buf, buf + sizeof buf, i);
  out.append(buf, r.ptr);
}

void newline(std::string& out, int depth) {
  out += '\n';
  out.append(static_cast<std::size_t>(depth) * 2, ' ');
}

void writeValue(std::string& out, const Value& value, bool pretty, int depth) {
  switch (value.kind()) {
    case Value::Kind::Null:
      out += "null";
      return;
    case Value::Kind::Bool:
      out += *value.asBool() ? "true" : "false";
      return;
    case Value::Kind::Int:
      writeNumber(out, *value.asInt());
      return;
    case Value::Kind::Double:
      writeNumber(out, *value.asNumber());
      return;
    case Value::Kind::String:
      writeString(out, *value.asString());
      return;
    case Value::Kind::Bytes:
      out += '"';
      base64::encodeAppend(out, value.asBytes()->data);
      out += '"';
      return;
    case Value::Kind::Array: {
      const Array& items = *value.asArray();
      if (items.empty()) {
        out += "[]";
        return;
      }
      out += '[';
      bool first = true;
      for (const Value& item : items) {
        if (!first) out += ',';
        first = false;
        if (pretty) newline(out, depth + 1);
        writeValue(out, item, pretty, depth + 1);
      }
      if (pretty) newline(out, depth);
      out += ']';
      return;
    }
    case Value::Kind::Dict: {
      const Dict& dict = *value.asDict();
      if (dict.empty()) {
        out += "{}";
        return;
      }
      out += '{';
      bool first = true;
      for (const auto& [key, item] : dict) {
        if (!first) out += ',';
        first = false;
        if (pretty) newline(out, depth + 1);
        if (const std::string* s = key.string()) {
          writeString(out, *s);
        } else {
          writeString(out, key.text());
        }
        out += pretty ? " : " : ":";
        writeValue(out, item, pretty, depth + 1);
      }
      if (pretty) newline(out, depth);
      out += '}';
      return;
    }
  }
}

}  // namespace

void writeString(std::string& out, std::string_view s) {
  out.reserve(out.size() + s.size() + 2);
  out += '"';
  std::size_t i = 0;
  std::size_t runStart = 0;  // start of bytes that are copied verbatim
  while (i < s.size()) {
    const auto c = static_cast<unsigned char>(s[i]);
    if (c >= 0x20 && c < 0x80 && c != '"' && c != '\\') {
      ++i;
      continue;
    }
    if (c >= 0x80) {
      const std::ptrdiff_t len = utf8Sequence(s, i);
      if (len > 0) {
        // U+2028 and U+2029 (E2 80 A8/A9) end a line in JavaScript source.
        if (len == 3 && c == 0xE2 && static_cast<unsigned char>(s[i + 1]) == 0x80 &&
            (static_cast<unsigned char>(s[i + 2]) & 0xFE) == 0xA8) {
          out.append(s.data() + runStart, i - runStart);
          out += s[i + 2] == '\xA8' ? "\\u2028" : "\\u2029";
          i += 3;
          runStart = i;
        } else {
          i += static_cast<std::size_t>(len);
        }
        continue;
      }
      out.append(s.data() + runStart, i - runStart);
      out += kReplacement;
      i += static_cast<std::size_t>(-len);
      runStart = i;
      continue;
    }
    out.append(s.data() + runStart, i - runStart);
    if (c == '"') {
      out += "\\\"";
    } else if (c == '\\') {
      out += "\\\\";
    } else {
      writeEscapedControl(out, c);
    }
    ++i;
    runStart = i;
  }
  out.append(s.data() + runStart, i - runStart);
  out += '"';
}

void writeTo(std::string& out, const Value& value, const WriteOptions& options) {
  writeValue(out, value, options.pretty, 0);
}

std::string write(const Value& value, const WriteOptions& options) {
  std::string out;
  writeTo(out, value, options);
  return out;
}

}  // namespace vantu::json
