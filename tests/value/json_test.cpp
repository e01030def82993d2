#include "vantu/value/json.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace vantu::json {
namespace {

Value parsed(std::string_view text) {
  ParseResult r = parse(text);
  EXPECT_TRUE(r.ok()) << "text: " << text << "\nerror: " << (r.ok() ? "" : r.error().message);
  return r.ok() ? r.value() : Value("<parse failed>");
}

std::string parseError(std::string_view text) {
  ParseResult r = parse(text);
  EXPECT_FALSE(r.ok()) << "accepted: " << text;
  return r.ok() ? "" : r.error().message;
}

std::string nested(std::size_t depth, bool objects) {
  std::string open, close;
  for (std::size_t i = 0; i < depth; ++i) open += objects ? "{\"k\":" : "[", close += objects ? "}" : "]";
  return open + "0" + close;
}

TEST(JsonParseTest, EveryKindNumberAndEscape) {
  constexpr auto kMin = std::numeric_limits<std::int64_t>::min();
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  const std::pair<const char*, Value> cases[] = {
      {"null", Value()}, {" true ", Value(true)}, {"false", Value(false)}, {"42", Value(42)}, {"\"hi\"", Value("hi")},
      {"[]", Value(Array{})}, {"{}", Value(Dict{})},
      {"[null,true,1,2.5,\"s\",[],{}]", Value(Array{nullptr, true, 1, 2.5, "s", Array{}, Dict{}})},
      {"\n{\"b\" : [1, {\"c\": null}], \"a\":\"x\"}\t", Value(Dict{{"b", Array{1, Dict{{"c", nullptr}}}}, {"a", "x"}})},
      // Integers that fit int64 stay integers; everything else becomes a double.
      {"0", Value(0)}, {"-0", Value(0)}, {"9223372036854775807", Value(kMax)}, {"-9223372036854775808", Value(kMin)},
      {"9223372036854775808", Value(0x1p63)}, {"-9223372036854775809", Value(-0x1p63)},
      {"18446744073709551615", Value(0x1p64)}, {"18446744073709551616", Value(0x1p64)},
      {"123456789012345678901234567890", Value(1.2345678901234568e29)},
      {"-123456789012345678901234567890", Value(-1.2345678901234568e29)},
      {"0.5", Value(0.5)}, {"-12.25", Value(-12.25)}, {"1e2", Value(100.0)}, {"1E+2", Value(100.0)},
      {"-2.5e-3", Value(-0.0025)}, {"1.0", Value(1.0)}, {"0.1", Value(0.1)}, {"5e-324", Value(5e-324)},
      {"1.7976931348623157e308", Value(1.7976931348623157e308)}, {"1e-400", Value(0.0)},
      {R"("\"\\\/\b\f\n\r\t")", Value("\"\\/\b\f\n\r\t")}, {R"("\u0041\u00e9\u20AC")", Value("A\xC3\xA9\xE2\x82\xAC")},
      {R"("\ud83d\ude00")", Value("\xF0\x9F\x98\x80")}, {R"("a\u0000b")", Value(std::string("a\0b", 3))},
      {"\"\xE2\x80\xA8 raw\"", Value("\xE2\x80\xA8 raw")},
      {"\"\xC3\xA9\xF0\x9F\x98\x80\"", Value("\xC3\xA9\xF0\x9F\x98\x80")},
      {R"({"\u0061":1})", Value(Dict{{"a", 1}})},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(parsed(text), expected) << text;
    // Inside a container the conversion takes a different path.
    EXPECT_EQ(parsed(std::string("[") + text + "]"), Value(Array{expected})) << text;
  }
  const Value negativeZero = parsed("-0.0");
  ASSERT_TRUE(negativeZero.isDouble());
  EXPECT_TRUE(std::signbit(*negativeZero.asNumber()));
  EXPECT_TRUE(std::signbit(*parsed("[-1e-400]").asArray()->at(0).asNumber()));
  // A long number of ordinary size: more digits than simdjson accepts at the root.
  EXPECT_EQ(parsed("0." + std::string(1500, '0') + "1e1500"), Value(0.1));
}

