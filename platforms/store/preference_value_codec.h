#pragma once
// The binary encoding of list and map preference values, as the SQLite store
// keeps them in its `value` column. Part of the file format: a tag byte, then
// nothing (null, true, false), 8 bytes little-endian (int, double bits, date
// bits), a varint length and bytes (string, bytes), a varint count and items
// (list), or a varint count and (key, value) pairs (map).

#include <optional>
#include <string>
#include <string_view>

#include "vantu/platform/preferences.h"

namespace vantu::store {

std::string encodePreferenceValue(const PreferenceValue& value);
/// nullopt for bytes that are not a whole, well-formed encoding.
std::optional<PreferenceValue> decodePreferenceValue(std::string_view bytes);

}  // namespace vantu::store
