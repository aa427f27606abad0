#include "tarno/ui/description/description.hpp"

#include <array>
#include <charconv>

namespace ui {
namespace {

std::string quoted(std::string_view text) {
  constexpr std::string_view hex = "0123456789abcdef";
  std::string result = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      result += "\\n";
    } else if (byte < 0x20 || byte == 0x7F) {
      result += "\\u00";
      result += {hex[byte >> 4], hex[byte & 0xF]};
    } else {
      if (c == '"' || c == '\\') result += '\\';
      result += c;
    }
  }
  return result + '"';
}

/// Visits the value of an attribute and formats it for an outline. Text from a user is always quoted, fixed
/// words only if they contain blanks.
struct OutlineValue {
  std::string_view name;

  std::string operator()(double value) const { return digits(value); }
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(const std::string& value) const {
    const bool written = name == "text" || name == "label" || name == "systemName";
    return written || value.find(' ') != std::string::npos ? quoted(value) : value;
  }
};

void addOutline(std::string& text, const Description& description, std::size_t level) {
  text.append(2 * level, ' ');
  text += description.name;
  for (const auto& [name, value] : description.attributes)
    text.append(" ").append(name).append("=").append(std::visit(OutlineValue{name}, value));
  text += '\n';
  for (const Description& child : description.children) addOutline(text, child, level + 1);
}

}  // namespace

std::string digits(double value) {
  std::array<char, 400> buffer;
  const auto end = std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::fixed).ptr;
  return {buffer.begin(), end};
}

std::string outline(const Description& description) {
  std::string text;
  addOutline(text, description, 0);
  return text;
}

}  // namespace ui
