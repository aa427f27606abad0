#pragma once

#include <cstdint>
#include <string>

#include "tarno-desktop/surface.hpp"
#include "wayland/proxy.hpp"
#include "wayland/scale.hpp"

namespace desktop::wayland {

/// A monitor as the compositor describes it. Changes that belong together show at once.
class Output {
 public:
  /// Takes over `output`, which the registry knows as `id`.
  Output(std::uint32_t id, Proxy<wl_output> output);
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  /// Asks, once, for the size in points and, from older compositors, the name.
  void askForDetails(zxdg_output_manager_v1* manager);

  std::uint32_t id() const { return id_; }
  wl_output* get() const { return output_.get(); }

  /// False until the compositor has said everything about it.
  bool isKnown() const { return now_.scale > 0 && (!details_ || now_.points.width > 0); }

  /// The place in points, as the compositor lays its monitors out; the size in pixels.
  MonitorInfo info() const;

 private:
  struct State {
    std::string name;
    Extent mode;            // as the monitor scans it
    bool isTurned = false;  // by 90° or 270°
    int scale = 1;          // in whole numbers
    int x = 0, y = 0;
    Extent points;
  };

  std::uint32_t id_;
  Proxy<wl_output> output_;
  Proxy<zxdg_output_v1> details_;
  State next_;
  State now_{.scale = 0};
};

}  // namespace desktop::wayland
