#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "foundation/defaults_value.hpp"
#include "foundation/sqlite_database.hpp"

namespace foundation {

using DefaultsValues = std::map<std::string, DefaultsValue, std::less<>>;

/// The size of the largest value that a suite keeps, in bytes. A larger one is not written and counts as
/// missing.
inline constexpr std::size_t largestDefaultsValue = std::size_t{16} << 20;

/// Whether `value` reads back as it is: not too large, a date from earliestDate to latestDate, a number that
/// is one.
bool isStorable(const DefaultsValue& value);

/// A row of the table of defaults.
struct DefaultsRow {
  std::string_view key;
  std::string_view type;               ///< "data", "date", "string", "number", or "unreadable"
  std::size_t size;                    ///< in bytes, of the stored value
  std::optional<DefaultsValue> value;  ///< nothing for a row that this store does not write
};

/// Calls `visit` for every row, in the order of the keys, all in one read transaction. A row's views are good
/// during the call only. A table that is not ours has no rows; a database without one throws a SqliteError.
void visitDefaults(const SqliteDatabase& database, const std::function<void(DefaultsRow)>& visit);

/// Whether our table is there; it is not in a file that has just been made. Throws a SqliteError that is
/// damage when the database is not sound or its schema is neither ours nor empty.
bool checkDefaults(const SqliteDatabase& database);

/// Checks the database as checkDefaults() does and stores `values`, all in one transaction: all or none. They
/// must be storable.
void writeDefaults(const SqliteDatabase& database, const DefaultsValues& values);

}  // namespace foundation
