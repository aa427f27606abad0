#include "foundation/sqlite_database.hpp"

#include <sqlite3.h>

namespace foundation {
namespace {

int waitForLock(void* deadline, int) { return static_cast<const Deadline*>(deadline)->waitAMoment() ? 1 : 0; }

[[noreturn]] void fail(sqlite3* database, int code) {
  throw SqliteError{code, database != nullptr ? sqlite3_errmsg(database) : sqlite3_errstr(code)};
}

}  // namespace

bool SqliteError::isDamage() const {
  // Our statements are well-formed, so one that SQLite cannot make sense of (SQLITE_ERROR) meets a file whose
  // schema or format is not what it should be.
  const int primary = code_ & 0xFF;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB || primary == SQLITE_ERROR;
}

SqliteStatement::SqliteStatement(sqlite3* database, std::string_view sql) : database_(database) {
  check(sqlite3_prepare_v2(database_, sql.data(), static_cast<int>(sql.size()), &statement_, nullptr));
}

SqliteStatement::~SqliteStatement() { sqlite3_finalize(statement_); }

// The last argument but the encoding is SQLite's "static": the caller keeps the bytes in place.
void SqliteStatement::bindText(int parameter, std::string_view text) {
  check(sqlite3_bind_text64(statement_, parameter, text.data(), text.size(), nullptr, SQLITE_UTF8));
}

void SqliteStatement::bindBlob(int parameter, std::string_view bytes) {
  check(sqlite3_bind_blob64(statement_, parameter, bytes.data(), bytes.size(), nullptr));
}

void SqliteStatement::bindInteger(int parameter, std::int64_t value) {
  check(sqlite3_bind_int64(statement_, parameter, value));
}

void SqliteStatement::bindReal(int parameter, double value) {
  check(sqlite3_bind_double(statement_, parameter, value));
}

bool SqliteStatement::step() {
  const int code = sqlite3_step(statement_);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) fail(database_, code);
  return false;
}

void SqliteStatement::reset() { check(sqlite3_reset(statement_)); }

SqliteStatement::Storage SqliteStatement::storage(int column) const {
  switch (sqlite3_column_type(statement_, column)) {
    case SQLITE_INTEGER: return Storage::integer;
    case SQLITE_FLOAT: return Storage::real;
    case SQLITE_TEXT: return Storage::text;
    case SQLITE_BLOB: return Storage::blob;
    default: return Storage::null;
  }
}

std::string_view SqliteStatement::bytes(int column) const {
  const void* const start = sqlite3_column_blob(statement_, column);
  if (start == nullptr) return {};
  return {static_cast<const char*>(start),
          static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::int64_t SqliteStatement::integer(int column) const { return sqlite3_column_int64(statement_, column); }

double SqliteStatement::real(int column) const { return sqlite3_column_double(statement_, column); }

void SqliteStatement::check(int code) const {
  if (code != SQLITE_OK) fail(database_, code);
}

SqliteDatabase::SqliteDatabase(const std::filesystem::path& file, Access access, const Deadline& deadline) {
  const int mode = access == Access::readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
  const int code =
      sqlite3_open_v2(file.c_str(), &database_, mode | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  if (code != SQLITE_OK) {
    const SqliteError error{code, database_ != nullptr ? sqlite3_errmsg(database_) : sqlite3_errstr(code)};
    sqlite3_close(database_);
    throw error;
  }
  // SQLite hands the deadline back to waitForLock() as it is, which only reads it.
  sqlite3_busy_handler(database_, waitForLock, const_cast<Deadline*>(&deadline));
}

SqliteDatabase::~SqliteDatabase() { sqlite3_close(database_); }

void SqliteDatabase::execute(std::string_view sql) const {
  SqliteStatement statement = prepare(sql);
  while (statement.step()) {
  }
}

bool SqliteDatabase::usesWriteAheadLog() const {
  // Through SQLite's own descriptor: a second one would, when closed, drop the locks that other connections
  // of this process hold on the file.
  sqlite3_file* file = nullptr;
  if (sqlite3_file_control(database_, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK) return false;
  constexpr sqlite3_int64 readVersionOffset = 19;
  unsigned char readVersion = 0;
  return file->pMethods->xRead(file, &readVersion, 1, readVersionOffset) == SQLITE_OK && readVersion == 2;
}

}  // namespace foundation
