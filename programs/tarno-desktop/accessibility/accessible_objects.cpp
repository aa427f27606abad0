#include "accessibility/accessible_objects.hpp"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace desktop {
namespace {

constexpr char accessibleName[] = "org.a11y.atspi.Accessible", componentName[] = "org.a11y.atspi.Component",
               applicationName[] = "org.a11y.atspi.Application";

/// -1 for a path without an object.
int indexOf(const AccessibleObjects& objects, std::string_view path) {
  const auto& tree = objects.tree;
  const auto isThere = [path](const auto& object) { return object.path == path; };
  const auto found = std::find_if(tree.begin(), tree.end(), isThere);
  return found == tree.end() ? -1 : static_cast<int>(found - tree.begin());
}

/// A question about an object, and what takes the answer. What adds to that returns a negative errno on
/// failure.
struct Question {
  const AccessibleObjects& objects;
  int object;
  sd_bus_message* call;  ///< null when a property is asked for
  sd_bus_message* answer;

  const AccessibleObject& at(int index) const { return objects.tree[static_cast<std::size_t>(index)]; }
  const AccessibleObject& it() const { return at(object); }
  int parent() const { return object <= AccessibleObjects::window ? object - 1 : AccessibleObjects::window; }
  int firstChild() const { return object == 0 ? AccessibleObjects::window : AccessibleObjects::firstElement; }
  int childCount() const {
    return object == 0                           ? 1
           : object == AccessibleObjects::window ? static_cast<int>(objects.tree.size()) - firstChild()
                                                 : 0;
  }

  /// The next argument, an `i` or a `u`.
  int argument() const {
    char type = 0;
    int value = 0;
    sd_bus_message_peek_type(call, &type, nullptr);
    sd_bus_message_read_basic(call, type, &value);
    return value;
  }
  /// The object's place from where the next argument, an AtspiCoordType, counts: 0 the screen, 1 the window,
  /// 2 the parent.
  Area bounds() const {
    const int type = argument();
    const Area origin = type == 1 ? at(1).bounds : type == 2 ? at(parent()).bounds : Area{};
    return {it().bounds.x - origin.x, it().bounds.y - origin.y, it().bounds.width, it().bounds.height};
  }

