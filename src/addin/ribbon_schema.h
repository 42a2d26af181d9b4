// The add-in's part of OneNote's ribbon as element structures (Office's customUI schema of
// 2009/07), written through the binding framework like every other document of the add-in: the
// customUI document that GetCustomUI hands out, and the menu fragments dynamic menus ask for.
//
// Attributes are optional texts, written only when set. Element names are the schema's own,
// hence lower-case structure names.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "xml/binding.h"

namespace qm::R {

inline constexpr std::u16string_view kNamespace = u"http://schemas.microsoft.com/office/2009/07/customui";

struct customUI;
struct ribbon;
struct tabs;
struct tab;
struct group;
struct button;
struct toggleButton;
struct menu;
struct dynamicMenu;
struct menuSeparator;

}  // namespace qm::R

namespace qm::xml {
template <> struct Binding<R::customUI>;
template <> struct Binding<R::ribbon>;
template <> struct Binding<R::tabs>;
template <> struct Binding<R::tab>;
template <> struct Binding<R::group>;
template <> struct Binding<R::button>;
template <> struct Binding<R::toggleButton>;
template <> struct Binding<R::menu>;
template <> struct Binding<R::dynamicMenu>;
template <> struct Binding<R::menuSeparator>;

extern template class Child<R::customUI>;
extern template class Child<R::ribbon>;
extern template class Child<R::tabs>;
extern template class Child<R::tab>;
extern template class Child<R::group>;
extern template class Child<R::button>;
extern template class Child<R::toggleButton>;
extern template class Child<R::menu>;
extern template class Child<R::dynamicMenu>;
extern template class Child<R::menuSeparator>;
}  // namespace qm::xml

namespace qm::R {

using Text = std::optional<std::u16string>;

// What a group or a menu holds, in order.
using Control = std::variant<std::monostate, std::shared_ptr<button>, std::shared_ptr<toggleButton>,
                             std::shared_ptr<menu>, std::shared_ptr<dynamicMenu>, std::shared_ptr<menuSeparator>>;

// The attributes every control kind here takes. A static attribute and its get* callback are
// alternatives: a control sets one of the two.
struct ControlAttributes {
    Text id, tag, label, getLabel, imageMso, getImage, size, getSize, screentip, supertip, description,
        getDescription, visible, getVisible, enabled, getEnabled;
};

struct button : xml::Child<button>, ControlAttributes {
    Text onAction;
};

struct toggleButton : xml::Child<toggleButton>, ControlAttributes {
    Text onAction, getPressed;
};

struct menu : xml::Child<menu>, ControlAttributes {
    Text itemSize;
    std::vector<Control> controls;
};

struct dynamicMenu : xml::Child<dynamicMenu>, ControlAttributes {
    Text getContent;
};

struct menuSeparator : xml::Child<menuSeparator> {
    Text id, title;
};

struct group : xml::Child<group> {
    Text id, label, visible, getVisible;
    std::vector<Control> controls;
};

struct tab : xml::Child<tab> {
    Text id, label, visible, getVisible;
    xml::ChildList<group> groups;
};

struct tabs : xml::Child<tabs> {
    xml::ChildList<tab> items;
};

struct ribbon : xml::Child<ribbon> {
    std::shared_ptr<R::tabs> tabs;
};

struct customUI : xml::Child<customUI> {
    Text onLoad;
    std::shared_ptr<R::ribbon> ribbon;
};

// The document text, without a declaration (OneNote takes the string as it is) and unindented.
std::u16string WriteCustomUi(const customUI& ui);
// A dynamic menu's content: a `menu` root carrying the namespace.
std::u16string WriteMenu(const menu& content);

}  // namespace qm::R
