#include "tarno/foundation/user_defaults.hpp"

#include <map>
#include <mutex>
#include <utility>

#include "tarno/foundation/suite_store.hpp"

namespace tarno {
namespace {

class InMemoryDefaults final : public UserDefaults {
 public:
  std::optional<DefaultsValue> object(std::string_view key) const override {
    const std::scoped_lock lock{mutex_};
    const auto found = values_.find(key);
    if (found == values_.end()) return std::nullopt;
    return found->second;
  }

  void set(std::string_view key, DefaultsValue value) override {
    const std::scoped_lock lock{mutex_};
    values_.insert_or_assign(std::string{key}, std::move(value));
  }

  bool synchronize() override { return true; }

 private:
  mutable std::mutex mutex_;
  std::map<std::string, DefaultsValue, std::less<>> values_;
};

template <class T>
std::optional<T> valueOfType(std::optional<DefaultsValue> value) {
  if (!value) return std::nullopt;
  T* const held = std::get_if<T>(&*value);
  if (held == nullptr) return std::nullopt;
  return std::move(*held);
}

}  // namespace

std::optional<Data> UserDefaults::data(std::string_view key) const { return valueOfType<Data>(object(key)); }

std::optional<std::string> UserDefaults::string(std::string_view key) const {
  return valueOfType<std::string>(object(key));
}

std::shared_ptr<UserDefaults> UserDefaults::standard() {
  static const auto store = std::make_shared<InMemoryDefaults>();
  return store;
}

std::shared_ptr<UserDefaults> UserDefaults::suite(std::string_view name) { return openSuite(name).store; }

}  // namespace tarno
