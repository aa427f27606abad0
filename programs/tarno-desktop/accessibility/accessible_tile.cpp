#include "tarno/accessibility/accessible_tile.hpp"

#include <cerrno>
#include <cstdint>
#include <string_view>
#include <utility>

namespace desktop {
namespace {

using Objects = AccessibleObjects;

constexpr char service[] = "org.a11y.Bus", servicePath[] = "/org/a11y/bus";
constexpr char properties[] = "org.freedesktop.DBus.Properties";
constexpr char registry[] = "org.a11y.atspi.Registry", registryPath[] = "/org/a11y/atspi/registry";

}  // namespace

void AccessibleTile::update(const Frame& frame) {
  isDue_ = true;
  frame_ = frame;
  frame_.picture.reset();
  const auto before = std::exchange(objects_.tree, makeTree(frame_, extents_, scale_));
  if (!isJoined_) return;
  tellChanges(before);
  if (objects_.tree[Objects::notification].name != before[Objects::notification].name) askListeners(nullptr);
}

void AccessibleTile::place(const Area& extents, double scale) {
  if (extents == extents_ && scale == scale_) return;
  extents_ = extents;
  scale_ = scale;
  objects_.tree = makeTree(frame_, extents_, scale_);
}

program::EventSource::Wait AccessibleTile::prepare() {
  if (std::exchange(isDue_, false) && !bus_) openSession();
  if (!bus_) return {};
  std::uint64_t until = UINT64_MAX;  // in microseconds of CLOCK_MONOTONIC
  sd_bus_get_timeout(bus_.get(), &until);
  const auto events = static_cast<short>(sd_bus_get_events(bus_.get()));
  return {
      {{sd_bus_get_fd(bus_.get()), events, 0}},
      until == UINT64_MAX ? Clock::time_point::max() : Clock::time_point{std::chrono::microseconds{until}}};
}

void AccessibleTile::dispatch(short) {
  int result = 1;
  while (bus_ && result > 0) result = sd_bus_process(bus_.get(), nullptr);
  if (result >= 0) return;
  bus_.reset();
  isJoined_ = false;
}

template <auto use>
int AccessibleTile::answered(sd_bus_message* answer, void* self, sd_bus_error*) {
  (static_cast<AccessibleTile*>(self)->*use)(answer);
  return 0;
}

void AccessibleTile::openSession() {
  sd_bus* session = nullptr;
  if (sd_bus_open_user(&session) < 0) return;
  bus_.reset(session);
  constexpr auto* changed = answered<&AccessibleTile::askStatus>;
  sd_bus_match_signal_async(session, nullptr, service, servicePath, properties, "PropertiesChanged", changed,
                            nullptr, this);
  sd_bus_add_match_async(session, nullptr,
                         "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
                         "arg0='org.a11y.Bus'",
                         changed, nullptr, this);
  askStatus(nullptr);
}

/// Asks whether a screen reader runs. Does not start the service that is asked: screen readers start it
/// themselves.
void AccessibleTile::askStatus(sd_bus_message*) {
  sd_bus_message* made = nullptr;
  if (sd_bus_message_new_method_call(bus_.get(), &made, service, servicePath, properties, "Get") < 0) return;
  const tarno::Handle<sd_bus_message, sd_bus_message_unref> call{made};
  sd_bus_message_append(call.get(), "ss", "org.a11y.Status", "IsEnabled");
  sd_bus_message_set_auto_start(call.get(), 0);
  sd_bus_call_async(bus_.get(), nullptr, call.get(), answered<&AccessibleTile::askAddress>, this, 0);
}

void AccessibleTile::askAddress(sd_bus_message* status) {
  int isEnabled = 0;
  if (sd_bus_message_read(status, "v", "b", &isEnabled) > 0 && isEnabled != 0)
    sd_bus_call_method_async(bus_.get(), nullptr, service, servicePath, service, "GetAddress",
                             answered<&AccessibleTile::enter>, this, "");
}

/// Switches from the session bus to the accessibility bus.
void AccessibleTile::enter(sd_bus_message* address) {
  const char* text = nullptr;
  sd_bus* bus = nullptr;
  if (sd_bus_message_read(address, "s", &text) <= 0 || sd_bus_new(&bus) < 0) return;
  const auto session = std::exchange(bus_, decltype(bus_){bus});
  constexpr char local[] = "org.freedesktop.DBus.Local";
  const bool isEntered = sd_bus_set_address(bus, text) >= 0 && sd_bus_set_bus_client(bus, 1) >= 0 &&
                         answerFor(objects_, bus) >= 0 && sd_bus_set_connected_signal(bus, 1) >= 0 &&
                         sd_bus_match_signal_async(bus, nullptr, local, nullptr, local, "Connected",
                                                   answered<&AccessibleTile::follow>, nullptr, this) >= 0 &&
                         sd_bus_start(bus) >= 0;
  if (!isEntered) bus_.reset();
}

/// Asks to be told about new listeners and a new registry.
void AccessibleTile::follow(sd_bus_message*) {
  heard_.clear();  // on another bus, other readers have these names
  sd_bus_match_signal_async(bus_.get(), nullptr, registry, registryPath, registry, "EventListenerRegistered",
                            answered<&AccessibleTile::askListeners>, nullptr, this);
  sd_bus_add_match_async(bus_.get(), nullptr,
                         "type='signal',sender='org.freedesktop.DBus',member='NameOwnerChanged',"
                         "arg0='org.a11y.atspi.Registry'",
                         answered<&AccessibleTile::embedAgain>, nullptr, this);
  embed();
}

void AccessibleTile::embed() {
  const char* name = "";
  sd_bus_get_unique_name(bus_.get(), &name);
  objects_.busName = name;
  sd_bus_call_method_async(bus_.get(), nullptr, registry, "/org/a11y/atspi/accessible/root",
                           "org.a11y.atspi.Socket", "Embed", answered<&AccessibleTile::join>, this, "(so)",
                           name, objects_.tree.front().path.c_str());
}

void AccessibleTile::join(sd_bus_message* desktop) {
  const char *name = nullptr, *path = nullptr;
  if (sd_bus_message_read(desktop, "(so)", &name, &path) <= 0) return bus_.reset();
  objects_.desktopName = name;
  objects_.desktopPath = path;
  isJoined_ = true;
  askListeners(nullptr);
}

/// Registers the application with a new registry, which does not know it yet.
void AccessibleTile::embedAgain(sd_bus_message* owners) {
  const char *name = nullptr, *before = nullptr, *now = "";
  sd_bus_message_read(owners, "sss", &name, &before, &now);
  if (*now && std::exchange(isJoined_, false)) embed();
}

/// Sends an event of `object` to `reader`, or to all listeners if it is null.
template <class... Values>
void AccessibleTile::tell(const char* reader, const AccessibleObject& object, const char* event,
                          const char* kind, int detail, const char* type, Values... values) const {
  sd_bus_message* made = nullptr;
  if (sd_bus_message_new_signal(bus_.get(), &made, object.path.c_str(), "org.a11y.atspi.Event.Object",
                                event) < 0)
    return;
  const tarno::Handle<sd_bus_message, sd_bus_message_unref> message{made};
  sd_bus_message_append(made, "siiva{sv}", kind, detail, 0, type, values..., 0);
  if (reader) sd_bus_message_set_destination(made, reader);
  sd_bus_send(bus_.get(), made, nullptr);
}

void AccessibleTile::tellChanges(const std::vector<AccessibleObject>& before) const {
  constexpr std::size_t first = Objects::firstElement;
  const auto& now = objects_.tree;
  const auto tellChild = [&](const char* kind, const AccessibleObject& child, std::size_t number) {
    tell(nullptr, now[Objects::window], "ChildrenChanged", kind, static_cast<int>(number - first), "(so)",
         objects_.busName.c_str(), child.path.c_str());
  };
  for (auto i = before.size(); i-- > first;)
    if (i >= now.size() || now[i].path != before[i].path) tellChild("remove", before[i], i);
  for (auto i = first; i < now.size(); ++i) {
    const bool isNew = i >= before.size() || now[i].path != before[i].path;
    if (isNew) tellChild("add", now[i], i);
    if (isNew || now[i].name != before[i].name)
      tell(nullptr, now[i], "PropertyChange", "accessible-name", 0, "s", now[i].name.c_str());
  }
}

void AccessibleTile::askListeners(sd_bus_message*) {
  if (isJoined_)
    sd_bus_call_method_async(bus_.get(), nullptr, registry, registryPath, registry, "GetRegisteredEvents",
                             answered<&AccessibleTile::announce>, this, "");
}

/// Tells the announcement to each reader that has not heard it yet, as an announcement if the reader supports
/// that, otherwise as a notification.
void AccessibleTile::announce(sd_bus_message* listeners) {
  if (sd_bus_message_enter_container(listeners, 'a', "(ss)") <= 0) return;
  std::map<std::string, bool> readers;  // the bus name of each, and whether it supports announcements
  const char *reader = nullptr, *event = nullptr;
  while (sd_bus_message_read(listeners, "(ss)", &reader, &event) > 0) {
    const std::string_view kind = event;
    if (kind.starts_with("Object:Announcement"))
      readers[reader] = true;
    else if (kind.starts_with("Object:StateChanged"))
      readers.try_emplace(reader, false);
  }
  const auto& said = objects_.tree[Objects::notification];
  constexpr int polite = 1;  // AtspiLive
  for (const auto& [name, takesAnnouncements] : readers) {
    // Readers stay in heard_ when they leave, because some leave and return whenever the focus changes.
    if (std::exchange(heard_[name], said.name) == said.name) continue;
    if (takesAnnouncements)
      tell(name.c_str(), objects_.tree[Objects::window], "Announcement", "", polite, "s", said.name.c_str());
    else
      tell(name.c_str(), said, "StateChanged", "showing", 1, "i", 0);
  }
}

}  // namespace desktop
