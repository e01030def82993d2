#include "vantu/value/value.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

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
  EXPECT_EQ(Key(std::int64_t{7}).hash(), Key(7).hash());
  EXPECT_EQ(Key(std::string("ab")).hash(), Key(std::string_view("ab")).hash());
  EXPECT_EQ(Key(std::int64_t{-9223372036854775807 - 1}).text(), "-9223372036854775808");
  EXPECT_EQ(Key(false).text(), "false");
  EXPECT_EQ(Key(true).integer(), std::nullopt);
  EXPECT_EQ(Key(1).boolean(), std::nullopt);
  EXPECT_EQ(Key(true).toValue(), Value(true));
  EXPECT_EQ(Value(5).toKey(), Key(5));
  EXPECT_EQ(Value(1.5).toKey(), std::nullopt);
}

// Order, replacement and erasure in general are checked against a model below.
TEST(DictTest, ADuplicateInTheListReplacesInPlaceAndStringKeysAreTracked) {
  Dict d{{"b", 1}, {"a", 2}, {3, "three"}, {"b", 9}};
  EXPECT_EQ(d, (Dict{{"b", 9}, {"a", 2}, {3, "three"}}));  // equality minds the order
  EXPECT_FALSE(d.hasOnlyStringKeys());
  d.erase(3);
  EXPECT_TRUE(d.hasOnlyStringKeys());
  d.clear();
  EXPECT_TRUE(d.empty());
  EXPECT_EQ(d.find("a"), nullptr);
}

// Random inserts, replacements and erasures across the small/indexed
// boundary, checked after every step against a plain list.
TEST(DictTest, MatchesListModelAcrossIndexThreshold) {
  std::mt19937 rng(1234);
  std::vector<Key> universe;
  for (int i = 0; i < 24; ++i) {
    universe.emplace_back(std::to_string(i));
    universe.emplace_back(i);
  }
  universe.insert(universe.end(), {Key(true), Key(false)});

  Dict dict;
  std::vector<std::pair<Key, int>> model;
  auto modelFind = [&](const Key& k) {
    return std::find_if(model.begin(), model.end(), [&](const auto& e) { return e.first == k; });
  };
  int crossings = 0;  // times the size went from above the linear limit to below it
  bool wasLarge = false;
  for (int step = 0; step < 4000; ++step) {
    const Key& k = universe[rng() % universe.size()];
    // Grow toward ~30 entries, then shrink, then grow again.
    const bool growing = (step / 500) % 2 == 0;
    if (rng() % 10 < (growing ? 7u : 1u)) {
      dict.set(k, step);
      if (auto it = modelFind(k); it != model.end()) it->second = step;
      else model.emplace_back(k, step);
    } else {
      const bool present = modelFind(k) != model.end();
      ASSERT_EQ(dict.erase(k), present);
      if (present) model.erase(modelFind(k));
    }
    ASSERT_EQ(dict.size(), model.size());
    if (wasLarge && model.size() < 8) ++crossings;
    wasLarge = model.size() > 8 ? true : model.size() < 8 ? false : wasLarge;
    for (std::size_t i = 0; i < model.size(); ++i) {
      ASSERT_EQ(dict.entries()[i].first, model[i].first);
      ASSERT_EQ(dict.entries()[i].second, Value(model[i].second));
    }
    for (const Key& probe : universe) {
      const auto it = modelFind(probe);
      const Value* v = dict.find(probe);
      ASSERT_EQ(v != nullptr, it != model.end()) << "step " << step << " key " << probe.text();
      if (v) { ASSERT_EQ(*v, Value(it->second)); }
    }
  }
  EXPECT_GE(crossings, 3);
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
  EXPECT_FALSE(Value(true).asInt().has_value());
  EXPECT_FALSE(Value(1).asBool().has_value());
  // Equal only in kind and content, order included.
  const std::pair<Value, Value> unequal[] = {
      {1, 1.0}, {true, 1}, {"1", 1}, {Value(), false}, {Bytes{{'a'}}, "a"}, {Array{1, 2}, Array{2, 1}},
      {Dict{{"a", 1}, {"b", 2}}, Dict{{"b", 2}, {"a", 1}}}, {Dict{{"a", 1}}, Dict{{"a", 1.0}}}};
  for (std::size_t i = 0; i < std::size(unequal); ++i) EXPECT_NE(unequal[i].first, unequal[i].second) << i;
  EXPECT_EQ(Value(Array{1, "x", Dict{{"k", nullptr}}}), Value(Array{1, "x", Dict{{"k", nullptr}}}));
  EXPECT_EQ(Value(std::int64_t{5}).asNumber(), 5.0);
}

}  // namespace
}  // namespace vantu
