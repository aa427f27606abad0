#include "tarno/accessibility/accessible_objects.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "tarno/foundation/handle.hpp"

namespace desktop {
namespace {

using Objects = AccessibleObjects;

namespace atspi_role {
constexpr int frame = 23, image = 27, label = 29, application = 75, notification = 101;
}

/// A question about an object, and what takes the answer.
struct Question {
  const Objects& objects;
  int object;
  sd_bus_message* call;
  sd_bus_message* answer;

  const AccessibleObject& at(int index) const { return objects.tree[static_cast<std::size_t>(index)]; }
  const AccessibleObject& it() const { return at(object); }
  int parent() const { return object == Objects::window ? Objects::application : Objects::window; }
  int firstChild() const { return object == Objects::application ? Objects::window : Objects::firstElement; }
  int childCount() const {
    if (object == Objects::application) return 1;
    return object == Objects::window ? static_cast<int>(objects.tree.size()) - firstChild() : 0;
  }

  /// From where `origin`, an AtspiCoordType, counts: 0 the screen, 1 the window, 2 the parent.
  Area bounds(unsigned origin) const {
    const Area from = origin == 1 ? at(Objects::window).bounds : origin == 2 ? at(parent()).bounds : Area{};
    const auto& [x, y, width, height] = it().bounds;
    return {x - from.x, y - from.y, width, height};
  }

  template <class... Values>
  void add(const char* types, Values... values) const {
    sd_bus_message_append(answer, types, values...);
  }
  void addReference(int to) const {
    add("(so)", objects.busName.c_str(), to < 0 ? "/org/a11y/atspi/null" : at(to).path.c_str());
  }
  void addParent() const {
    if (object != Objects::application) return addReference(parent());
    add("(so)", objects.desktopName.c_str(), objects.desktopPath.c_str());
  }
  void addChild() const {
    int index = -1;
    sd_bus_message_read(call, "i", &index);
    addReference(index >= 0 && index < childCount() ? firstChild() + index : -1);
  }
  void addChildren() const {
    sd_bus_message_open_container(answer, 'a', "(so)");
    for (int i = 0; i < childCount(); ++i) addReference(firstChild() + i);
    sd_bus_message_close_container(answer);
  }
  void addContains() const {
    int x = 0, y = 0;
    unsigned origin = 0;
    sd_bus_message_read(call, "iiu", &x, &y, &origin);
    const Area area = bounds(origin);
    add("b", x >= area.x && y >= area.y && x < area.x + area.width && y < area.y + area.height);
  }
  void addExtents() const {
    unsigned origin = 0;
    sd_bus_message_read(call, "u", &origin);
    const Area area = bounds(origin);
    add("(iiii)", area.x, area.y, area.width, area.height);
  }
};

/// What is answered to a method, or to a question for a property.
struct Answer {
  std::string_view name;
  const char* type;  ///< of a property
  void (*add)(const Question& question);
};

using Q = const Question&;

// Of the interfaces Accessible, Application and Component what libatspi and Orca ask for.
constexpr Answer answers[] = {
    {"Name", "s", [](Q q) { q.add("s", q.it().name.c_str()); }},
    {"Description", "s", [](Q q) { q.add("s", ""); }},
    {"Parent", "(so)", [](Q q) { q.addParent(); }},
    {"ChildCount", "i", [](Q q) { q.add("i", q.childCount()); }},
    {"GetChildAtIndex", "", [](Q q) { q.addChild(); }},
    {"GetChildren", "", [](Q q) { q.addChildren(); }},
    {"GetIndexInParent", "", [](Q q) { q.add("i", std::max(0, q.object - Objects::firstElement)); }},
    {"GetRelationSet", "", [](Q q) { q.add("a(ua(so))", 0); }},
    {"GetRole", "", [](Q q) { q.add("u", q.it().role); }},
    // AtspiStateType: enabled, sensitive, showing, visible
    {"GetState", "", [](Q q) { q.add("au", 2, 1U << 8 | 1U << 24 | 1U << 25 | 1U << 30, 0U); }},
    {"GetAttributes", "", [](Q q) { q.add("a{ss}", 0); }},
    {"GetApplication", "", [](Q q) { q.addReference(Objects::application); }},
    {"GetInterfaces", "",
     [](Q q) {
       q.add("as", 2, "org.a11y.atspi.Accessible",
             q.object == Objects::application ? "org.a11y.atspi.Application" : "org.a11y.atspi.Component");
     }},
    {"ToolkitName", "s", [](Q q) { q.add("s", "tarno"); }},
    {"Contains", "", [](Q q) { q.addContains(); }},
    {"GetExtents", "", [](Q q) { q.addExtents(); }}};

/// Leaves what nobody can answer to the bus library, which returns an error.
int answer(sd_bus_message* call, void* data, sd_bus_error*) {
  const auto& objects = *static_cast<const Objects*>(data);
  const std::string_view path = sd_bus_message_get_path(call);
  const auto object = std::find_if(objects.tree.begin(), objects.tree.end(),
                                   [path](const auto& one) { return one.path == path; });
  const char *interface = nullptr, *name = sd_bus_message_get_member(call);
  const bool isProperty = sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "Get") > 0;
  if (isProperty) sd_bus_message_read(call, "ss", &interface, &name);
  const auto found = std::find_if(std::begin(answers), std::end(answers),
                                  [name](const Answer& one) { return name && one.name == name; });
  if (object == objects.tree.end() || found == std::end(answers)) return 0;
  sd_bus_message* made = nullptr;
  if (const int error = sd_bus_message_new_method_return(call, &made); error < 0) return error;
  const tarno::Handle<sd_bus_message, sd_bus_message_unref> message{made};
  if (isProperty) sd_bus_message_open_container(made, 'v', found->type);
  found->add({objects, static_cast<int>(object - objects.tree.begin()), call, made});
  if (isProperty) sd_bus_message_close_container(made);
  const int error = sd_bus_send(nullptr, made, nullptr);
  return error < 0 ? error : 1;
}

}  // namespace

std::vector<AccessibleObject> makeTree(const Frame& frame, const Area& extents, double scale) {
  const std::string folder = "/org/a11y/atspi/accessible/";
  const auto pixels = [scale](double points) { return static_cast<int>(std::lround(points * scale)); };
  std::vector<AccessibleObject> tree{
      {atspi_role::application, folder + "root", "tarno-desktop", {}},
      {atspi_role::frame, folder + "window", frame.title, extents},
      {atspi_role::notification, folder + "notification", frame.announcement, extents}};
  for (const auto& [role, label, x, y, width, height] : frame.elements) {
    const int left = pixels(x), top = pixels(y);
    const Area bounds{extents.x + left, extents.y + top, pixels(x + width) - left, pixels(y + height) - top};
    tree.push_back({role == "image" ? atspi_role::image : atspi_role::label,
                    folder + role + std::to_string(tree.size()), label, bounds});
  }
  return tree;
}

int answerFor(AccessibleObjects& objects, sd_bus* bus) {
  // Clients complain where there is no cache; where it is empty, they ask each object.
  const auto addNothing = [](sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "a((so)(so)(so)iiassusau)", 0);
  };
  const int error = sd_bus_add_object(bus, nullptr, "/org/a11y/atspi/cache", addNothing, nullptr);
  return error < 0 ? error
                   : sd_bus_add_fallback(bus, nullptr, "/org/a11y/atspi/accessible", answer, &objects);
}

}  // namespace desktop
