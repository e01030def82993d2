#include "vantu/value/value.h"

#include <charconv>
#include <functional>
#include <limits>

namespace vantu {

namespace {

// Dicts up to this size are searched linearly; larger ones keep a hash index.
constexpr std::size_t kLinearLimit = 8;

// splitmix64 finalizer: spreads every input bit over the whole word, so that
// consecutive integers or hashes that differ in high bits only still land in
// different slots of a power-of-two table.
std::uint64_t mix(std::uint64_t x) {
  x ^= x >> 30;
  x *= 0xbf58476d1ce4e5b9ULL;
  x ^= x >> 27;
  x *= 0x94d049bb133111ebULL;
  x ^= x >> 31;
  return x;
}

// Per-kind seeds, so that "1", 1 and true never share a hash by construction.
constexpr std::uint64_t kStringSeed = 0x9e3779b97f4a7c15ULL;
constexpr std::uint64_t kIntSeed = 0xc2b2ae3d27d4eb4fULL;
constexpr std::uint64_t kBoolSeed = 0x165667b19e3779f9ULL;

}  // namespace

// ---------------------------------------------------------------------------
// Key

std::optional<std::int64_t> Key::integer() const {
  if (const auto* i = std::get_if<std::int64_t>(&v_)) return *i;
  return std::nullopt;
}

std::optional<bool> Key::boolean() const {
  if (const auto* b = std::get_if<bool>(&v_)) return *b;
  return std::nullopt;
}

Value Key::toValue() const {
  switch (v_.index()) {
    case 0:
      return Value(std::get<std::string>(v_));
    case 1:
      return Value(std::get<std::int64_t>(v_));
    default:
      return Value(std::get<bool>(v_));
  }
}

std::string Key::text() const {
  switch (v_.index()) {
    case 0:
      return std::get<std::string>(v_);
    case 1: {
      char buf[24];
      auto r = std::to_chars(buf, buf + sizeof buf, std::get<std::int64_t>(v_));
      return std::string(buf, r.ptr);
    }
    default:
      return std::get<bool>(v_) ? "true" : "false";
  }
}

std::size_t Key::hash() const {
  switch (v_.index()) {
    case 0:
      return static_cast<std::size_t>(mix(std::hash<std::string>{}(std::get<std::string>(v_)) ^ kStringSeed));
    case 1:
      return static_cast<std::size_t>(mix(static_cast<std::uint64_t>(std::get<std::int64_t>(v_)) ^ kIntSeed));
    default:
      return static_cast<std::size_t>(mix(kBoolSeed + (std::get<bool>(v_) ? 1 : 0)));
  }
}

// ---------------------------------------------------------------------------
// DictIndex: open addressing with linear probing over positions in
// Dict::entries_. Each slot caches the key's hash so that probing compares
// keys only on a full hash match and growing never rehashes keys.
//
// Invariant kept by every mutating Dict member: index_ is present exactly
// when size() > kLinearLimit, and then maps every key to its position. Const
// members therefore never build or touch the index, so concurrent reads of
// one Dict are safe.

struct DictIndex {
  static constexpr std::size_t kEmpty = std::numeric_limits<std::size_t>::max();
  struct Slot {
    std::size_t hash = 0;
    std::size_t pos = kEmpty;
  };

  std::vector<Slot> slots;  // size is zero or a power of two
  std::size_t used = 0;

  void reserve(std::size_t count) {
    std::size_t want = 16;
    while (want < count * 2) want *= 2;  // load factor stays at or below 1/2
    if (want > slots.size()) rehash(want);
  }

  void insert(std::size_t hash, std::size_t pos) {
    if ((used + 1) * 2 > slots.size()) rehash(slots.empty() ? 16 : slots.size() * 2);
    place(hash, pos);
    ++used;
  }

  std::optional<std::size_t> find(const Key& key, std::size_t hash,
                                  const std::vector<Dict::Entry>& entries) const {
    if (slots.empty()) return std::nullopt;
    const std::size_t mask = slots.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
      const Slot& s = slots[i];
      if (s.pos == kEmpty) return std::nullopt;
      if (s.hash == hash && entries[s.pos].first == key) return s.pos;
    }
  }

 private:
  void place(std::size_t hash, std::size_t pos) {
    const std::size_t mask = slots.size() - 1;
    std::size_t i = hash & mask;
    while (slots[i].pos != kEmpty) i = (i + 1) & mask;
    slots[i] = Slot{hash, pos};
  }

  void rehash(std::size_t newSize) {
    std::vector<Slot> old = std::move(slots);
    slots.assign(newSize, Slot{});
    for (const Slot& s : old) {
      if (s.pos != kEmpty) place(s.hash, s.pos);
    }
  }
};

// ---------------------------------------------------------------------------
// Dict

Dict::Dict() = default;

Dict::Dict(std::initializer_list<Entry> entries) {
  entries_.reserve(entries.size());
  for (const Entry& e : entries) set(e.first, e.second);
}

Dict::Dict(const Dict& other) : entries_(other.entries_) {
  // Positions are identical in the copy, so the index can be copied as is.
  if (other.index_) index_ = std::make_unique<DictIndex>(*other.index_);
}

Dict::Dict(Dict&&) noexcept = default;

