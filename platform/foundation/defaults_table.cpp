#include "foundation/defaults_table.hpp"

#include <sqlite3.h>

#include <cmath>

namespace foundation {
namespace {

using Storage = SqliteStatement::Storage;

// SQLite keeps this text in the file as it stands here; a file whose schema reads otherwise is not ours.
constexpr std::string_view schema =
    "CREATE TABLE defaults (key TEXT PRIMARY KEY, kind TEXT NOT NULL, value NOT NULL) WITHOUT ROWID";

// The schema of a file as one text, null for an empty one. SQLite's own tables, which ANALYZE makes, do not
// count.
constexpr std::string_view selectSchema =
    "SELECT group_concat(sql) FROM sqlite_schema WHERE name NOT GLOB 'sqlite_*'";

// The look at the schema is a part of the statement so that both see the same state.
constexpr std::string_view selectRows =
    "SELECT key, kind, value FROM defaults "
    "WHERE (SELECT group_concat(sql) FROM sqlite_schema WHERE name NOT GLOB 'sqlite_*') = ?1 ORDER BY key";

constexpr std::string_view dataKind = "data";
constexpr std::string_view dateKind = "date";
constexpr std::string_view stringKind = "string";
constexpr std::string_view numberKind = "number";

struct Binder {
  SqliteStatement& statement;

  void operator()(const Data& data) const { bindKind(dataKind), statement.bindBlob(3, data.bytes); }
  void operator()(const Date& date) const {
    bindKind(dateKind), statement.bindInteger(3, date.time_since_epoch().count());
  }
  void operator()(const std::string& text) const { bindKind(stringKind), statement.bindText(3, text); }
  void operator()(double number) const { bindKind(numberKind), statement.bindReal(3, number); }

  void bindKind(std::string_view kind) const { statement.bindText(2, kind); }
};

std::optional<DefaultsValue> readValue(const SqliteStatement& row, std::string_view kind, Storage storage) {
  constexpr int value = 2;
  if (kind == dataKind && storage == Storage::blob) return Data{std::string{row.bytes(value)}};
  if (kind == stringKind && storage == Storage::text) return std::string{row.bytes(value)};
  if (kind == numberKind && storage == Storage::real) return row.real(value);
  if (kind == dateKind && storage == Storage::integer)
    return Date{std::chrono::microseconds{row.integer(value)}};
  return std::nullopt;
}

DefaultsRow readRow(const SqliteStatement& row) {
  const Storage storage = row.storage(2);
  const bool isText = row.storage(0) == Storage::text && row.storage(1) == Storage::text;
  const bool hasBytes = storage == Storage::text || storage == Storage::blob;
  DefaultsRow result{row.bytes(0), row.bytes(1), hasBytes ? row.bytes(2).size() : 8, std::nullopt};
  if (isText && result.size <= largestDefaultsValue) result.value = readValue(row, result.type, storage);
  if (result.value && !isStorable(*result.value)) result.value.reset();
  if (!result.value) result.type = "unreadable";
  return result;
}

bool checkSchema(const SqliteDatabase& database) {
  SqliteStatement found = database.prepare(selectSchema);
  found.step();
  if (found.storage(0) == Storage::null) return false;
  if (found.bytes(0) != schema) throw SqliteError{SQLITE_NOTADB, "it holds other tables than ours"};
  return true;
}

void checkPages(const SqliteDatabase& database) {
  SqliteStatement check = database.prepare("PRAGMA quick_check(1)");
  const bool isSound = check.step() && check.bytes(0) == "ok";
  if (!isSound) throw SqliteError{SQLITE_CORRUPT, std::string{check.bytes(0)}};
}

}  // namespace

bool isStorable(const DefaultsValue& value) {
  struct Judge {
    bool operator()(const Data& data) const { return data.bytes.size() <= largestDefaultsValue; }
    bool operator()(const Date& date) const { return earliestDate <= date && date <= latestDate; }
    bool operator()(const std::string& text) const { return text.size() <= largestDefaultsValue; }
    bool operator()(double number) const { return !std::isnan(number); }
  };
  return std::visit(Judge{}, value);
}

void visitDefaults(const SqliteDatabase& database, const std::function<void(DefaultsRow)>& visit) {
  SqliteStatement rows = database.prepare(selectRows);
  rows.bindText(1, schema);
  while (rows.step()) visit(readRow(rows));
}

bool checkDefaults(const SqliteDatabase& database) {
  checkPages(database);
  return checkSchema(database);
}

void writeDefaults(const SqliteDatabase& database, const DefaultsValues& values) {
  database.execute("PRAGMA synchronous = FULL");
  database.execute("BEGIN IMMEDIATE");
  if (!checkDefaults(database)) database.execute(schema);
  {
    SqliteStatement insert = database.prepare("INSERT OR REPLACE INTO defaults VALUES (?1, ?2, ?3)");
    for (const auto& [key, value] : values) {
      insert.bindText(1, key);
      std::visit(Binder{insert}, value);
      insert.step();
      insert.reset();
    }
  }
  database.execute("COMMIT");
}

}  // namespace foundation
