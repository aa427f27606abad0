#include "accessibility/object_answers.hpp"

#include <utility>

#include "accessibility/question.hpp"

namespace desktop {
namespace {

using Q = const Question&;

template <class Answer>
constexpr sd_bus_vtable property(const char* name, const char* type, Answer) {
  const auto get = [](sd_bus*, const char* path, const char*, const char*, sd_bus_message* answer,
                      void* objects, sd_bus_error*) -> int {
    const auto& known = *static_cast<const ObjectsOnBus*>(objects);
    return Answer{}({known, objectWithPath(known.tree, path), nullptr, answer});
  };
  return SD_BUS_PROPERTY(name, type, get, 0, 0);
}

template <class Answer>
constexpr sd_bus_vtable method(const char* name, const char* arguments, const char* result, Answer) {
  const auto handle = [](sd_bus_message* call, void* objects, sd_bus_error*) -> int {
    const auto& known = *static_cast<const ObjectsOnBus*>(objects);
    const int object = objectWithPath(known.tree, sd_bus_message_get_path(call));
    sd_bus_message* answer = nullptr;
    int error = sd_bus_message_new_method_return(call, &answer);
    if (error >= 0) error = Answer{}({known, object, call, answer});
    if (error >= 0) error = sd_bus_send(nullptr, answer, nullptr);
    sd_bus_message_unref(answer);
    return error;
  };
  return SD_BUS_METHOD(name, arguments, result, handle, SD_BUS_VTABLE_UNPRIVILEGED);
}

const sd_bus_vtable accessible[] = {
    SD_BUS_VTABLE_START(0),
    property("Name", "s", [](Q q) { return q.add("s", q.it().name.c_str()); }),
    property("Description", "s", [](Q q) { return q.add("s", ""); }),
    property("Parent", "(so)", [](Q q) { return q.addParent(); }),
    property("ChildCount", "i", [](Q q) { return q.add("i", q.childCount()); }),
    method("GetChildAtIndex", "i", "(so)", [](Q q) { return q.addChild(q.argument()); }),
    method("GetChildren", "", "a(so)", [](Q q) { return q.addChildren(); }),
    method("GetIndexInParent", "", "i", [](Q q) { return q.add("i", q.indexInParent()); }),
    method("GetRelationSet", "", "a(ua(so))", [](Q q) { return q.add("a(ua(so))", 0); }),
    method("GetRole", "", "u", [](Q q) { return q.add("u", q.it().role); }),
    method("GetRoleName", "", "s", [](Q q) { return q.add("s", q.it().roleName); }),
    method("GetLocalizedRoleName", "", "s", [](Q q) { return q.add("s", q.it().roleName); }),
    method("GetState", "", "au", [](Q q) { return q.addStates(); }),
    method("GetAttributes", "", "a{ss}", [](Q q) { return q.add("a{ss}", 0); }),
    method("GetApplication", "", "(so)", [](Q q) { return q.addReference(0); }),
    method("GetInterfaces", "", "as", [](Q q) { return q.addInterfaces(); }),
    SD_BUS_VTABLE_END};

const sd_bus_vtable application[] = {
    SD_BUS_VTABLE_START(0),
    property("ToolkitName", "s", [](Q q) { return q.add("s", "tarno"); }),
    property("Version", "s", [](Q q) { return q.add("s", ""); }),
    property("AtspiVersion", "s", [](Q q) { return q.add("s", "2.1"); }),
    SD_BUS_WRITABLE_PROPERTY("Id", "i", nullptr, nullptr, 0, SD_BUS_VTABLE_UNPRIVILEGED),  // applicationId
    SD_BUS_VTABLE_END};

const sd_bus_vtable component[] = {
    SD_BUS_VTABLE_START(0),
    method("Contains", "iiu", "b", [](Q q) { return q.add("b", q.objectAtPoint() >= 0); }),
    method("GetAccessibleAtPoint", "iiu", "(so)", [](Q q) { return q.addReference(q.objectAtPoint()); }),
    method("GetExtents", "u", "(iiii)", [](Q q) { return q.addExtents(); }),
    method("GetPosition", "u", "ii", [](Q q) { return q.addPosition(); }),
    method("GetSize", "", "ii", [](Q q) { return q.addSize(); }),
    // AtspiComponentLayer: 7 for a window, 3 for what is in one
    method("GetLayer", "", "u", [](Q q) { return q.add("u", q.object == 1 ? 7 : 3); }), SD_BUS_VTABLE_END};

const sd_bus_vtable cache[] = {
    SD_BUS_VTABLE_START(0),
    method("GetItems", "", "a((so)(so)(so)iiassusau)", [](Q q) { return q.addItems(); }), SD_BUS_VTABLE_END};

/// Whether there is an object with that path and interface.
int find(sd_bus*, const char* path, const char* interface, void* objects, void** found, sd_bus_error*) {
  *found = objects;
  const int object = objectWithPath(static_cast<const ObjectsOnBus*>(objects)->tree, path);
  return interface == std::string_view{applicationName} ? object == 0
         : interface == std::string_view{componentName} ? object > 0
                                                        : object >= 0;
}

}  // namespace

int answerFor(ObjectsOnBus& objects, sd_bus* bus) {
  int error = sd_bus_add_object_vtable(bus, nullptr, "/org/a11y/atspi/cache", "org.a11y.atspi.Cache", cache,
                                       &objects);
  const std::pair<const char*, const sd_bus_vtable*> interfaces[] = {
      {accessibleName, accessible}, {applicationName, application}, {componentName, component}};
  for (const auto& [name, answers] : interfaces)
    if (error >= 0)
      error = sd_bus_add_fallback_vtable(bus, nullptr, "/org/a11y/atspi/accessible", name, answers, find,
                                         &objects);
  return error;
}

}  // namespace desktop
