#include "tarno-desktop/tile_accessible.hpp"

#include <gtk/gtk-a11y.h>

#include <cmath>

namespace desktop {
namespace {

// --- One element: an object with a role, a name and a place, on the window that is its parent.

struct Element {
  AtkObject base;
  ui::Rect* frame;
};

struct ElementClass {
  AtkObjectClass base;
};

Element* asElement(gpointer object) { return static_cast<Element*>(object); }

GObjectClass* parentOf(const char* typeName) {
  return G_OBJECT_CLASS(g_type_class_peek_parent(g_type_class_peek(g_type_from_name(typeName))));
}

constexpr char elementName[] = "TarnoTileElement";
constexpr char accessibleName[] = "TarnoTileAccessible";
constexpr char windowName[] = "TarnoTileWindow";

void finalizeElement(GObject* object) {
  delete asElement(object)->frame;
  parentOf(elementName)->finalize(object);
}

AtkStateSet* elementStates(AtkObject*) {
  AtkStateSet* states = atk_state_set_new();
  AtkStateType shown[] = {ATK_STATE_ENABLED, ATK_STATE_SENSITIVE, ATK_STATE_VISIBLE, ATK_STATE_SHOWING};
  atk_state_set_add_states(states, shown, G_N_ELEMENTS(shown));
  return states;
}

int elementIndex(AtkObject* object) {
  AtkObject* parent = atk_object_get_parent(object);
  const int count = parent ? atk_object_get_n_accessible_children(parent) : 0;
  for (int index = 0; index < count; ++index) {
    AtkObject* child = atk_object_ref_accessible_child(parent, index);
    g_object_unref(child);
    if (child == object) return index;
  }
  return -1;
}

void elementExtents(AtkComponent* component, gint* x, gint* y, gint* width, gint* height, AtkCoordType type) {
  const ui::Rect& frame = *asElement(component)->frame;
  int left = 0, top = 0;
  AtkObject* parent = atk_object_get_parent(ATK_OBJECT(component));
  if (parent && type != ATK_XY_PARENT)
    atk_component_get_extents(ATK_COMPONENT(parent), &left, &top, nullptr, nullptr, type);
  *x = left + static_cast<int>(std::lround(frame.origin.x));
  *y = top + static_cast<int>(std::lround(frame.origin.y));
  *width = static_cast<int>(std::lround(frame.size.width));
  *height = static_cast<int>(std::lround(frame.size.height));
}

GType elementType() {
  static const GType type = [] {
    const auto initClass = [](gpointer klass, gpointer) {
      G_OBJECT_CLASS(klass)->finalize = finalizeElement;
      ATK_OBJECT_CLASS(klass)->ref_state_set = elementStates;
      ATK_OBJECT_CLASS(klass)->get_index_in_parent = elementIndex;
    };
    const GType made = g_type_register_static_simple(ATK_TYPE_OBJECT, elementName, sizeof(ElementClass),
                                                     initClass, sizeof(Element), nullptr, GTypeFlags{});
    const GInterfaceInfo component{[](gpointer interface, gpointer) {
                                     static_cast<AtkComponentIface*>(interface)->get_extents = elementExtents;
                                   },
                                   nullptr, nullptr};
    g_type_add_interface_static(made, ATK_TYPE_COMPONENT, &component);
    return made;
  }();
  return type;
}

AtkRole roleOf(const ui::AccessibilityElement& element) {
  return element.role == ui::AccessibilityElement::Role::image ? ATK_ROLE_IMAGE : ATK_ROLE_LABEL;
}

AtkObject* newElement(AtkObject* parent, const ui::AccessibilityElement& content) {
  auto* element = static_cast<Element*>(g_object_new(elementType(), nullptr));
  element->frame = new ui::Rect{content.frame};
  AtkObject* object = ATK_OBJECT(element);
  atk_object_set_role(object, roleOf(content));
  atk_object_set_name(object, content.label.c_str());
  atk_object_set_parent(object, parent);
  return object;
}

// --- The window's accessible object: GTK's own, with elements for children.

struct Accessible {
  GtkWindowAccessible base;
  GPtrArray* elements;
};

struct AccessibleClass {
  GtkWindowAccessibleClass base;
};

GPtrArray* elementsOf(gpointer accessible) { return static_cast<Accessible*>(accessible)->elements; }

GType accessibleType() {
  static const GType type = [] {
    const auto initClass = [](gpointer klass, gpointer) {
      G_OBJECT_CLASS(klass)->finalize = [](GObject* object) {
        g_ptr_array_unref(elementsOf(object));
        parentOf(accessibleName)->finalize(object);
      };
      ATK_OBJECT_CLASS(klass)->get_n_children = [](AtkObject* object) {
        return static_cast<gint>(elementsOf(object)->len);
      };
      ATK_OBJECT_CLASS(klass)->ref_child = [](AtkObject* object, gint index) -> AtkObject* {
        GPtrArray* elements = elementsOf(object);
        if (index < 0 || static_cast<guint>(index) >= elements->len) return nullptr;
        return ATK_OBJECT(g_object_ref(elements->pdata[index]));
      };
    };
    const auto init = [](GTypeInstance* instance, gpointer) {
      void* self = instance;
      static_cast<Accessible*>(self)->elements = g_ptr_array_new_with_free_func(g_object_unref);
    };
    return g_type_register_static_simple(GTK_TYPE_WINDOW_ACCESSIBLE, accessibleName, sizeof(AccessibleClass),
                                         initClass, sizeof(Accessible), init, GTypeFlags{});
  }();
  return type;
}

GType windowType() {
  static const GType type = [] {
    const auto initClass = [](gpointer klass, gpointer) {
      gtk_widget_class_set_accessible_type(GTK_WIDGET_CLASS(klass), accessibleType());
    };
    return g_type_register_static_simple(GTK_TYPE_WINDOW, windowName, sizeof(GtkWindowClass), initClass,
                                         sizeof(GtkWindow), nullptr, GTypeFlags{});
  }();
  return type;
}

void announceChild(AtkObject* accessible, const char* change, guint index, gpointer child) {
  g_signal_emit_by_name(accessible, change, index, child, nullptr);
}

}  // namespace

GtkWindow* newTileWindow() {
  return GTK_WINDOW(g_object_new(windowType(), "type", GTK_WINDOW_TOPLEVEL, nullptr));
}

void setAccessibility(GtkWindow* window, const std::vector<ui::AccessibilityElement>& elements) {
  AtkObject* accessible = gtk_widget_get_accessible(GTK_WIDGET(window));
  GPtrArray* present = elementsOf(accessible);
  for (guint index = 0; index < elements.size(); ++index) {
    const auto& wanted = elements[index];
    if (index == present->len) {
      g_ptr_array_add(present, newElement(accessible, wanted));
      announceChild(accessible, "children-changed::add", index, present->pdata[index]);
      continue;
    }
    AtkObject* element = ATK_OBJECT(present->pdata[index]);
    *asElement(element)->frame = wanted.frame;
    if (atk_object_get_role(element) != roleOf(wanted)) atk_object_set_role(element, roleOf(wanted));
    if (atk_object_get_name(element) != wanted.label) atk_object_set_name(element, wanted.label.c_str());
  }
  while (present->len > elements.size()) {
    const guint last = present->len - 1;
    gpointer gone = g_object_ref(present->pdata[last]);
    g_ptr_array_set_size(present, static_cast<gint>(last));
    announceChild(accessible, "children-changed::remove", last, gone);
    g_object_unref(gone);
  }
}

}  // namespace desktop
