#pragma once
// The one value type that crosses the bridge: null, bool, int64, double,
// string, bytes, array and dict. Dicts keep insertion order and accept any
// hashable scalar as key (string, integer, bool), because a page's "data" is
// "any hashable -> any" and some bridges must notice a non-string key.
//
// Typed access never converts across kinds: a bool is not an integer, a
// string "1" is not a number. "Number" accessors accept int64 and double.

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace vantu {

class Value;
class Dict;
using Array = std::vector<Value>;

/// Raw bytes. Written to JSON as standard Base64 text.
struct Bytes {
  std::vector<std::uint8_t> data;
  bool operator==(const Bytes&) const = default;
};

/// A dict key: a hashable scalar.
class Key {
 public:
  Key(std::string s) : v_(std::move(s)) {}                // NOLINT(google-explicit-constructor)
  Key(std::string_view s) : v_(std::string(s)) {}         // NOLINT(google-explicit-constructor)
  Key(const char* s) : v_(std::string(s)) {}              // NOLINT(google-explicit-constructor)
  Key(std::int64_t i) : v_(i) {}                          // NOLINT(google-explicit-constructor)
  Key(int i) : v_(static_cast<std::int64_t>(i)) {}        // NOLINT(google-explicit-constructor)
  Key(bool b) : v_(b) {}                                  // NOLINT(google-explicit-constructor)

  bool isString() const { return std::holds_alternative<std::string>(v_); }
  bool isInt() const { return std::holds_alternative<std::int64_t>(v_); }
  bool isBool() const { return std::holds_alternative<bool>(v_); }
  const std::string* string() const { return std::get_if<std::string>(&v_); }
  std::optional<std::int64_t> integer() const;
  std::optional<bool> boolean() const;

  /// The key as a value (string, int or bool).
  Value toValue() const;
  /// The text used when the key is written to JSON: a string as itself,
  /// an integer in decimal, a bool as "true"/"false".
  std::string text() const;

  std::size_t hash() const;
  bool operator==(const Key&) const = default;

 private:
  std::variant<std::string, std::int64_t, bool> v_;
};

struct KeyHash {
  std::size_t operator()(const Key& k) const { return k.hash(); }
};

/// Insertion-ordered dictionary. Setting an existing key replaces its value
/// in place (its position is kept). Lookups stay O(1) on large dicts.
class Dict {
 public:
  using Entry = std::pair<Key, Value>;

  Dict();
  Dict(std::initializer_list<Entry> entries);
  Dict(const Dict&);
  Dict(Dict&&) noexcept;
  Dict& operator=(const Dict&);
  Dict& operator=(Dict&&) noexcept;
  ~Dict();

  // size(), empty(), begin() and end() are defined after Value (they need it complete).
  std::size_t size() const;
  bool empty() const;
  bool contains(const Key& key) const { return indexOf(key).has_value(); }

  /// The stored value, or nullptr when the key is absent.
  const Value* find(const Key& key) const;
  Value* find(const Key& key);

  /// Inserts or replaces. Returns the stored value.
  Value& set(Key key, Value value);
  /// Removes the key; returns whether it was present. Order of the rest is kept.
  bool erase(const Key& key);
  void clear();

  // Strict typed getters: nullopt when absent or of another kind.
  std::optional<std::string> getString(const Key& key) const;
  std::optional<std::int64_t> getInt(const Key& key) const;
  std::optional<double> getNumber(const Key& key) const;  // int64 or double
  std::optional<bool> getBool(const Key& key) const;
  std::optional<Dict> getDict(const Key& key) const;
  std::optional<Array> getArray(const Key& key) const;
  /// An array whose every element is a string (an empty array qualifies).
  std::optional<std::vector<std::string>> getStringArray(const Key& key) const;

  /// True when every key is a string (a dict seen as "string -> any").
  bool hasOnlyStringKeys() const;

  const std::vector<Entry>& entries() const { return entries_; }
  auto begin() const;
  auto end() const;

  bool operator==(const Dict& other) const;  // same entries in the same order

 private:
  std::optional<std::size_t> indexOf(const Key& key) const;
  void rebuildIndex() const;

  std::vector<Entry> entries_;
  // Built only for larger dicts; small ones are scanned.
  mutable std::unique_ptr<struct DictIndex> index_;
};

class Value {
 public:
  enum class Kind { Null, Bool, Int, Double, String, Bytes, Array, Dict };

  Value() = default;  // null
  Value(std::nullptr_t) {}                                  // NOLINT
  Value(bool b) : v_(b) {}                                  // NOLINT
  Value(int i) : v_(static_cast<std::int64_t>(i)) {}        // NOLINT
  Value(std::int64_t i) : v_(i) {}                          // NOLINT
  Value(double d) : v_(d) {}                                // NOLINT
  Value(std::string s) : v_(std::move(s)) {}                // NOLINT
  Value(std::string_view s) : v_(std::string(s)) {}         // NOLINT
  Value(const char* s) : v_(std::string(s)) {}              // NOLINT
  Value(Bytes b) : v_(std::move(b)) {}                      // NOLINT
  Value(Array a) : v_(std::move(a)) {}                      // NOLINT
  Value(Dict d) : v_(std::move(d)) {}                       // NOLINT
  // Guard against pointers silently becoming bools.
  template <class T>
  Value(T*) = delete;

  Kind kind() const { return static_cast<Kind>(v_.index()); }
  bool isNull() const { return kind() == Kind::Null; }
  bool isBool() const { return kind() == Kind::Bool; }
  bool isInt() const { return kind() == Kind::Int; }
  bool isDouble() const { return kind() == Kind::Double; }
  bool isNumber() const { return isInt() || isDouble(); }
  bool isString() const { return kind() == Kind::String; }
  bool isBytes() const { return kind() == Kind::Bytes; }
  bool isArray() const { return kind() == Kind::Array; }
  bool isDict() const { return kind() == Kind::Dict; }

  std::optional<bool> asBool() const;
  std::optional<std::int64_t> asInt() const;
  std::optional<double> asNumber() const;  // int64 or double
  const std::string* asString() const { return std::get_if<std::string>(&v_); }
  const Bytes* asBytes() const { return std::get_if<Bytes>(&v_); }
  const Array* asArray() const { return std::get_if<Array>(&v_); }
  Array* asArray() { return std::get_if<Array>(&v_); }
  const Dict* asDict() const { return std::get_if<Dict>(&v_); }
  Dict* asDict() { return std::get_if<Dict>(&v_); }

  /// A key made from a scalar value (string, int, bool); nullopt otherwise.
  std::optional<Key> toKey() const;

  bool operator==(const Value& other) const;

  /// Name of the kind, for messages: "null", "bool", "int", ...
  static std::string_view kindName(Kind k);

 private:
  std::variant<std::monostate, bool, std::int64_t, double, std::string, Bytes, Array, Dict> v_;
};

inline std::size_t Dict::size() const { return entries_.size(); }
inline bool Dict::empty() const { return entries_.empty(); }
inline auto Dict::begin() const { return entries_.begin(); }
inline auto Dict::end() const { return entries_.end(); }

}  // namespace vantu
