#include "accessibility/accessibility_bus.hpp"

#include <cerrno>
#include <cstdint>
#include <utility>

namespace desktop {
namespace {

constexpr char service[] = "org.a11y.Bus", servicePath[] = "/org/a11y/bus";
constexpr char properties[] = "org.freedesktop.DBus.Properties";

}  // namespace

template <auto read>
int AccessibilityBus::answered(sd_bus_message* answer, void* self, sd_bus_error*) {
  (static_cast<AccessibilityBus*>(self)->*read)(answer);
  return 0;
}

void AccessibilityBus::join() {
  if (bus_) return;
  sd_bus* session = nullptr;
  if (sd_bus_open_user(&session) < 0) return;
  bus_.reset(session);
  stage_ = Stage::asking;
  constexpr auto* changed = answered<&AccessibilityBus::askStatus>;
  sd_bus_match_signal_async(session, nullptr, service, servicePath, properties, "PropertiesChanged", changed,
                            nullptr, this);
  sd_bus_add_match_async(session, nullptr,
                         "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
                         "arg0='org.a11y.Bus'",
                         changed, nullptr, this);
  askStatus();
}

/// A service that does not run is not started for this: then nobody listens.
void AccessibilityBus::askStatus(sd_bus_message*) {
  sd_bus_message* call = nullptr;
  if (sd_bus_message_new_method_call(bus_.get(), &call, service, servicePath, properties, "GetAll") < 0)
    return;
  sd_bus_message_append(call, "s", "org.a11y.Status");
  sd_bus_message_set_auto_start(call, 0);
  sd_bus_call_async(bus_.get(), nullptr, call, answered<&AccessibilityBus::readStatus>, this, 0);
  sd_bus_message_unref(call);
}

void AccessibilityBus::readStatus(sd_bus_message* status) {
  const char* name = nullptr;
  int isEnabled = 0;  // for a screen reader, or for whoever listens
  sd_bus_message_enter_container(status, 'a', "{sv}");
  while (isEnabled == 0 && sd_bus_message_read(status, "{sv}", &name, "b", &isEnabled) > 0) {
  }
  if (isEnabled != 0)
    sd_bus_call_method_async(bus_.get(), nullptr, service, servicePath, service, "GetAddress",
                             answered<&AccessibilityBus::readAddress>, this, "");
}

void AccessibilityBus::readAddress(sd_bus_message* address) {
  const char* text = nullptr;
  if (sd_bus_message_is_method_error(address, nullptr) == 0 && sd_bus_message_read(address, "s", &text) > 0)
    address_ = text;
}

/// Leaves the session bus for the accessibility bus.
int AccessibilityBus::enter() {
  sd_bus* bus = nullptr;
  int error = sd_bus_new(&bus);
  bus_.reset(bus);
  stage_ = Stage::entering;
  if (error >= 0) error = sd_bus_set_address(bus, std::exchange(address_, {}).c_str());
  if (error >= 0) error = sd_bus_set_bus_client(bus, 1);
  if (error >= 0) error = answerFor(objects_, bus);
  return error >= 0 ? sd_bus_start(bus) : error;
}

int AccessibilityBus::embed() {
  const char* name = "";
  sd_bus_get_unique_name(bus_.get(), &name);
  objects_.busName = name;
  stage_ = Stage::embedding;
  return sd_bus_call_method_async(bus_.get(), nullptr, "org.a11y.atspi.Registry",
                                  "/org/a11y/atspi/accessible/root", "org.a11y.atspi.Socket", "Embed",
                                  answered<&AccessibilityBus::readDesktop>, this, "(so)", name,
                                  objects_.tree.front().path.c_str());
}

void AccessibilityBus::readDesktop(sd_bus_message* desktop) {
  const char *name = nullptr, *path = nullptr;
  stage_ = sd_bus_message_read(desktop, "(so)", &name, &path) > 0 ? Stage::joined : Stage::failed;
  if (stage_ == Stage::failed) return;
  objects_.desktopName = name;
  objects_.desktopPath = path;
}

EventSource::Wait AccessibilityBus::wait() const {
  if (!bus_) return {};
  std::uint64_t until = UINT64_MAX;  // in microseconds of CLOCK_MONOTONIC
  sd_bus_get_timeout(bus_.get(), &until);
  EventSource::Wait wait{sd_bus_get_fd(bus_.get()), static_cast<short>(sd_bus_get_events(bus_.get())), {}};
  if (until != UINT64_MAX)
    wait.until = EventSource::Clock::time_point{std::chrono::microseconds{static_cast<std::int64_t>(until)}};
  return wait;
}

void AccessibilityBus::process() {
  if (bus_ && step() < 0) bus_.reset();
}

/// A negative errno when the connection has gone away.
int AccessibilityBus::step() {
  int result = 0;
  do result = sd_bus_process(bus_.get(), nullptr);
  while (result > 0);
  if (result < 0 || stage_ == Stage::failed) return -ECONNRESET;
  if (!address_.empty()) return enter();
  return stage_ == Stage::entering && sd_bus_is_ready(bus_.get()) > 0 ? embed() : 0;
}

}  // namespace desktop
