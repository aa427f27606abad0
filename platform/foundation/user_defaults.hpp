#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tarno/foundation/defaults_value.hpp"

namespace tarno {

/// A store of typed values by key. Its members throw nothing because of the content of the store or because
/// of the disk: what cannot be read counts as missing, and synchronize() returns false if it cannot write.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;
  UserDefaults(const UserDefaults&) = delete;
  UserDefaults& operator=(const UserDefaults&) = delete;

  /// Returns the value of `key`, of any type, or nothing.
  virtual std::optional<DefaultsValue> object(std::string_view key) const = 0;

  /// Returns the data of `key`; nothing if the key is missing or has another type.
  std::optional<Data> data(std::string_view key) const;

  /// Returns the text of `key`; nothing if the key is missing or has another type.
  std::optional<std::string> string(std::string_view key) const;

  /// Sets the value of `key`. Other processes see it after synchronize().
  virtual void set(std::string_view key, DefaultsValue value) = 0;

  /// Writes what was set. Returns false if it could not be written; then it is kept for the next call, unless
  /// one of its values cannot be stored: then all of it is dropped.
  virtual bool synchronize() = 0;

  /// The process's own store: in memory, not shared, gone when the process ends. Always available. Any
  /// thread.
  static std::shared_ptr<UserDefaults> standard();

  /// Returns a new handle to the store that all processes of this user share under `name` (see
  /// suite_store.hpp), or null if it cannot be opened. A handle is for one thread at a time.
  static std::shared_ptr<UserDefaults> suite(std::string_view name);

 protected:
  UserDefaults() = default;
};

}  // namespace tarno
