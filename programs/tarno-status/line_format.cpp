#include "tarno/tarno-status/line_format.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "tarno/common/dates.hpp"
#include "tarno/common/failure.hpp"
#include "tarno/common/output.hpp"
#include "tarno/shared/coding/json.hpp"
#include "tarno/shared/freshness/status_freshness.hpp"
#include "tarno/tarno-status/shared_status.hpp"

namespace status {
namespace {

using Value = std::string (*)(const TileReport&, tarno::Date since);

struct Placeholder {
  std::string_view name;
  Value value;
};

constexpr Placeholder placeholders[] = {
    {"status", [](const TileReport& report, tarno::Date) { return report.status; }},
    {"status_line", [](const TileReport& report, tarno::Date) { return report.statusLine; }},
    {"detail_line", [](const TileReport& report, tarno::Date) { return report.detailLine; }},
    {"presence", [](const TileReport& report, tarno::Date) { return report.presence; }},
    {"device", [](const TileReport& report, tarno::Date) { return report.device; }},
    {"age",
     [](const TileReport& report, tarno::Date) {
       return report.ageSeconds ? TarnoStatusFreshness::ageText(*report.ageSeconds) : "";
     }},
    {"received_at",
     [](const TileReport& report, tarno::Date) {
       return report.receivedAt ? program::dateText(*report.receivedAt) : "";
     }},
    {"since", [](const TileReport&, tarno::Date since) { return program::dateText(since); }},
};

/// A literal text, followed by a value unless it is the last piece.
struct Piece {
  std::string text;
  Value value = nullptr;
};

[[noreturn]] void refuse(const std::string& reason) {
  throw program::Failure{EX_USAGE, "--format: " + reason};
}

Value placeholder(std::string_view name) {
  const auto* const found =
      std::find_if(std::begin(placeholders), std::end(placeholders),
                   [&](const Placeholder& candidate) { return candidate.name == name; });
  if (found == std::end(placeholders)) refuse("unknown placeholder {" + std::string{name} + "} (see --help)");
  return found->value;
}

std::vector<Piece> piecesOf(std::string_view text) {
  std::vector<Piece> pieces{{}};
  while (!text.empty()) {
    const char first = text.front();
    const bool isBrace = first == '{' || first == '}';
    if (isBrace && text.substr(0, 2) == std::string(2, first))
      text.remove_prefix(1);
    else if (isBrace) {
      const auto end = text.find('}');
      if (first == '}' || end == text.npos) refuse("write a literal brace twice");
      pieces.back().value = placeholder(text.substr(1, end - 1));
      pieces.emplace_back();
      text.remove_prefix(end + 1);
      continue;
    }
    pieces.back().text += first;
    text.remove_prefix(1);
  }
  if (pieces.size() == 1) refuse("'" + pieces[0].text + "' is not json, waybar or a text with placeholders");
  return pieces;
}

/// Returns `text` as Pango markup, which waybar expects.
std::string escaped(std::string_view text) {
  std::string markup;
  for (const char c : text) {
    if (c == '&')
      markup += "&amp;";
    else if (c == '<')
      markup += "&lt;";
    else if (c == '>')
      markup += "&gt;";
    else
      markup += c;
  }
  return markup;
}

std::string waybarLine(const std::optional<TarnoStoredMacStatus>& stored, tarno::Date) {
  const auto report = tileReport(stored);
  const auto word = !stored ? "none" : report.isStale ? "stale" : report.status;
  const auto tooltip = report.device + "\n" + report.detailLine + "\n" + report.presence;
  nlohmann::ordered_json json{
      {"text", escaped(report.statusLine)}, {"alt", word}, {"class", word}, {"tooltip", escaped(tooltip)}};
  const auto confidence = stored && !report.isStale ? stored->snapshot.confidence.value_or(-1) : -1;
  if (0 <= confidence && confidence <= 100) json["percentage"] = confidence;
  return json.dump();
}

}  // namespace

std::string jsonText(const std::optional<TarnoStoredMacStatus>& stored, int indent) {
  if (!stored) return "null";
  const auto report = tileReport(stored);
  nlohmann::ordered_json json{{"status", report.status},          {"status_line", report.statusLine},
                              {"detail_line", report.detailLine}, {"presence", report.presence},
                              {"device", report.device},          {"is_stale", report.isStale},
                              {"age_seconds", nullptr},           {"received_at", nullptr}};
  if (report.ageSeconds) json["age_seconds"] = *report.ageSeconds;
  if (report.receivedAt) json["received_at"] = program::dateText(*report.receivedAt);
  json["snapshot"] = nlohmann::ordered_json::parse(TarnoJSON::encoder().encode(stored->snapshot));
  return json.dump(indent);
}

LineFormat lineFormat(const std::string& text) {
  if (text == "json")
    return
        [](const std::optional<TarnoStoredMacStatus>& stored, tarno::Date) { return jsonText(stored, -1); };
  if (text == "waybar") return waybarLine;
  return [pieces = piecesOf(text)](const std::optional<TarnoStoredMacStatus>& stored, tarno::Date since) {
    const auto report = tileReport(stored);
    std::string line;
    for (const auto& [words, value] : pieces)
      line += words + (value != nullptr ? program::printable(value(report, since)) : "");
    return line;
  };
}

}  // namespace status
