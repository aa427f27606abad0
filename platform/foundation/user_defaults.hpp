#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tarno/foundation/defaults_value.hpp"

namespace tarno {

/// A store of typed values under text keys. Nothing here throws for what the store holds or for what the disk
/// does: what cannot be read counts as missing, what cannot be written makes synchronize() answer false.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;
  UserDefaults(const UserDefaults&) = delete;
  UserDefaults& operator=(const UserDefaults&) = delete;

  /// The value under `key`, of whatever type, or nothing.
  virtual std::optional<DefaultsValue> object(std::string_view key) const = 0;

  /// The bytes under `key`; nothing when the key is missing or holds a value of another type.
  std::optional<Data> data(std::string_view key) const;

  /// The text under `key`; nothing when the key is missing or holds a value of another type.
  std::optional<std::string> string(std::string_view key) const;

  /// Stores `value` under `key`, replacing what was there. Other processes see it after synchronize().
  virtual void set(std::string_view key, DefaultsValue value) = 0;

  /// Writes what was set; false when it could not be written. It is then kept and written by the next call
  /// that can, unless it has a value that cannot be stored: then all of it is dropped.
  virtual bool synchronize() = 0;

  /// The process's own store: in memory, one per process, not shared with others, gone when the process ends.
  /// Always available; any thread may use it.
  static std::shared_ptr<UserDefaults> standard();

  /// A new handle on the store that every process of this user shares under `name` (see suite_store.hpp for
  /// where it lives and how it behaves), or null when it cannot be opened. A handle belongs to one thread at
  /// a time.
  static std::shared_ptr<UserDefaults> suite(std::string_view name);

 protected:
  UserDefaults() = default;
};

}  // namespace tarno