// Every refusal starts "invalid JSON: " and, where given, names its reason.
TEST(JsonParseTest, RefusesMalformedTextWithAReason) {
  const std::string hugeInteger(400, '9');
  const std::pair<std::string, const char*> cases[] = {
      {"1e400", "number out of range"}, {"-1e400", "number out of range"}, {"[1e400]", "number out of range"},
      {hugeInteger, "number out of range"}, {"[-" + hugeInteger + "]", "number out of range"},
      {"1.8e308", "number out of range"}, {"\"abc", "never closed"},
      {nested(kMaxDepth + 1, false), "nesting"}, {nested(kMaxDepth + 1, true), "nesting"},
      {std::string(100000, '['), ""}, {nested(100000, false), ""},
  };
  for (const auto& [text, reason] : cases) {
    const std::string message = parseError(text);
    SCOPED_TRACE(text.substr(0, 40) + " -> " + message);
    EXPECT_EQ(message.rfind("invalid JSON: ", 0), 0u);
    EXPECT_NE(message.find(reason), std::string::npos);
  }
  const char* malformed[] = {
      "", "   ", "[1,]", "[1 2]", "{\"a\":1,}", "{\"a\" 1}", "{1:2}", "[1,2", "[", "]", "1 2", "\"a\" x", "true false",
      "nullx", "[nul]", "[tru]", "tRue", "[1]x", "{}}", "[]]", "[01]", "[1.]", "[-]", "[.5]", "[+1]", "[1e]", "[1e+]",
      "[x]", "[\"\\x\"]", "{\"a\":}", "[,1]", "[1,,2]", "\"a\x01\"", "NaN", "Infinity", "'a'", "[\"a\"\"b\"]",
      "{\"a\":1}{", "[1] 2", "-", "0x10", "[1}", "{\"a\":1]", "[{]}", "[\"a\":1]", "{\"a\"}", "{,}",
      // Lone or mismatched UTF-16 surrogates in escapes, and invalid UTF-8.
      R"("\ud800")", R"("\udc00")", R"("\ud800\u0041")", R"("\ud800x")", R"("\ude00\ud83d")", R"(["\ud800"])",
      R"({"\udfff":1})", "\"\xFF\"", "\"\xC3\"", "\"\xC0\xAF\"", "\"\xED\xA0\x80\"", "\"\xF4\x90\x80\x80\"",
      "[\"ok\"]\x80", "{\"\xE2\x82\":1}", "\x81"};
  for (const char* text : malformed) {
    EXPECT_EQ(parseError(text).rfind("invalid JSON: ", 0), 0u) << text;
  }
}

