#pragma once

#include <optional>
#include <string>

#include "tarno/shared/model/status_snapshot.hpp"
#include "tarno/ui/view.hpp"

/// A round gauge: a track ring, an arc whose length and colour show the lock status, and inside it the status
/// symbol, the status line and optionally three dots for the presence signals. Screen readers treat it as one
/// element.
struct TarnoMacDialView {
  const std::optional<TarnoMacStatusSnapshot>
      status;         ///< the report to show; absent when none was ever saved
  double size;        ///< side of the dial's square, in points
  bool showsSignals;  ///< whether the dots are shown

  ui::View body() const;

 private:
  double progress() const;
  std::string accessibilityLabel() const;
  ui::View signalDots() const;
  ui::View signalDot(bool active, std::string systemImage) const;
};
