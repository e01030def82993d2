#include "vantu/value/json.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

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
      {"null", Value()}, {" true ", Value(true)}, {"false", Value(false)}, {"\"hi\"", Value("hi")}, {"{}", Dict{}},
      {"\n{\"b\" : [1, {\"c\": null}, []], \"a\":0}\t", Dict{{"b", Array{1, Dict{{"c", nullptr}}, Array{}}}, {"a", 0}}},
      // Integers that fit int64 stay integers; everything else becomes a double.
      {"-0", Value(0)}, {"9223372036854775807", Value(kMax)}, {"-9223372036854775808", Value(kMin)},
      {"9223372036854775808", Value(0x1p63)}, {"-123456789012345678901234567890", Value(-1.2345678901234568e29)},
      {"-12.25", Value(-12.25)}, {"1E+2", Value(100.0)}, {"-2.5e-3", Value(-0.0025)}, {"1.0", Value(1.0)},
      {"1e-400", Value(0.0)}, {R"("\"\\\/\b\f\n\r\t")", Value("\"\\/\b\f\n\r\t")},
      {R"("\u0041\u00e9\u20AC")", Value("A\xC3\xA9\xE2\x82\xAC")}, {R"("\ud83d\ude00")", Value("\xF0\x9F\x98\x80")},
      {R"("a\u0000b")", Value(std::string("a\0b", 3))}, {R"({"\u0061":1})", Dict{{"a", 1}}},
      {"\"\xC3\xA9\xF0\x9F\x98\x80\"", Value("\xC3\xA9\xF0\x9F\x98\x80")},
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
      {"1e400", "number out of range"}, {"[-1e400]", "number out of range"}, {hugeInteger, "number out of range"},
      {"\"abc", "never closed"}, {nested(kMaxDepth + 1, true), "nesting"}, {std::string(100000, '['), ""},
      {nested(100000, false), ""},
  };
  for (const auto& [text, reason] : cases) {
    const std::string message = parseError(text);
    SCOPED_TRACE(text.substr(0, 40) + " -> " + message);
    EXPECT_EQ(message.rfind("invalid JSON: ", 0), 0u);
    EXPECT_NE(message.find(reason), std::string::npos);
  }
  // Grammar, literals, trailing content at the root and after a container, bad escapes, surrogates, UTF-8.
  const char* malformed[] = {
      "", "[1,]", "{\"a\" 1}", "{1:2}", "[1,2", "1 2", "\"a\" x", "nullx", "[tru]", "[1]x", "{}}", "[01]", "[1.]",
      "[-]", "[1e+]", "NaN", "[1}", "[\"\\x\"]", "\"a\x01\"", R"("\ud800")", R"(["\ude00\ud83d"])", R"({"\udfff":1})",
      "\x81", "\"\xC0\xAF\"", "\"\xED\xA0\x80\""};
  for (const char* text : malformed) {
    EXPECT_EQ(parseError(text).rfind("invalid JSON: ", 0), 0u) << text;
  }
}

// A refusal names the fault in the reader's terms and where it is (1-based
// line and column; columns count characters).
TEST(JsonParseTest, RefusalsSayWhatAndWhere) {
  const std::pair<std::string, std::string> cases[] = {
      {"{}}", "unexpected text after the JSON value at line 1, column 3"},
      {"{\n  \"a\": 1\n}\n}\n", "unexpected text after the JSON value at line 4, column 1"},
      {"[1]x", "unexpected text after the JSON value at line 1, column 4"},
      {"1 2", "unexpected text after the JSON value at line 1, column 3"},
      {"[1,\n [2,\n  3", "'[' never closed at line 2, column 2"},
      {"{\"a\": [1}", "'}' at line 1, column 9 does not close the '[' at line 1, column 7"},
      {"]", "']' closes nothing at line 1, column 1"},
      {"[\"\xC3\xA9\", \"abc]", "a string is never closed at line 1, column 7"},
      {"[\"\xC3\xA9\",\n \"\x81\"]", "the text is not valid UTF-8 at line 2, column 3"},
      {"[1,\n  1e400]", "number out of range at line 2, column 3"},
      {"[1,\n 01]", "malformed number at line 2, column 2"},
      {"\n\n  nullx", "unknown literal (expected true, false or null) at line 3, column 3"},
      {"[1] [2]", "unexpected text after the JSON value at line 1, column 5"},
      {"\"a\"\n  \"b\"", "unexpected text after the JSON value at line 2, column 3"},
      {"[tru]", "unknown literal (expected true, false or null) at line 1, column 2"},
      {" \n", "no JSON value (the text is empty or blank)"},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(parseError(text), "invalid JSON: " + expected) << text;
  }
  // Faults inside a container that simdjson finds while reading it.
  const std::pair<std::string, std::string> located[] = {
      {"{\"a\":1,\n  \"b\" 2}", "line 2"}, {"[1,\n\n]", "line 3"}, {"{\"k\": \"a\\x\"}", "line 1"},
  };
  for (const auto& [text, line] : located) {
    const std::string message = parseError(text);
    EXPECT_EQ(message.find("ends early"), std::string::npos) << message;
    EXPECT_NE(message.find(" at " + line + ", column "), std::string::npos) << text << " -> " << message;
  }
}