  template <class... Values>
  int add(const char* types, Values... values) const {
    return sd_bus_message_append(answer, types, values...);
  }
  int addReference(int to) const {
    return add("(so)", objects.busName.c_str(), to < 0 ? "/org/a11y/atspi/null" : at(to).path.c_str());
  }
  int addParent() const {
    return object > 0 ? addReference(parent())
                      : add("(so)", objects.parentName.c_str(), objects.parentPath.c_str());
  }
  int addChild(int index) const {
    return addReference(index >= 0 && index < childCount() ? firstChild() + index : -1);
  }
  int addChildren() const {
    sd_bus_message_open_container(answer, 'a', "(so)");
    for (int i = 0; i < childCount(); ++i) addChild(i);
    return sd_bus_message_close_container(answer);
  }
  int addIndexInParent() const {
    return add("i", object <= 1 ? 0 : object - AccessibleObjects::firstElement);
  }
  int addContains() const {
    const int x = argument(), y = argument();
    const Area area = bounds();
    return add("b", x >= area.x && y >= area.y && x < area.x + area.width && y < area.y + area.height);
  }
  int addExtents() const {
    const Area area = bounds();
    return add("(iiii)", area.x, area.y, area.width, area.height);
  }
};

using Q = const Question&;

template <class Answer>
constexpr sd_bus_vtable property(const char* name, const char* type, Answer) {
  const auto get = [](sd_bus*, const char* path, const char*, const char*, sd_bus_message* answer, void* data,
                      sd_bus_error*) -> int {
    const auto& objects = *static_cast<const AccessibleObjects*>(data);
    return Answer{}({objects, indexOf(objects, path), nullptr, answer});
  };
  return SD_BUS_PROPERTY(name, type, get, 0, 0);
}

template <class Answer>
constexpr sd_bus_vtable method(const char* name, const char* arguments, const char* result, Answer) {
  const auto handle = [](sd_bus_message* call, void* data, sd_bus_error*) -> int {
    const auto& objects = *static_cast<const AccessibleObjects*>(data);
    sd_bus_message* answer = nullptr;
    int error = sd_bus_message_new_method_return(call, &answer);
    if (error >= 0)
      error = Answer{}({objects, indexOf(objects, sd_bus_message_get_path(call)), call, answer});
    if (error >= 0) error = sd_bus_send(nullptr, answer, nullptr);
    sd_bus_message_unref(answer);
    return error;
  };
  return SD_BUS_METHOD(name, arguments, result, handle, SD_BUS_VTABLE_UNPRIVILEGED);
}

const sd_bus_vtable accessible[] = {
    SD_BUS_VTABLE_START(0), property("Name", "s", [](Q q) { return q.add("s", q.it().name.c_str()); }),
    property("Description", "s", [](Q q) { return q.add("s", ""); }),
    property("Parent", "(so)", [](Q q) { return q.addParent(); }),
    property("ChildCount", "i", [](Q q) { return q.add("i", q.childCount()); }),
    method("GetChildAtIndex", "i", "(so)", [](Q q) { return q.addChild(q.argument()); }),
    method("GetChildren", "", "a(so)", [](Q q) { return q.addChildren(); }),
    method("GetIndexInParent", "", "i", [](Q q) { return q.addIndexInParent(); }),
    method("GetRelationSet", "", "a(ua(so))", [](Q q) { return q.add("a(ua(so))", 0); }),
    method("GetRole", "", "u", [](Q q) { return q.add("u", q.it().role); }),
    method("GetRoleName", "", "s", [](Q q) { return q.add("s", q.it().roleName); }),
    method("GetLocalizedRoleName", "", "s", [](Q q) { return q.add("s", q.it().roleName); }),
    // AtspiStateType: enabled, sensitive, showing, visible
    method("GetState", "", "au",
           [](Q q) { return q.add("au", 2, 1U << 8 | 1U << 24 | 1U << 25 | 1U << 30, 0U); }),
    method("GetAttributes", "", "a{ss}", [](Q q) { return q.add("a{ss}", 0); }),
    method("GetApplication", "", "(so)", [](Q q) { return q.addReference(0); }),
    method(
        "GetInterfaces", "", "as",
        [](Q q) { return q.add("as", 2, accessibleName, q.object > 0 ? componentName : applicationName); }),
    SD_BUS_VTABLE_END};

const sd_bus_vtable application[] = {
    SD_BUS_VTABLE_START(0),
    property("ToolkitName", "s", [](Q q) { return q.add("s", "tarno"); }),
    property("Version", "s", [](Q q) { return q.add("s", ""); }),
    property("AtspiVersion", "s", [](Q q) { return q.add("s", "2.1"); }),
    SD_BUS_WRITABLE_PROPERTY("Id", "i", nullptr, nullptr, offsetof(AccessibleObjects, applicationId),
                             SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};

const sd_bus_vtable component[] = {
    SD_BUS_VTABLE_START(0), method("Contains", "iiu", "b", [](Q q) { return q.addContains(); }),
    method("GetExtents", "u", "(iiii)", [](Q q) { return q.addExtents(); }), SD_BUS_VTABLE_END};

/// Clients complain where it is missing. They ask about each object as they need it.
const sd_bus_vtable cache[] = {SD_BUS_VTABLE_START(0),
                               method("GetItems", "", "a((so)(so)(so)iiassusau)",
                                      [](Q q) { return q.add("a((so)(so)(so)iiassusau)", 0); }),
                               SD_BUS_VTABLE_END};

/// Whether there is an object with that path and interface.
int find(sd_bus*, const char* path, const char* interface, void* data, void** found, sd_bus_error*) {
  *found = data;
  const int object = indexOf(*static_cast<const AccessibleObjects*>(data), path);
  return interface == std::string_view{applicationName} ? object == 0
         : interface == std::string_view{componentName} ? object > 0
                                                        : object >= 0;
}

}  // namespace

std::vector<AccessibleObject> makeTree(const Frame& frame, const Area& extents, double scale) {
  const std::string folder = "/org/a11y/atspi/accessible/";
  const auto pixels = [scale](double points) { return static_cast<int>(std::lround(points * scale)); };
  std::vector<AccessibleObject> tree{
      {75, "application", folder + "root", "tarno-desktop", {}},
      {23, "frame", folder + "window", frame.title, extents},
      {101, "notification", folder + "notification", frame.announcement, extents}};
  for (const auto& [role, label, x, y, width, height] : frame.elements) {
    const int left = pixels(x), top = pixels(y);
    const Area bounds{extents.x + left, extents.y + top, pixels(x + width) - left, pixels(y + height) - top};
    const bool isImage = role == "image";
    const char* const roleName = isImage ? "image" : "label";
    tree.push_back(
        {isImage ? 27U : 29U, roleName, folder + (roleName + std::to_string(tree.size())), label, bounds});
  }
  return tree;
}

int answerFor(AccessibleObjects& objects, sd_bus* bus) {
  int error = sd_bus_add_object_vtable(bus, nullptr, "/org/a11y/atspi/cache", "org.a11y.atspi.Cache", cache,
                                       &objects);
  for (const auto& [name, answers] : std::initializer_list<std::pair<const char*, const sd_bus_vtable*>>{
           {accessibleName, accessible}, {applicationName, application}, {componentName, component}})
    if (error >= 0)
      error = sd_bus_add_fallback_vtable(bus, nullptr, "/org/a11y/atspi/accessible", name, answers, find,
                                         &objects);
  return error;
}

}  // namespace desktop
