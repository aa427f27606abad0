#pragma once

#include <systemd/sd-bus.h>

#include "accessibility/object_answers.hpp"

namespace desktop {

/// A question about an object, and what takes the answer. What adds to that returns a negative errno on
/// failure.
struct Question {
  const ObjectsOnBus& known;
  int object;
  sd_bus_message* call;  ///< null when a property is asked for
  sd_bus_message* answer;

  const AccessibleObject& at(int index) const { return known.tree[static_cast<std::size_t>(index)]; }
  const AccessibleObject& it() const { return at(object); }
  int childCount() const { return desktop::childCount(known.tree, object); }
  int indexInParent() const { return object - it().parent - 1; }

  /// The next argument, an `i` or a `u`.
  int argument() const {
    char type = 0;
    int value = 0;
    sd_bus_message_peek_type(call, &type, nullptr);
    sd_bus_message_read_basic(call, type, &value);
    return value;
  }
  /// What the next argument, an AtspiCoordType, counts from: 0 the screen, 1 the window, 2 the parent.
  Area origin() const {
    const int type = argument();
    return type == 1 ? at(1).bounds : type == 2 ? at(it().parent).bounds : Area{};
  }
  int objectAtPoint() const {
    const int x = argument(), y = argument();
    const Area from = origin();
    return objectAt(known.tree, object, from.x + x, from.y + y);
  }

  template <class... Values>
  int add(const char* types, Values... values) const {
    return sd_bus_message_append(answer, types, values...);
  }
  int addReference(int to) const {
    return add("(so)", known.busName.c_str(), to < 0 ? "/org/a11y/atspi/null" : at(to).path.c_str());
  }
  int addParent() const {
    return object > 0 ? addReference(it().parent)
                      : add("(so)", known.desktopName.c_str(), known.desktopPath.c_str());
  }
  int addChild(int index) const {
    return addReference(index >= 0 && index < childCount() ? object + 1 + index : -1);
  }
  int addChildren() const {
    sd_bus_message_open_container(answer, 'a', "(so)");
    for (int i = 0; i < childCount(); ++i) addChild(i);
    return sd_bus_message_close_container(answer);
  }
  int addInterfaces() const {
    return add("as", 2, accessibleName, object > 0 ? componentName : applicationName);
  }
  /// AtspiStateType: enabled, sensitive, showing, visible.
  int addStates() const { return add("au", 2, 1U << 8 | 1U << 24 | 1U << 25 | 1U << 30, 0U); }
  int addPosition() const {
    const Area from = origin();
    return add("ii", it().bounds.x - from.x, it().bounds.y - from.y);
  }
  int addSize() const { return add("ii", it().bounds.width, it().bounds.height); }
  int addExtents() const {
    sd_bus_message_open_container(answer, 'r', "iiii");
    addPosition();
    addSize();
    return sd_bus_message_close_container(answer);
  }
  /// All that a client keeps of an object.
  int addItem() const {
    sd_bus_message_open_container(answer, 'r', "(so)(so)(so)iiassusau");
    addReference(object);
    addReference(0);
    addParent();
    add("ii", indexInParent(), childCount());
    addInterfaces();
    add("sus", it().name.c_str(), it().role, "");
    addStates();
    return sd_bus_message_close_container(answer);
  }
  int addItems() const {
    sd_bus_message_open_container(answer, 'a', "((so)(so)(so)iiassusau)");
    for (int i = 0; i < static_cast<int>(known.tree.size()); ++i) Question{known, i, call, answer}.addItem();
    return sd_bus_message_close_container(answer);
  }
};

}  // namespace desktop