TEST(JsonParseTest, DepthLimitAndDuplicateKeys) {
  for (bool objects : {false, true}) {
    ParseResult ok = parse(nested(kMaxDepth, objects));
    ASSERT_TRUE(ok.ok()) << ok.error().message;
    EXPECT_EQ(write(ok.value()), nested(kMaxDepth, objects));  // every level is there
  }
  // The last value wins at the first position, also in a document too large for the shared parser.
  EXPECT_EQ(parsed(R"({"a":1,"b":2,"a":3})"), Value(Dict{{"a", 3}, {"b", 2}}));
  std::string text = "{";
  for (int i = 0; i < 200000; ++i) text += "\"k" + std::to_string(i) + "\":" + std::to_string(i) + ",";
  const Value v = parsed(text + "\"k3\":\"again\"}");
  ASSERT_TRUE(v.isDict());
  EXPECT_EQ(v.asDict()->size(), 200000u);
  EXPECT_EQ(v.asDict()->entries()[3], (Dict::Entry{Key("k3"), "again"}));
  EXPECT_EQ(v.asDict()->getInt("k199999"), 199999);
}

TEST(JsonWriteTest, ScalarsContainersAndPrettyLayout) {
  const Value v = Dict{{"a", 1}, {"b", Array{true, Array{}, Dict{}}}, {"c", Dict{{"d", "x"}}}};
  const std::pair<Value, const char*> cases[] = {
      {Value(), "null"}, {Value(true), "true"}, {Value(0.1), "0.1"},
      {Value(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808"}, {Value(1.0), "1"}, {Value(-0.0), "-0"},
      {Value(1e100), "1e+100"}, {Value(-std::numeric_limits<double>::infinity()), "null"},
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
}

TEST(JsonWriteTest, StringEscapingAndRepair) {
  const std::string fffd = "\xEF\xBF\xBD";
  // Repairs: a stray byte, a bad second byte (overlong, surrogate, above U+10FFFF), a bad later byte, a cut end.
  const std::pair<std::string, std::string> cases[] = {
      {"plain / text", "plain / text"}, {"\"\\", "\\\"\\\\"}, {"\b\f\n\r\t", "\\b\\f\\n\\r\\t"},
      {std::string("\0\x01\x1f\x7f", 4), "\\u0000\\u0001\\u001f\x7f"}, {"\xE2\x80\xA8|\xE2\x80\xA9", "\\u2028|\\u2029"},
      {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"}, {"a\xFF" "b", "a" + fffd + "b"},
      {"\xC3(", fffd + "("}, {"\xE0\x80\xAF", fffd + fffd + fffd}, {"\xED\xA0\x80", fffd + fffd + fffd},
      {"\xF4\x90\x80\x80", fffd + fffd + fffd + fffd}, {"\xE2\x82z", fffd + "z"}, {"\xF0\x9F\x98", fffd},
  };
  for (const auto& [input, body] : cases) {
    std::string out;
    writeString(out, input);
    EXPECT_EQ(out, "\"" + body + "\"") << input;
    EXPECT_TRUE(parse(out).ok()) << out;
  }
}

// Values without bytes, non-string keys, NaN or integral doubles come back unchanged in both layouts.
TEST(JsonRoundTripTest, WrittenValuesParseBackUnchanged) {
  const std::string odd = std::string("\"\\/\n\x01\0\xC3\xA9\xE2\x80\xA8\xF0\x9F\x98\x80", 15);
  const Value values[] = {
      Value(Dict{{odd, Array{nullptr, false, -7, std::numeric_limits<std::int64_t>::max(), 5e-324, 1.5e300}},
                 {"", Dict{{"z", Array{}}, {"a", Dict{}}, {odd + "2", odd}}}}),
      Value(Array{Array{Array{"deep"}}, 0.1}),
  };
  for (const Value& v : values) {
    for (bool pretty : {false, true}) {
      const std::string text = write(v, {.pretty = pretty});
      EXPECT_EQ(parsed(text), v) << text;
    }
  }
}

}  // namespace
}  // namespace vantu::json
