#include "vantu/value/value.h"

#include <gtest/gtest.h>

#include "vantu/value/json.h"

namespace vantu {
namespace {

TEST(KeyTest, KindsAreDistinctKeysWithDistinctHashesAndTexts) {
  const std::vector<Key> keys = {Key("1"), Key(1), Key(true), Key("true"), Key(0), Key(false), Key(""), Key("0")};
  for (std::size_t i = 0; i < keys.size(); ++i) {
    for (std::size_t j = 0; j < keys.size(); ++j) {
      EXPECT_EQ(keys[i] == keys[j], i == j) << i << " vs " << j;
      if (i != j) { EXPECT_NE(keys[i].hash(), keys[j].hash()) << i << " vs " << j; }
    }
  }
  EXPECT_EQ(Key(std::int64_t{-9223372036854775807 - 1}).text(), "-9223372036854775808");
  EXPECT_EQ(Key(false).text(), "false");
  EXPECT_EQ(Key(true).integer(), std::nullopt);
  EXPECT_EQ(Key(1).boolean(), std::nullopt);
  EXPECT_EQ(Key(true).toValue(), Value(true));
  EXPECT_EQ(Value(5).toKey(), Key(5));
  EXPECT_EQ(Value(1.5).toKey(), std::nullopt);
}

// A dict of more than eight entries keeps a hash index; every step checks order and lookup on both sides of it.
TEST(DictTest, KeepsOrderReplacesInPlaceAndFindsEveryKeyAcrossTheIndexThreshold) {
  Dict d{{"b", 1}, {"a", 2}, {3, "three"}, {"b", 9}};
  EXPECT_EQ(d, (Dict{{"b", 9}, {"a", 2}, {3, "three"}}));  // equality minds the order
  EXPECT_FALSE(d.hasOnlyStringKeys());
  EXPECT_TRUE(d.erase(3));
  EXPECT_FALSE(d.erase(3));
  EXPECT_TRUE(d.hasOnlyStringKeys());
  auto expectEntries = [&d](const std::vector<std::string>& keys) {
    std::vector<std::string> got;
    for (const auto& [key, value] : d) got.push_back(key.text() + "=" + json::write(value));
    EXPECT_EQ(got, keys);
    EXPECT_FALSE(d.find(Key(0)) || d.find("2") || d.find(true));  // "2" is not 2
    for (const auto& [key, value] : d) EXPECT_EQ(d.find(key), &value) << key.text();
  };
  for (int i = 1; i <= 7; ++i) d.set(i, i);  // nine entries: indexed
  d.set("a", "again");
  d.set(8, 8);
  expectEntries({"b=9", "a=\"again\"", "1=1", "2=2", "3=3", "4=4", "5=5", "6=6", "7=7", "8=8"});
  d.erase("b");
  d.erase(1);  // eight: linear again
  expectEntries({"a=\"again\"", "2=2", "3=3", "4=4", "5=5", "6=6", "7=7", "8=8"});
  d.set("1", "text");
  expectEntries({"a=\"again\"", "2=2", "3=3", "4=4", "5=5", "6=6", "7=7", "8=8", "1=\"text\""});
  EXPECT_EQ(d.find(1), nullptr);
  d.clear();
  EXPECT_TRUE(d.empty());
  EXPECT_EQ(d.find("a"), nullptr);
}

TEST(DictTest, CopiesAndMovesAreIndependent) {
  for (int n : {3, 8, 9, 40}) {  // both sides of the indexing threshold
    SCOPED_TRACE(n);
    Dict original;
    for (int i = 0; i < n; ++i) original.set(i, i * 10);
    Dict copy = original;
    copy.set(0, "changed");
    copy.set("extra", 1);
    copy.erase(n - 1);
    EXPECT_TRUE(original.getInt(0) == 0 && !original.contains("extra") && original.getInt(n - 1) == (n - 1) * 10);
    for (int i = 1; i < n - 1; ++i) EXPECT_EQ(copy.getInt(i), i * 10);
    Dict assigned{{"old", 1}};
    assigned = original;
    EXPECT_FALSE(assigned.contains("old"));
    const Dict& self = assigned;
    assigned = self;
    Dict moved = std::move(assigned);
    EXPECT_EQ(moved, original);
    EXPECT_EQ(moved.getInt(n / 2), n / 2 * 10);
    assigned = Dict{{"again", 2}};  // a moved-from dict stays usable
    EXPECT_EQ(assigned.getInt("again"), 2);
  }
}

TEST(ValueTest, StrictGettersAndEqualityByKindAndContent) {
  const Dict d{{"null", nullptr}, {"bool", true}, {"int", 7}, {"double", 2.5}, {"string", "1"},
               {"bytes", Bytes{{1, 2}}}, {"array", Array{"a"}}, {"dict", Dict{{"x", 1}}}, {"mixed", Array{"a", 1}},
               {"empty", Array{}}};
  // Which getter answers, in the order string, int, number, bool, dict, array, string array.
  const std::pair<const char*, const char*> rows[] = {
      {"null", "0000000"},  {"bool", "0001000"},  {"int", "0110000"},   {"double", "0010000"},
      {"string", "1000000"}, {"bytes", "0000000"}, {"array", "0000011"}, {"dict", "0000100"},
      {"mixed", "0000010"}, {"empty", "0000011"}, {"absent", "0000000"},
  };
  for (const auto& [key, flags] : rows) {
    SCOPED_TRACE(key);
    const std::string got = {"01"[d.getString(key).has_value()], "01"[d.getInt(key).has_value()],
                             "01"[d.getNumber(key).has_value()], "01"[d.getBool(key).has_value()],
                             "01"[d.getDict(key).has_value()],   "01"[d.getArray(key).has_value()],
                             "01"[d.getStringArray(key).has_value()]};
    EXPECT_EQ(got, flags);
  }
  EXPECT_EQ(d.getNumber("int"), 7.0);
  EXPECT_EQ(d.getNumber("double"), 2.5);
  EXPECT_EQ(d.getString("string"), "1");
  EXPECT_EQ(d.getStringArray("array"), (std::vector<std::string>{"a"}));
  EXPECT_EQ(d.getDict("dict")->getInt("x"), 1);
  // Equal only in kind and content, order included.
  const std::pair<Value, Value> unequal[] = {
      {1, 1.0}, {true, 1}, {"1", 1}, {Value(), false}, {Bytes{{'a'}}, "a"}, {Array{1, 2}, Array{2, 1}},
      {Dict{{"a", 1}, {"b", 2}}, Dict{{"b", 2}, {"a", 1}}}, {Dict{{"a", 1}}, Dict{{"a", 1.0}}}};
  for (std::size_t i = 0; i < std::size(unequal); ++i) EXPECT_NE(unequal[i].first, unequal[i].second) << i;
  EXPECT_EQ(Value(Array{1, "x", Dict{{"k", nullptr}}}), Value(Array{1, "x", Dict{{"k", nullptr}}}));
}

}  // namespace
}  // namespace vantu
