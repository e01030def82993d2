#pragma once
// Preferences port: a persistent, process-wide store of named suites, each a
// map from string keys to property-list values. The storage subsystem keeps
// one suite per mini-app (named by its sandbox domain) plus the access
// tracker's suite and the application-wide standard suite.
//
// Every operation either happens completely or fails with a reason; nothing
// throws. A suite handle names its suite: it stays usable after the suite's
// persistent domain was removed (it then reads empty and a write recreates
// the suite).

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "vantu/value/result.h"
#include "vantu/value/value.h"

namespace vantu {

/// A point in time as the preferences store keeps dates: seconds since
/// 1970-01-01T00:00:00Z (fractions allowed, as the reference platform's dates).
struct PreferenceDate {
  double secondsSince1970 = 0;
  bool operator==(const PreferenceDate&) const = default;
};

/// A stored value: the kinds of `Value` plus dates, nested in lists and maps.
/// Map keys are strings, kept in the order given.
class PreferenceValue {
 public:
  enum class Kind { Null, Bool, Int, Double, String, Bytes, Date, List, Map };
  using List = std::vector<PreferenceValue>;
  using Map = std::vector<std::pair<std::string, PreferenceValue>>;

  PreferenceValue() = default;                                   // null
  PreferenceValue(bool b) : v_(b) {}                             // NOLINT
  PreferenceValue(int i) : v_(static_cast<std::int64_t>(i)) {}   // NOLINT
  PreferenceValue(std::int64_t i) : v_(i) {}                     // NOLINT
  PreferenceValue(double d) : v_(d) {}                           // NOLINT
  PreferenceValue(std::string s) : v_(std::move(s)) {}           // NOLINT
  PreferenceValue(const char* s) : v_(std::string(s)) {}         // NOLINT
  PreferenceValue(Bytes b) : v_(std::move(b)) {}                 // NOLINT
  PreferenceValue(PreferenceDate d) : v_(d) {}                   // NOLINT
  PreferenceValue(List l) : v_(std::move(l)) {}                  // NOLINT
  PreferenceValue(Map m) : v_(std::move(m)) {}                   // NOLINT

  Kind kind() const { return static_cast<Kind>(v_.index()); }
  const bool* asBool() const { return std::get_if<bool>(&v_); }
  const std::int64_t* asInt() const { return std::get_if<std::int64_t>(&v_); }
  const double* asDouble() const { return std::get_if<double>(&v_); }
  const std::string* asString() const { return std::get_if<std::string>(&v_); }
  const Bytes* asBytes() const { return std::get_if<Bytes>(&v_); }
  const PreferenceDate* asDate() const { return std::get_if<PreferenceDate>(&v_); }
  const List* asList() const { return std::get_if<List>(&v_); }
  const Map* asMap() const { return std::get_if<Map>(&v_); }

  /// The stored form of a bridge value. Dict keys that are not strings
  /// (only native code makes them) are stored as their text; when two keys
  /// have the same text the later value wins at the earlier position.
  static PreferenceValue fromValue(const Value& value);
  /// The bridge form: every kind maps to itself except dates, which become
  /// ISO 8601 UTC text with milliseconds ("2024-05-01T08:30:00.250Z").
  Value toValue() const;

  bool operator==(const PreferenceValue& other) const;

 private:
  std::variant<std::monostate, bool, std::int64_t, double, std::string, Bytes, PreferenceDate, List, Map> v_;
};

/// "2024-05-01T08:30:00.250Z" (UTC, milliseconds rounded toward minus infinity).
std::string formatIso8601(PreferenceDate date);

/// Why a preferences operation did not happen (damaged or unreachable store).
struct PreferenceError {
  std::string message;
};

/// A value or the reason there is none.
template <class T>
using PreferenceResult = Result<T, PreferenceError>;

/// Success (nothing to hand back) or the reason of the failure.
using PreferenceStatus = PreferenceResult<std::monostate>;

class PreferenceSuite {
 public:
  explicit PreferenceSuite(std::string name) : name_(std::move(name)) {}
  virtual ~PreferenceSuite() = default;

  /// The suite's name ("" for the standard suite).
  const std::string& name() const { return name_; }

  /// The value under `key`; nullopt when none is stored.
  PreferenceResult<std::optional<PreferenceValue>> get(std::string_view key) {
    auto many = doGet({std::string(key)});
    if (!many.ok()) return many.error();
    return std::move(many.value().front());
  }
  /// The values under `keys`, read together, one slot per key in order.
  PreferenceResult<std::vector<std::optional<PreferenceValue>>> get(const std::vector<std::string>& keys) {
    return doGet(keys);
  }
  /// Stores one value, replacing any earlier one.
  PreferenceStatus set(std::string key, PreferenceValue value) {
    PreferenceValue::Map one;
    one.emplace_back(std::move(key), std::move(value));
    return doSet(std::move(one));
  }
  /// Stores every entry, all or none; a key given twice keeps its last value.
  PreferenceStatus set(PreferenceValue::Map entries) { return doSet(std::move(entries)); }
  /// Removes the keys, all or none; keys that are not stored are no error.
  PreferenceStatus remove(const std::vector<std::string>& keys) { return doRemove(keys); }
  PreferenceStatus remove(std::string_view key) { return doRemove({std::string(key)}); }
  /// Every entry, keys in ascending byte order.
  PreferenceResult<PreferenceValue::Map> dictionaryRepresentation() { return doDictionaryRepresentation(); }
  /// Every key, in the same order, without reading the values.
  PreferenceResult<std::vector<std::string>> keys() { return doKeys(); }
  /// Makes everything written so far durable (it survives a power loss once
  /// this returns). Writes that were not synchronized survive a crash of the
  /// process but not necessarily of the machine.
  PreferenceStatus synchronize() { return doSynchronize(); }

 protected:
  virtual PreferenceResult<std::vector<std::optional<PreferenceValue>>> doGet(const std::vector<std::string>& keys) = 0;
  virtual PreferenceStatus doSet(PreferenceValue::Map entries) = 0;
  virtual PreferenceStatus doRemove(const std::vector<std::string>& keys) = 0;
  virtual PreferenceResult<PreferenceValue::Map> doDictionaryRepresentation() = 0;
  virtual PreferenceResult<std::vector<std::string>> doKeys() = 0;
  virtual PreferenceStatus doSynchronize() = 0;

 private:
  std::string name_;
};

class Preferences {
 public:
  virtual ~Preferences() = default;

  /// The suite called `name`, or nullptr when the store refuses the name
  /// (empty, too long, containing NUL) or cannot be opened at all.
  std::shared_ptr<PreferenceSuite> suite(std::string_view name) { return doSuite(name); }
  /// The application-wide suite; nullptr when the store cannot be opened.
  std::shared_ptr<PreferenceSuite> standard() { return doStandard(); }
  /// Deletes the suite called `name` with everything in it. Removing a suite
  /// that does not exist succeeds; false when the name is refused or the
  /// store failed.
  bool removePersistentDomain(std::string_view name) { return doRemovePersistentDomain(name); }

 protected:
  virtual std::shared_ptr<PreferenceSuite> doSuite(std::string_view name) = 0;
  virtual std::shared_ptr<PreferenceSuite> doStandard() = 0;
  virtual bool doRemovePersistentDomain(std::string_view name) = 0;
};

}  // namespace vantu
