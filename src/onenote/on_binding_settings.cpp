// Page settings: size, orientation, margins and rule lines.
#include "onenote/on_binding.h"

namespace qm::xml {

using namespace ON::bind;

template <>
struct Binding<ON::PageSettings> : ON::OneNoteBinding {
    using E = ON::PageSettings;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"RTL", &E::RTL), Attr<E>(u"color", &E::color),
                                               SlotOf<E>(&E::pageSize), SlotOf<E>(&E::ruleLines)};
};

template <>
struct Binding<ON::PageSize> : ON::OneNoteBinding {
    using E = ON::PageSize;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{SlotOf<E>(&E::automatic), SlotOf<E>(&E::orientation),
                                               SlotOf<E>(&E::dimensions), SlotOf<E>(&E::margins)};
};

template <>
struct Binding<ON::Automatic> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::Automatic::kName;
    static constexpr auto kFields = std::tuple{};
};

template <>
struct Binding<ON::Orientation> : ON::OneNoteBinding {
    using E = ON::Orientation;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"landscape", &E::landscape)};
};

template <>
struct Binding<ON::Dimensions> : ON::OneNoteBinding {
    using E = ON::Dimensions;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"width", &E::width), Attr<E>(u"height", &E::height)};
};

template <>
struct Binding<ON::Margins> : ON::OneNoteBinding {
    using E = ON::Margins;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"top", &E::top), Attr<E>(u"bottom", &E::bottom),
                                               Attr<E>(u"left", &E::left), Attr<E>(u"right", &E::right)};
};

template <>
struct Binding<ON::RuleLines> : ON::OneNoteBinding {
    using E = ON::RuleLines;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields =
        std::tuple{Attr<E>(u"visible", &E::visible), SlotOf<E>(&E::automatic), SlotOf<E>(&E::horizontal),
                   SlotOf<E>(&E::vertical), SlotOf<E>(&E::margin)};
};

template <>
struct Binding<ON::Horizontal> : ON::OneNoteBinding {
    using E = ON::Horizontal;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"color", &ON::RuleLineAttributes::color),
                                               Attr<E>(u"spacing", &ON::RuleLineAttributes::spacing)};
};

template <>
struct Binding<ON::Vertical> : ON::OneNoteBinding {
    using E = ON::Vertical;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"color", &ON::RuleLineAttributes::color),
                                               Attr<E>(u"spacing", &ON::RuleLineAttributes::spacing)};
};

template <>
struct Binding<ON::Margin> : ON::OneNoteBinding {
    using E = ON::Margin;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"color", &E::color)};
};

QM_ON_INSTANTIATE(PageSettings)
QM_ON_INSTANTIATE(PageSize)
QM_ON_INSTANTIATE(Automatic)
QM_ON_INSTANTIATE(Orientation)
QM_ON_INSTANTIATE(Dimensions)
QM_ON_INSTANTIATE(Margins)
QM_ON_INSTANTIATE(RuleLines)
QM_ON_INSTANTIATE(Horizontal)
QM_ON_INSTANTIATE(Vertical)
QM_ON_INSTANTIATE(Margin)

}  // namespace qm::xml
