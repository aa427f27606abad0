#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "foundation/deadline.hpp"

struct sqlite3;
struct sqlite3_stmt;

namespace foundation {

/// A call to SQLite that did not succeed.
class SqliteError : public std::runtime_error {
 public:
  SqliteError(int code, const std::string& text) : std::runtime_error(text), code_(code) {}

  int code() const { return code_; }  ///< the extended result code

  /// Whether the content of the file is at fault, rather than the disk, its permissions or another process's
  /// lock.
  bool isDamage() const;

 private:
  int code_;
};

/// A compiled statement. Must go before its database does. What it hands out as a view is good until the next
/// step().
class SqliteStatement {
 public:
  enum class Storage { integer, real, text, blob, null };

  SqliteStatement(sqlite3* database, std::string_view sql);
  ~SqliteStatement();
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;

  /// Parameters count from 1 and keep their values over reset(). The bytes must stay in place until the last
  /// step().
  void bindText(int parameter, std::string_view text);
  void bindBlob(int parameter, std::string_view bytes);
  void bindInteger(int parameter, std::int64_t value);
  void bindReal(int parameter, double value);

  /// True for a row, false at the end.
  bool step();
  void reset();

  /// Columns count from 0.
  Storage storage(int column) const;
  std::string_view bytes(int column) const;  ///< of text or a blob
  std::int64_t integer(int column) const;
  double real(int column) const;

 private:
  void check(int code) const;

  sqlite3* database_;
  sqlite3_stmt* statement_ = nullptr;
};

/// A connection to a database file that exists: opening never makes one. One thread at a time. Every failure
/// is a SqliteError. A transaction that is still open when the connection goes is rolled back.
class SqliteDatabase {
 public:
  enum class Access { readOnly, readWrite };

  /// Waiting for locks ends with `deadline`, all waits together; it must outlive the connection. Where the
  /// permissions of the file allow no writing, `readWrite` reads all the same.
  SqliteDatabase(const std::filesystem::path& file, Access access, const Deadline& deadline);
  ~SqliteDatabase();
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  SqliteStatement prepare(std::string_view sql) const { return {database_, sql}; }
  void execute(std::string_view sql) const;

  /// Whether the file is in write-ahead mode, so that reading it makes files beside it. Takes no lock.
  bool usesWriteAheadLog() const;

 private:
  sqlite3* database_ = nullptr;
};

}  // namespace foundation
