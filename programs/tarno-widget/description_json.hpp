#pragma once

#include <nlohmann/json_fwd.hpp>

#include "tarno/ui/description/description.hpp"

namespace extension {

/// Returns the attributes of one node as an object.
nlohmann::ordered_json attributes(const ui::Description& description);

/// Returns a node with its children as an object: "name", the attributes, and "children" if there are any.
nlohmann::ordered_json json(const ui::Description& description);

}  // namespace extension
