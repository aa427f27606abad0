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

/// A request about an object, and the message for the reply.
struct Question {
  const Objects& objects;
  int object;
  sd_bus_message *call, *answer;

  const AccessibleObject& at(int index) const { return objects.tree[static_cast<std::size_t>(index)]; }
  int parent() const { return object == Objects::window ? Objects::application : Objects::window; }
  int firstChild() const { return object == Objects::application ? Objects::window : Objects::firstElement; }
  int childCount() const {
    if (object == Objects::application) return 1;
    return object == Objects::window ? static_cast<int>(objects.tree.size()) - firstChild() : 0;
  }
  /// From `origin`, an AtspiCoordType: 0 the screen, 1 the window, 2 the parent.
  Area bounds(unsigned origin) const {
    const Area from = origin == 1 ? at(Objects::window).bounds : origin == 2 ? at(parent()).bounds : Area{};
    const auto& [x, y, width, height] = at(object).bounds;
    return {x - from.x, y - from.y, width, height};
  }

  void read(const char* types, auto*... values) const { sd_bus_message_read(call, types, values...); }
  void add(const char* types, auto... values) const { sd_bus_message_append(answer, types, values...); }
  void addReference(int to) const { add("(so)", objects.busName.c_str(), at(to).path.c_str()); }
};

using Q = const Question&;

void addParent(Q q) {
  if (q.object != Objects::application) return q.addReference(q.parent());
  q.add("(so)", q.objects.desktopName.c_str(), q.objects.desktopPath.c_str());
}

void addChild(Q q) {
  int index = -1;
  q.read("i", &index);
  if (index >= 0 && index < q.childCount()) return q.addReference(q.firstChild() + index);
  q.add("(so)", q.objects.busName.c_str(), "/org/a11y/atspi/null");
}

void addChildren(Q q) {
  sd_bus_message_open_container(q.answer, 'a', "(so)");
  for (int i = 0; i < q.childCount(); ++i) q.addReference(q.firstChild() + i);
  sd_bus_message_close_container(q.answer);
}

void addInterfaces(Q q) {
  const bool isApplication = q.object == Objects::application;
  q.add("as", 2, "org.a11y.atspi.Accessible",
        isApplication ? "org.a11y.atspi.Application" : "org.a11y.atspi.Component");
}

void addContains(Q q) {
  int x = 0, y = 0;
  unsigned origin = 0;
  q.read("iiu", &x, &y, &origin);
  const Area area = q.bounds(origin);
  q.add("b", x >= area.x && y >= area.y && x < area.x + area.width && y < area.y + area.height);
}

void addExtents(Q q) {
  unsigned origin = 0;
  q.read("u", &origin);
  const Area area = q.bounds(origin);
  q.add("(iiii)", area.x, area.y, area.width, area.height);
}

/// The methods and properties of the interfaces Accessible, Application and Component that libatspi and Orca
/// ask for.
constexpr struct {
  std::string_view name;
  const char* type;  ///< of a property
  void (*add)(Q question);
} answers[] = {
    {"Name", "s", [](Q q) { q.add("s", q.at(q.object).name.c_str()); }},
    {"Description", "s", [](Q q) { q.add("s", ""); }},
    {"Parent", "(so)", addParent},
    {"ChildCount", "i", [](Q q) { q.add("i", q.childCount()); }},
    {"GetChildAtIndex", "", addChild},
    {"GetChildren", "", addChildren},
    {"GetIndexInParent", "", [](Q q) { q.add("i", std::max(0, q.object - Objects::firstElement)); }},
    {"GetRelationSet", "", [](Q q) { q.add("a(ua(so))", 0); }},
    {"GetRole", "", [](Q q) { q.add("u", q.at(q.object).role); }},
    // AtspiStateType: enabled, sensitive, showing, visible
    {"GetState", "", [](Q q) { q.add("au", 2, 1U << 8 | 1U << 24 | 1U << 25 | 1U << 30, 0U); }},
    {"GetAttributes", "", [](Q q) { q.add("a{ss}", 0); }},
    {"GetApplication", "", [](Q q) { q.addReference(Objects::application); }},
    {"GetInterfaces", "", addInterfaces},
    {"ToolkitName", "s", [](Q q) { q.add("s", "tarno"); }},
    {"Contains", "", addContains},
    {"GetExtents", "", addExtents}};

/// Unknown requests are left to the bus library, which returns an error.
int answer(sd_bus_message* call, void* data, sd_bus_error*) {
  const auto& objects = *static_cast<const Objects*>(data);
  const std::string_view path = sd_bus_message_get_path(call);
  const char *interface = nullptr, *name = sd_bus_message_get_member(call);
  const bool isProperty = sd_bus_message_is_method_call(call, "org.freedesktop.DBus.Properties", "Get") > 0;
  if (isProperty) sd_bus_message_read(call, "ss", &interface, &name);
  const auto object = std::ranges::find(objects.tree, path, &AccessibleObject::path);
  const auto found = std::ranges::find_if(answers, [name](auto& one) { return name && one.name == name; });
  if (object == objects.tree.end() || found == std::end(answers)) return 0;
  sd_bus_message* message = nullptr;
  if (const int error = sd_bus_message_new_method_return(call, &message); error < 0) return error;
  const tarno::Handle<sd_bus_message, sd_bus_message_unref> owner{message};
  if (isProperty) sd_bus_message_open_container(message, 'v', found->type);
  found->add({objects, static_cast<int>(object - objects.tree.begin()), call, message});
  if (isProperty) sd_bus_message_close_container(message);
  const int error = sd_bus_send(nullptr, message, nullptr);
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
  // Clients print errors if there is no cache. If it is empty, they ask each object.
  const auto addNothing = [](sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "a((so)(so)(so)iiassusau)", 0);
  };
  const int error = sd_bus_add_object(bus, nullptr, "/org/a11y/atspi/cache", addNothing, nullptr);
  return error < 0 ? error
                   : sd_bus_add_fallback(bus, nullptr, "/org/a11y/atspi/accessible", answer, &objects);
}

}  // namespace desktop
