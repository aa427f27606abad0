#include "tarno/shared/model/status_snapshot.hpp"

#include <tuple>

#include "tarno/foundation/json_decoder.hpp"
#include "tarno/foundation/json_encoder.hpp"
#include "tarno/shared/freshness/status_freshness.hpp"
#include "tarno/shared/model/canonical_text.hpp"
#include "tarno/shared/model/status_display.hpp"

namespace {

using Snapshot = TarnoMacStatusSnapshot;

template <class Value>
struct Field {
  constexpr Field(std::string_view key_, std::optional<Value> Snapshot::*member_)
      : key(key_), member(member_) {}

  std::string_view key;
  std::optional<Value> Snapshot::*member;
};

/// The fields of the record, in order. Coding and equality use this table.
constexpr std::tuple fields{Field{"schema", &Snapshot::schema},
                            Field{"app", &Snapshot::app},
                            Field{"event", &Snapshot::event},
                            Field{"device_id", &Snapshot::deviceID},
                            Field{"device_name", &Snapshot::deviceName},
                            Field{"seen_at", &Snapshot::seenAt},
                            Field{"status", &Snapshot::status},
                            Field{"reason", &Snapshot::reason},
                            Field{"source", &Snapshot::source},
                            Field{"confidence", &Snapshot::confidence},
                            Field{"face_present", &Snapshot::facePresent},
                            Field{"companion_present", &Snapshot::companionPresent},
                            Field{"input_idle_seconds", &Snapshot::inputIdleSeconds},
                            Field{"stale", &Snapshot::stale},
                            Field{"age_seconds", &Snapshot::ageSeconds},
                            Field{"message", &Snapshot::message}};

template <class Value>
bool same(const std::optional<Value>& a, const std::optional<Value>& b) {
  return a == b;
}

bool same(const std::optional<std::string>& a, const std::optional<std::string>& b) {
  return a && b ? TarnoText::canonicallyEquivalent(*a, *b) : a.has_value() == b.has_value();
}

bool hasText(const std::optional<std::string>& text) { return text && !text->empty(); }

}  // namespace

constexpr std::array<std::string_view, 16> TarnoMacStatusSnapshot::CodingKeys::all =
    std::apply([](const auto&... field) { return std::array{field.key...}; }, fields);

TarnoMacStatus TarnoMacStatusSnapshot::resolvedStatus() const {
  if (isStale()) return TarnoMacStatus::unknown;
  return status.value_or(TarnoMacStatus::unknown);
}

std::string TarnoMacStatusSnapshot::statusLine() const {
  if (isStale()) return "Status stale";
  return std::string{resolvedStatus().displayName()};
}

std::string TarnoMacStatusSnapshot::detailLine() const {
  if (isStale()) return TarnoStatusFreshness::staleDetail(ageSeconds);
  if (hasText(reason)) return *reason;
  if (hasText(message)) return *message;
  return std::string{TarnoStatusDisplay::waiting};
}

TarnoMacStatusSnapshot TarnoMacStatusSnapshot::withLocalFreshness(std::optional<tarno::Date> receivedAt,
                                                                  tarno::Date now,
                                                                  tarno::TimeInterval staleAfter) const {
  auto judged = *this;
  const auto age = TarnoStatusFreshness::ageSeconds(receivedAt, now);
  if (!age) return judged;
  judged.ageSeconds = age;
  if (static_cast<double>(*age) > staleAfter.count()) judged.stale = true;
  return judged;
}

bool Snapshot::operator==(const Snapshot& other) const {
  return std::apply(
      [&](const auto&... field) { return (same(this->*field.member, other.*field.member) && ...); }, fields);
}

void Snapshot::encode(tarno::Encoder& encoder) const {
  encoder.beginObject();
  std::apply([&](const auto&... field) { (encoder.encodeIfPresent(field.key, this->*field.member), ...); },
             fields);
  encoder.endObject();
}

Snapshot Snapshot::decode(const tarno::Decoder& decoder) {
  decoder.requireObject();
  Snapshot read;
  const auto readField = [&]<class Value>(const Field<Value>& field) {
    read.*field.member = decoder.decodeIfPresent<Value>(field.key);
  };
  std::apply([&](const auto&... field) { (readField(field), ...); }, fields);
  return read;
}
