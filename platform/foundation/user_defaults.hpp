#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tarno/foundation/defaults_value.hpp"

namespace tarno {

/// A store of typed values by key. Its members do not throw for damaged content or disk errors: what cannot
/// be read counts as missing, and synchronize() returns false if it cannot write.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;
  UserDefaults(const UserDefaults&) = delete;
  UserDefaults& operator=(const UserDefaults&) = delete;

  /// Returns the value of `key`, whatever its type; nothing if the key is missing.
  virtual std::optional<DefaultsValue> object(std::string_view key) const = 0;

  /// Returns the data of `key`; nothing if the key is missing or has another type.
  std::optional<Data> data(std::string_view key) const;

  /// Returns the text of `key`; nothing if the key is missing or has another type.
  std::optional<std::string> string(std::string_view key) const;

  /// Sets the value of `key`. Other processes see it after synchronize().
  virtual void set(std::string_view key, DefaultsValue value) = 0;

  /// Writes what was set. Returns false if that fails. What was set is then kept for the next call; but if
  /// one of the values cannot be stored, all of them are dropped.
  virtual bool synchronize() = 0;

  /// Returns the process's own store, which is in memory, not shared, and lost when the process ends. Never
  /// null. Any thread.
  static std::shared_ptr<UserDefaults> standard();

  /// Returns a new handle to the store that all processes of this user share under `name` (see
  /// suite_store.hpp), or null if it cannot be opened. A handle is for one thread at a time.
  static std::shared_ptr<UserDefaults> suite(std::string_view name);

 protected:
  UserDefaults() = default;
};

}  // namespace tarno
