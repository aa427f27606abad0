#include "tarno/tarno-widget/description_json.hpp"

#include <nlohmann/json.hpp>

namespace extension {

using nlohmann::ordered_json;

ordered_json attributes(const ui::Description& description) {
  auto result = ordered_json::object();
  for (const auto& [key, value] : description.attributes)
    std::visit([&, name = std::string{key}](const auto& plain) { result[name] = plain; }, value);
  return result;
}

ordered_json json(const ui::Description& description) {
  ordered_json result{{"name", description.name}};
  result.update(attributes(description));
  for (const auto& child : description.children) result["children"].push_back(json(child));
  return result;
}

}  // namespace extension