TEST(JsonParseTest, DepthLimitAndDuplicateKeys) {
  for (bool objects : {false, true}) {
    ParseResult ok = parse(nested(kMaxDepth, objects));
    ASSERT_TRUE(ok.ok()) << ok.error().message;
    EXPECT_EQ(write(ok.value()), nested(kMaxDepth, objects));  // every level is there
  }
  // The last value wins at the first position, also once the dict is indexed, and when very large.
  EXPECT_EQ(parsed(R"({"a":1,"b":2,"a":3})"), Value(Dict{{"a", 3}, {"b", 2}}));
  for (int count : {20, 200000}) {
    std::string text = "{";
    for (int i = 0; i < count; ++i) text += "\"k" + std::to_string(i) + "\":" + std::to_string(i) + ",";
    const Value v = parsed(text + "\"k3\":\"again\"}");
    ASSERT_TRUE(v.isDict());
    const Dict& d = *v.asDict();
    EXPECT_EQ(d.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(d.entries()[3].first, Key("k3"));
    EXPECT_EQ(d.getString("k3"), "again");
    EXPECT_EQ(d.getInt("k" + std::to_string(count - 1)), count - 1);
  }
}

TEST(JsonWriteTest, ScalarsContainersAndPrettyLayout) {
  const Value v = Dict{{"a", 1}, {"b", Array{true, Array{}, Dict{}}}, {"c", Dict{{"d", "x"}}}};
  const std::pair<Value, const char*> cases[] = {
      {Value(), "null"}, {Value(true), "true"},
      {Value(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808"}, {Value(0.1), "0.1"},
      {Value(1.0), "1"}, {Value(-0.0), "-0"}, {Value(1e100), "1e+100"}, {Value(5e-324), "5e-324"},
      {Value(std::nan("")), "null"}, {Value(-std::numeric_limits<double>::infinity()), "null"},
      {Value(Bytes{{'f', 'o', 'o', 'b'}}), "\"Zm9vYg==\""},
      {Value(Dict{{1, true}, {false, 2}, {"s", Array{}}}), R"({"1":true,"false":2,"s":[]})"},
      {v, R"({"a":1,"b":[true,[],{}],"c":{"d":"x"}})"},
  };
  for (const auto& [value, expected] : cases) EXPECT_EQ(write(value), expected);
  std::string out = "x=";
  writeTo(out, Value(Array{1, "a"}));
  EXPECT_EQ(out, "x=[1,\"a\"]");
  EXPECT_EQ(write(v, {.pretty = true}),
            "{\n  \"a\" : 1,\n  \"b\" : [\n    true,\n    [],\n    {}\n  ],\n  \"c\" : {\n    \"d\" : \"x\"\n  }\n}");
  EXPECT_EQ(write(Value(Array{}), {.pretty = true}), "[]");
  EXPECT_EQ(write(Value("s"), {.pretty = true}), "\"s\"");
}

TEST(JsonWriteTest, StringEscapingAndRepair) {
  const std::string fffd = "\xEF\xBF\xBD";
  const std::pair<std::string, std::string> cases[] = {
      {"plain / text", "plain / text"}, {"\"\\", "\\\"\\\\"}, {"\b\f\n\r\t", "\\b\\f\\n\\r\\t"},
      {std::string("\0\x01\x1f\x7f", 4), "\\u0000\\u0001\\u001f\x7f"},
      {"\xE2\x80\xA8|\xE2\x80\xA9", "\\u2028|\\u2029"},
      {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
      {"a\xFF" "b", "a" + fffd + "b"}, {"\xC3", fffd}, {"\xC3(", fffd + "("}, {"\x80\xBF", fffd + fffd},
      {"\xC0\xAF", fffd + fffd}, {"\xE0\x80\xAF", fffd + fffd + fffd}, {"\xED\xA0\x80", fffd + fffd + fffd},
      {"\xE2\x82", fffd}, {"\xE2\x82z", fffd + "z"}, {"\xF0\x9F\x98", fffd},
      {"\xF4\x90\x80\x80", fffd + fffd + fffd + fffd}, {"\xF5\x80", fffd + fffd},
  };
  for (const auto& [input, body] : cases) {
    std::string out;
    writeString(out, input);
    EXPECT_EQ(out, "\"" + body + "\"") << input;
    EXPECT_TRUE(parse(out).ok()) << out;
  }
}

// Values without bytes, non-string keys, NaN or integral doubles come back unchanged.
Value randomValue(std::mt19937& rng, int depth) {
  const std::string alphabet[] = {"a", "Z", " ", "\"", "\\", "/", "\n", "\x01", "\x1f", "\xC3\xA9", "\xE2\x80\xA8",
                                  "\xF0\x9F\x98\x80", std::string(1, '\0')};
  auto randomString = [&] {
    std::string s;
    for (std::size_t n = rng() % 8; n > 0; --n) s += alphabet[rng() % std::size(alphabet)];
    return s;
  };
  switch (rng() % (depth > 3 ? 5 : 7)) {
    case 0: return Value();
    case 1: return Value(rng() % 2 == 0);
    case 2: return Value(static_cast<std::int64_t>((std::uint64_t{rng()} << 32) | rng()));
    case 3: {  // (n + 0.5) * 2^-k with k >= 0 is never integral.
      const double d = std::ldexp(static_cast<double>(rng()) + 0.5, -static_cast<int>(rng() % 200));
      return Value(rng() % 2 ? d : -d);
    }
    case 4: return Value(randomString());
    case 5: {
      Array a;
      for (std::size_t n = rng() % 5; n > 0; --n) a.push_back(randomValue(rng, depth + 1));
      return Value(std::move(a));
    }
    default: {
      Dict d;
      for (std::size_t n = rng() % 12; n > 0; --n) d.set(randomString(), randomValue(rng, depth + 1));
      return Value(std::move(d));
    }
  }
}

TEST(JsonRoundTripTest, GeneratedValues) {
  std::mt19937 rng(42);
  for (int i = 0; i < 300; ++i) {
    const Value v = randomValue(rng, 0);
    for (bool pretty : {false, true}) {
      const std::string text = write(v, {.pretty = pretty});
      ParseResult back = parse(text);
      ASSERT_TRUE(back.ok()) << text << "\n" << back.error().message;
      EXPECT_EQ(back.value(), v) << text;
    }
  }
}

}  // namespace
}  // namespace vantu::json
