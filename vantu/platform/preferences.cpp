#include "vantu/platform/preferences.h"

#include <cmath>
#include <cstdio>
#include <ctime>
#include <unordered_map>

namespace vantu {

PreferenceValue PreferenceValue::fromValue(const Value& value) {
  switch (value.kind()) {
    case Value::Kind::Null: return PreferenceValue();
    case Value::Kind::Bool: return PreferenceValue(*value.asBool());
    case Value::Kind::Int: return PreferenceValue(*value.asInt());
    case Value::Kind::Double: return PreferenceValue(*value.asNumber());
    case Value::Kind::String: return PreferenceValue(*value.asString());
    case Value::Kind::Bytes: return PreferenceValue(*value.asBytes());
    case Value::Kind::Array: {
      List list;
      list.reserve(value.asArray()->size());
      for (const Value& item : *value.asArray()) list.push_back(fromValue(item));
      return PreferenceValue(std::move(list));
    }
    case Value::Kind::Dict: {
      Map map;
      map.reserve(value.asDict()->size());
      std::unordered_map<std::string, std::size_t> position;
      for (const auto& [key, item] : *value.asDict()) {
        std::string text = key.isString() ? *key.string() : key.text();
        auto [it, inserted] = position.emplace(text, map.size());
        if (inserted) {
          map.emplace_back(std::move(text), fromValue(item));
        } else {
          map[it->second].second = fromValue(item);
        }
      }
      return PreferenceValue(std::move(map));
    }
  }
  return PreferenceValue();
}

Value PreferenceValue::toValue() const {
  switch (kind()) {
    case Kind::Null: return Value();
    case Kind::Bool: return Value(*asBool());
    case Kind::Int: return Value(*asInt());
    case Kind::Double: return Value(*asDouble());
    case Kind::String: return Value(*asString());
    case Kind::Bytes: return Value(*asBytes());
    case Kind::Date: return Value(formatIso8601(*asDate()));
    case Kind::List: {
      Array array;
      array.reserve(asList()->size());
      for (const auto& item : *asList()) array.push_back(item.toValue());
      return Value(std::move(array));
    }
    case Kind::Map: {
      Dict dict;
      for (const auto& [key, item] : *asMap()) dict.set(key, item.toValue());
      return Value(std::move(dict));
    }
  }
  return Value();
}

bool PreferenceValue::operator==(const PreferenceValue& other) const { return v_ == other.v_; }

std::string formatIso8601(PreferenceDate date) {
  double seconds = date.secondsSince1970;
  if (!std::isfinite(seconds)) return seconds > 0 ? "+infinity" : (seconds < 0 ? "-infinity" : "nan");
  auto millis = static_cast<long long>(std::floor(seconds * 1000.0));
  long long whole = millis >= 0 ? millis / 1000 : -((-millis + 999) / 1000);
  int fraction = static_cast<int>(millis - whole * 1000);
  std::time_t t = static_cast<std::time_t>(whole);
  std::tm utc{};
  gmtime_r(&t, &utc);
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900, utc.tm_mon + 1,
                utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, fraction);
  return text;
}

}  // namespace vantu