Dict& Dict::operator=(const Dict& other) {
  if (this != &other) {
    Dict copy(other);
    *this = std::move(copy);
  }
  return *this;
}

Dict& Dict::operator=(Dict&&) noexcept = default;

Dict::~Dict() = default;

std::optional<std::size_t> Dict::indexOf(const Key& key) const {
  if (index_) return index_->find(key, key.hash(), entries_);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    if (entries_[i].first == key) return i;
  }
  return std::nullopt;
}

void Dict::rebuildIndex() const {
  if (entries_.size() <= kLinearLimit) {
    index_.reset();
    return;
  }
  auto index = std::make_unique<DictIndex>();
  index->reserve(entries_.size());
  for (std::size_t i = 0; i < entries_.size(); ++i) index->insert(entries_[i].first.hash(), i);
  index_ = std::move(index);
}

const Value* Dict::find(const Key& key) const {
  auto i = indexOf(key);
  return i ? &entries_[*i].second : nullptr;
}

Value* Dict::find(const Key& key) {
  auto i = indexOf(key);
  return i ? &entries_[*i].second : nullptr;
}

Value& Dict::set(Key key, Value value) {
  if (index_) {
    const std::size_t h = key.hash();
    if (auto i = index_->find(key, h, entries_)) {
      entries_[*i].second = std::move(value);
      return entries_[*i].second;
    }
    entries_.emplace_back(std::move(key), std::move(value));
    index_->insert(h, entries_.size() - 1);
    return entries_.back().second;
  }
  if (auto i = indexOf(key)) {
    entries_[*i].second = std::move(value);
    return entries_[*i].second;
  }
  entries_.emplace_back(std::move(key), std::move(value));
  if (entries_.size() > kLinearLimit) rebuildIndex();
  return entries_.back().second;
}

bool Dict::erase(const Key& key) {
  auto i = indexOf(key);
  if (!i) return false;
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(*i));
  // Every later entry moved down by one; erasing is linear anyway, so the
  // index is simply rebuilt (or dropped once the dict is small again).
  rebuildIndex();
  return true;
}

void Dict::clear() {
  entries_.clear();
  index_.reset();
}

std::optional<std::string> Dict::getString(const Key& key) const {
  const Value* v = find(key);
  if (v == nullptr || !v->isString()) return std::nullopt;
  return *v->asString();
}

std::optional<std::int64_t> Dict::getInt(const Key& key) const {
  const Value* v = find(key);
  return v ? v->asInt() : std::nullopt;
}

std::optional<double> Dict::getNumber(const Key& key) const {
  const Value* v = find(key);
  return v ? v->asNumber() : std::nullopt;
}

std::optional<bool> Dict::getBool(const Key& key) const {
  const Value* v = find(key);
  return v ? v->asBool() : std::nullopt;
}

std::optional<Dict> Dict::getDict(const Key& key) const {
  const Value* v = find(key);
  if (v == nullptr || !v->isDict()) return std::nullopt;
  return *v->asDict();
}

std::optional<Array> Dict::getArray(const Key& key) const {
  const Value* v = find(key);
  if (v == nullptr || !v->isArray()) return std::nullopt;
  return *v->asArray();
}

std::optional<std::vector<std::string>> Dict::getStringArray(const Key& key) const {
  const Value* v = find(key);
  if (v == nullptr || !v->isArray()) return std::nullopt;
  const Array& items = *v->asArray();
  std::vector<std::string> out;
  out.reserve(items.size());
  for (const Value& item : items) {
    const std::string* s = item.asString();
    if (s == nullptr) return std::nullopt;
    out.push_back(*s);
  }
  return out;
}

bool Dict::hasOnlyStringKeys() const {
  for (const Entry& e : entries_) {
    if (!e.first.isString()) return false;
  }
  return true;
}

bool Dict::operator==(const Dict& other) const { return entries_ == other.entries_; }

// ---------------------------------------------------------------------------
// Value

std::optional<bool> Value::asBool() const {
  if (const bool* b = std::get_if<bool>(&v_)) return *b;
  return std::nullopt;
}

std::optional<std::int64_t> Value::asInt() const {
  if (const auto* i = std::get_if<std::int64_t>(&v_)) return *i;
  return std::nullopt;
}

std::optional<double> Value::asNumber() const {
  if (const auto* i = std::get_if<std::int64_t>(&v_)) return static_cast<double>(*i);
  if (const double* d = std::get_if<double>(&v_)) return *d;
  return std::nullopt;
}

std::optional<Key> Value::toKey() const {
  switch (kind()) {
    case Kind::String:
      return Key(*asString());
    case Kind::Int:
      return Key(std::get<std::int64_t>(v_));
    case Kind::Bool:
      return Key(std::get<bool>(v_));
    default:
      return std::nullopt;
  }
}

bool Value::operator==(const Value& other) const { return v_ == other.v_; }

std::string_view Value::kindName(Kind k) {
  switch (k) {
    case Kind::Null:
      return "null";
    case Kind::Bool:
      return "bool";
    case Kind::Int:
      return "int";
    case Kind::Double:
      return "double";
    case Kind::String:
      return "string";
    case Kind::Bytes:
      return "bytes";
    case Kind::Array:
      return "array";
    case Kind::Dict:
      return "dict";
  }
  return "unknown";
}

}  // namespace vantu
