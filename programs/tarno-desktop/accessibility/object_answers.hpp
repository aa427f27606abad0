#pragma once

#include <systemd/sd-bus.h>

#include <string>

#include "accessibility/object_tree.hpp"

namespace desktop {

constexpr char accessibleName[] = "org.a11y.atspi.Accessible", componentName[] = "org.a11y.atspi.Component",
               applicationName[] = "org.a11y.atspi.Application";

/// What AT-SPI's clients may ask about; may change from one answer to the next.
struct ObjectsOnBus {
  int applicationId = 0;  ///< given by the registry
  std::string busName;    ///< of the connection that the objects are on
  std::string desktopName, desktopPath = "/org/a11y/atspi/null";  ///< the application's parent
  ObjectTree tree;
};

/// Answers on `bus` what is asked about `objects`, which outlive it. Returns a negative errno on failure.
int answerFor(ObjectsOnBus& objects, sd_bus* bus);

}  // namespace desktop
