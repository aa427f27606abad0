#pragma once

#include <systemd/sd-bus.h>

#include <memory>
#include <string>

#include "accessibility/object_answers.hpp"
#include "common/event_loop.hpp"

namespace desktop {

using program::EventSource;

/// The way onto the accessibility bus, one connection at a time: the session bus tells when somebody listens
/// and where the other bus is, which then takes its place. Waits for no answer; all failures are absorbed.
class AccessibilityBus {
 public:
  /// Offers `objects`, which outlive this.
  explicit AccessibilityBus(ObjectsOnBus& objects) : objects_(objects) {}
  AccessibilityBus(const AccessibilityBus&) = delete;
  AccessibilityBus& operator=(const AccessibilityBus&) = delete;

  /// Sets out, unless on the way already. To be called again now and then: a connection may have gone away.
  void join();

  /// The bus that the objects are on; null while they are on none.
  sd_bus* joined() const { return stage_ == Stage::joined ? bus_.get() : nullptr; }

  EventSource::Wait wait() const;
  void process();

 private:
  enum class Stage { asking, entering, embedding, joined, failed };
  struct Close {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  };

  template <auto read>
  static int answered(sd_bus_message* answer, void* self, sd_bus_error*);
  void askStatus(sd_bus_message* = nullptr);
  void readStatus(sd_bus_message* status);
  void readAddress(sd_bus_message* address);
  int enter();
  int embed();
  void readDesktop(sd_bus_message* desktop);
  int step();

  ObjectsOnBus& objects_;
  std::unique_ptr<sd_bus, Close> bus_;
  Stage stage_ = Stage::asking;
  std::string address_;  ///< of the accessibility bus, once the session bus has told it
};

}  // namespace desktop
