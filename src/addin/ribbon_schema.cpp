// The customUI structures' field descriptions and the one instantiation of the binding engine for
// them.
#include "addin/ribbon_schema.h"

#include <tuple>

namespace qm::xml {
namespace {

template <class E>
constexpr auto ControlFields() {
    return std::tuple{Attribute(u"id", &E::id),
                      Attribute(u"tag", &E::tag),
                      Attribute(u"label", &E::label),
                      Attribute(u"getLabel", &E::getLabel),
                      Attribute(u"imageMso", &E::imageMso),
                      Attribute(u"getImage", &E::getImage),
                      Attribute(u"size", &E::size),
                      Attribute(u"getSize", &E::getSize),
                      Attribute(u"screentip", &E::screentip),
                      Attribute(u"supertip", &E::supertip),
                      Attribute(u"description", &E::description),
                      Attribute(u"getDescription", &E::getDescription),
                      Attribute(u"visible", &E::visible),
                      Attribute(u"getVisible", &E::getVisible),
                      Attribute(u"enabled", &E::enabled),
                      Attribute(u"getEnabled", &E::getEnabled)};
}

template <class E>
constexpr auto ControlList() {
    return ChoiceList(u"Control", &E::controls, Alternative<std::shared_ptr<R::button>>(u"button"),
                      Alternative<std::shared_ptr<R::toggleButton>>(u"toggleButton"),
                      Alternative<std::shared_ptr<R::menu>>(u"menu"),
                      Alternative<std::shared_ptr<R::dynamicMenu>>(u"dynamicMenu"),
                      Alternative<std::shared_ptr<R::menuSeparator>>(u"menuSeparator"));
}

}  // namespace

#define QM_RIBBON_ELEMENT(E)                                          \
    static constexpr std::u16string_view kName = u## #E;              \
    static constexpr std::u16string_view kNamespace = R::kNamespace

template <>
struct Binding<R::button> {
    QM_RIBBON_ELEMENT(button);
    static constexpr auto kFields =
        std::tuple_cat(ControlFields<R::button>(), std::tuple{Attribute(u"onAction", &R::button::onAction)});
};

template <>
struct Binding<R::toggleButton> {
    QM_RIBBON_ELEMENT(toggleButton);
    static constexpr auto kFields =
        std::tuple_cat(ControlFields<R::toggleButton>(), std::tuple{Attribute(u"onAction", &R::toggleButton::onAction),
                                                                    Attribute(u"getPressed", &R::toggleButton::getPressed)});
};

template <>
struct Binding<R::menu> {
    QM_RIBBON_ELEMENT(menu);
    static constexpr auto kFields = std::tuple_cat(
        ControlFields<R::menu>(), std::tuple{Attribute(u"itemSize", &R::menu::itemSize), ControlList<R::menu>()});
};

template <>
struct Binding<R::dynamicMenu> {
    QM_RIBBON_ELEMENT(dynamicMenu);
    static constexpr auto kFields =
        std::tuple_cat(ControlFields<R::dynamicMenu>(), std::tuple{Attribute(u"getContent", &R::dynamicMenu::getContent)});
};

template <>
struct Binding<R::menuSeparator> {
    QM_RIBBON_ELEMENT(menuSeparator);
    static constexpr auto kFields =
        std::tuple{Attribute(u"id", &R::menuSeparator::id), Attribute(u"title", &R::menuSeparator::title)};
};

template <>
struct Binding<R::group> {
    QM_RIBBON_ELEMENT(group);
    static constexpr auto kFields =
        std::tuple{Attribute(u"id", &R::group::id), Attribute(u"label", &R::group::label),
                   Attribute(u"visible", &R::group::visible), Attribute(u"getVisible", &R::group::getVisible),
                   ControlList<R::group>()};
};

template <>
struct Binding<R::tab> {
    QM_RIBBON_ELEMENT(tab);
    static constexpr auto kFields =
        std::tuple{Attribute(u"id", &R::tab::id), Attribute(u"label", &R::tab::label),
                   Attribute(u"visible", &R::tab::visible), Attribute(u"getVisible", &R::tab::getVisible),
                   List(u"group", &R::tab::groups)};
};

template <>
struct Binding<R::tabs> {
    QM_RIBBON_ELEMENT(tabs);
    static constexpr auto kFields = std::tuple{List(u"tab", &R::tabs::items)};
};

template <>
struct Binding<R::ribbon> {
    QM_RIBBON_ELEMENT(ribbon);
    static constexpr auto kFields = std::tuple{Slot(u"tabs", &R::ribbon::tabs)};
};

template <>
struct Binding<R::customUI> {
    QM_RIBBON_ELEMENT(customUI);
    static constexpr auto kFields =
        std::tuple{Attribute(u"onLoad", &R::customUI::onLoad), Slot(u"ribbon", &R::customUI::ribbon)};
};

#undef QM_RIBBON_ELEMENT

template class Child<R::customUI>;
template class Child<R::ribbon>;
template class Child<R::tabs>;
template class Child<R::tab>;
template class Child<R::group>;
template class Child<R::button>;
template class Child<R::toggleButton>;
template class Child<R::menu>;
template class Child<R::dynamicMenu>;
template class Child<R::menuSeparator>;

}  // namespace qm::xml

namespace qm::R {

std::u16string WriteCustomUi(const customUI& ui) {
    std::u16string out;
    xml::SerializeElement(ui, out, nullptr, false, false, false, false);
    return out;
}

std::u16string WriteMenu(const menu& content) {
    std::u16string out;
    xml::SerializeElement(content, out, nullptr, false, false, false, false);
    return out;
}

}  // namespace qm::R
