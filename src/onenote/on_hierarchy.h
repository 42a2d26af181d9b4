// The notebook hierarchy as OneNote hands it out: the open notebooks, their section groups and
// sections, and the pages of each section (Page itself is in on_page.h: a hierarchy lists pages
// with their attributes only, a page's content comes with the same element).
#pragma once

#include "onenote/on_types.h"

namespace qm::ON {

// A section or a section group among the children of a notebook or section group, in order.
struct SectionChoice : xml::ChoiceGroup {
    xml::ChoiceSlot<Section> section;
    xml::ChoiceSlot<SectionGroup> sectionGroup;
};

// The root of a hierarchy document.
struct Notebooks : Element<Notebooks> {
    static constexpr std::u16string_view kName = u"Notebooks";
    xml::ChildList<Notebook> notebooks{this};
    std::shared_ptr<UnfiledNotes> unfiledNotes;
    std::shared_ptr<OpenSections> openSections;
};

struct UnfiledNotes : Element<UnfiledNotes> {
    static constexpr std::u16string_view kName = u"UnfiledNotes";
    Bool isCurrentlyViewed{false};
    String ID;
    xml::ChildList<SectionChoice> children{this};
};

struct OpenSections : Element<OpenSections> {
    static constexpr std::u16string_view kName = u"OpenSections";
    Bool isCurrentlyViewed{false};
    String ID;
    xml::ChildList<SectionChoice> children{this};
};

struct Notebook : Element<Notebook>, HierarchyObjectAttributes, FileObjectAttributes {
    static constexpr std::u16string_view kName = u"Notebook";
    String nickname;
    String color;
    Bool isUnread{false};
    xml::ChildList<SectionChoice> children{this};
};

struct SectionGroup : Element<SectionGroup>, HierarchyObjectAttributes, FileObjectAttributes {
    static constexpr std::u16string_view kName = u"SectionGroup";
    Bool isUnread{false};
    Bool isRecycleBin{false};
    xml::ChildList<SectionChoice> children{this};
};

struct Section : Element<Section>, HierarchyObjectAttributes, FileObjectAttributes {
    static constexpr std::u16string_view kName = u"Section";
    String color;
    Bool encrypted{false};
    Bool locked{false};
    Bool isUnread{false};
    Bool readOnly{false};
    Bool areAllPagesAvailable{true};
    Bool isDeletedPages{false};
    xml::ChildList<Page> pages{this};
};

}  // namespace qm::ON
