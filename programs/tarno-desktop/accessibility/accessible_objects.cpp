#include "tarno/accessibility/accessible_objects.hpp"

#include <libintl.h>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <string_view>
#include <type_traits>

#include "tarno/foundation/handle.hpp"

namespace desktop {
namespace {

using Objects = AccessibleObjects;

namespace role {
constexpr AccessibleRole frame{23, "frame"}, image{27, "image"}, label{29, "label"},
    application{75, "application"}, notification{101, "notification"};
}

/// A request about an object, and the message for the reply.
struct Question {
  static constexpr int none = -1;

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
  /// Returns the origin of a coordinate system, an AtspiCoordType: 0 is the screen, 1 the window, 2 the
  /// parent.
  Area origin(unsigned type) const {
    return type == 1 ? at(Objects::window).bounds : type == 2 ? at(parent()).bounds : Area{};
  }
  /// Returns the bounds of the object in the coordinate system that the call asks for.
  Area bounds() const {
    unsigned type = 0;
    read("u", &type);
    const auto& [x, y, width, height] = at(object).bounds;
    return {x - origin(type).x, y - origin(type).y, width, height};
  }
  /// Returns a function that returns whether an object contains the point of the call.
  auto containing() const {
    int x = 0, y = 0;
    unsigned type = 0;
    read("iiu", &x, &y, &type);
    x += origin(type).x;
    y += origin(type).y;
    return [*this, x, y](int index) {
      const Area& area = at(index).bounds;
      return x >= area.x && y >= area.y && x < area.x + area.width && y < area.y + area.height;
    };
  }

  void read(const char* types, auto*... values) const { sd_bus_message_read(call, types, values...); }
  void add(const char* types, auto... values) const { sd_bus_message_append(answer, types, values...); }
  void addReference(int to) const {
    add("(so)", objects.busName.c_str(), to == none ? "/org/a11y/atspi/null" : at(to).path.c_str());
  }
};

using Q = const Question&;

void addParent(Q q) {
  if (q.object != Objects::application) return q.addReference(q.parent());
  q.add("(so)", q.objects.desktopName.c_str(), q.objects.desktopPath.c_str());
}

void addChild(Q q) {
  int index = -1;
  q.read("i", &index);
  q.addReference(index >= 0 && index < q.childCount() ? q.firstChild() + index : Question::none);
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

void addExtents(Q q) {
  const Area area = q.bounds();
  q.add("(iiii)", area.x, area.y, area.width, area.height);
}

void addPosition(Q q) {
  const Area area = q.bounds();
  q.add("ii", area.x, area.y);
}

void addObjectAtPoint(Q q) {
  const auto isAt = q.containing();
  int found = isAt(q.object) ? q.object : Question::none;
  for (int i = 0; i < q.childCount(); ++i)
    if (isAt(q.firstChild() + i)) found = q.firstChild() + i;
  q.addReference(found);
}

/// Adds the name of the role in the language of the session.
void addLocalizedRole(Q q) {
  constexpr char domain[] = "at-spi2-core";
  const tarno::Handle<std::remove_pointer_t<locale_t>, freelocale> language{
      newlocale(LC_MESSAGES_MASK, "", nullptr)};
  bind_textdomain_codeset(domain, "UTF-8");
  const locale_t before = uselocale(language.get());  // null changes nothing
  q.add("s", dgettext(domain, q.at(q.object).role.name));
  uselocale(before);
}

/// The methods and properties of the interfaces Accessible, Application and Component that libatspi and Orca
/// use, and the functions that answer them.
constexpr struct {
  std::string_view name;
  const char* type;  ///< the type of a property; empty for a method
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
    {"GetRole", "", [](Q q) { q.add("u", q.at(q.object).role.number); }},
    {"GetRoleName", "", [](Q q) { q.add("s", q.at(q.object).role.name); }},
    {"GetLocalizedRoleName", "", addLocalizedRole},
    // AtspiStateType: enabled, sensitive, showing, visible
    {"GetState", "", [](Q q) { q.add("au", 2, 1U << 8 | 1U << 24 | 1U << 25 | 1U << 30, 0U); }},
    {"GetAttributes", "", [](Q q) { q.add("a{ss}", 0); }},
    {"GetApplication", "", [](Q q) { q.addReference(Objects::application); }},
    {"GetInterfaces", "", addInterfaces},
    {"ToolkitName", "s", [](Q q) { q.add("s", "tarno"); }},
    {"Contains", "", [](Q q) { q.add("b", q.containing()(q.object)); }},
    {"GetAccessibleAtPoint", "", addObjectAtPoint},
    {"GetExtents", "", addExtents},
    {"GetPosition", "", addPosition},
    {"GetSize", "", [](Q q) { q.add("ii", q.at(q.object).bounds.width, q.at(q.object).bounds.height); }},
    // AtspiComponentLayer: the window layer, or the widget layer
    {"GetLayer", "", [](Q q) { q.add("u", q.object == Objects::window ? 7 : 3); }},
    {"GrabFocus", "", [](Q q) { q.add("b", false); }}};

/// Answers a request about an object. Leaves unknown requests to the bus library, which returns an error.
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
      {role::application, folder + "root", "tarno-desktop", {}},
      {role::frame, folder + "window", frame.title, extents},
      {role::notification, folder + "notification", frame.announcement, extents}};
  for (const auto& [kind, label, x, y, width, height] : frame.elements) {
    const int left = pixels(x), top = pixels(y);
    const Area bounds{extents.x + left, extents.y + top, pixels(x + width) - left, pixels(y + height) - top};
    tree.push_back({kind == "image" ? role::image : role::label, folder + kind + std::to_string(tree.size()),
                    label, bounds});
  }
  return tree;
}

int answerFor(AccessibleObjects& objects, sd_bus* bus) {
  // Clients print errors if there is no cache. With an empty one, they ask each object.
  const auto addNothing = [](sd_bus_message* call, void*, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "a((so)(so)(so)iiassusau)", 0);
  };
  const int error = sd_bus_add_object(bus, nullptr, "/org/a11y/atspi/cache", addNothing, nullptr);
  return error < 0 ? error
                   : sd_bus_add_fallback(bus, nullptr, "/org/a11y/atspi/accessible", answer, &objects);
}

}  // namespace desktop
