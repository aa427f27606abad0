#include "shared/model/status_snapshot.hpp"

#include "foundation/json_decoder.hpp"
#include "foundation/json_encoder.hpp"
#include "shared/model/canonical_text.hpp"

namespace {

using Keys = TarnoMacStatusSnapshot::CodingKeys;

/// Calls `visit(key, field)` for every field of `snapshot`, in field order.
template <class Snapshot, class Visit>
void forEachField(Snapshot& snapshot, Visit visit) {
  visit(Keys::schema, snapshot.schema);
  visit(Keys::app, snapshot.app);
  visit(Keys::event, snapshot.event);
  visit(Keys::deviceID, snapshot.deviceID);
  visit(Keys::deviceName, snapshot.deviceName);
  visit(Keys::seenAt, snapshot.seenAt);
  visit(Keys::status, snapshot.status);
  visit(Keys::reason, snapshot.reason);
  visit(Keys::source, snapshot.source);
  visit(Keys::confidence, snapshot.confidence);
  visit(Keys::facePresent, snapshot.facePresent);
  visit(Keys::companionPresent, snapshot.companionPresent);
  visit(Keys::inputIdleSeconds, snapshot.inputIdleSeconds);
  visit(Keys::stale, snapshot.stale);
  visit(Keys::ageSeconds, snapshot.ageSeconds);
  visit(Keys::message, snapshot.message);
}

bool sameText(const std::optional<std::string>& a, const std::optional<std::string>& b) {
  return a && b ? canonicallyEquivalent(*a, *b) : a.has_value() == b.has_value();
}

}  // namespace

bool operator==(const TarnoMacStatusSnapshot& a, const TarnoMacStatusSnapshot& b) {
  return sameText(a.schema, b.schema) && sameText(a.app, b.app) && sameText(a.event, b.event) &&
         sameText(a.deviceID, b.deviceID) && sameText(a.deviceName, b.deviceName) && a.seenAt == b.seenAt &&
         a.status == b.status && sameText(a.reason, b.reason) && sameText(a.source, b.source) &&
         a.confidence == b.confidence && a.facePresent == b.facePresent &&
         a.companionPresent == b.companionPresent && a.inputIdleSeconds == b.inputIdleSeconds &&
         a.stale == b.stale && a.ageSeconds == b.ageSeconds && sameText(a.message, b.message);
}

void encode(foundation::Encoder& encoder, const TarnoMacStatusSnapshot& snapshot) {
  encoder.beginObject();
  forEachField(snapshot,
               [&](std::string_view key, const auto& field) { encoder.encodeIfPresent(key, field); });
  encoder.endObject();
}

void decode(const foundation::Decoder& decoder, TarnoMacStatusSnapshot& snapshot) {
  decoder.requireObject();
  TarnoMacStatusSnapshot read;
  forEachField(read, [&]<class T>(std::string_view key, std::optional<T>& field) {
    field = decoder.decodeIfPresent<T>(key);
  });
  snapshot = std::move(read);
}
