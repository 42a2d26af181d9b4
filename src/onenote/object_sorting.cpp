// SortObjects: reordering objects among their siblings by a property or a custom order.
//
// Choices made here:
// - Sorters exist for notebooks (in the root), sections and section groups (in a notebook or
//   section group: the two kinds share one list), pages (in a section), paragraphs (in a paragraph
//   list) and table content (rows in a table, cells in a row). The first object's type picks the
//   sorter; objects of other kinds in the array are left where they are, as are objects of kinds
//   without a sorter (the result is still true).
// - An object given twice counts once, where it first appears.
// - Keys compare as the comparison operators do, texts without regard to case: two numbers (or
//   texts that read as numbers) by value, anything else by its text; arrays and objects as keys
//   are all equal. Equal keys keep the array's order in both directions.
// - The "Sort Keys" log numbers the keys from 0 within each group of siblings.
// - A group whose order comes out as it was changes nothing (nothing is saved for it).
// - A sort in the hierarchy goes to OneNote with the parent node's changes at the end of the run;
//   a sort on a page modifies the page.
#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <stdexcept>

#include "core/error.h"
#include "core/format.h"
#include "onenote/messages.h"
#include "onenote/page_objects.h"
#include "onenote/session.h"
#include "runtime/messages.h"

namespace qm::onenote {
namespace {

enum class Sorter { None, Notebooks, Sections, Pages, Paragraphs, Rows, Cells };

Sorter SorterFor(std::int32_t type) {
    switch (TypeFromNumber(type).value_or(ObjectType::Text)) {
        case ObjectType::Notebook: return Sorter::Notebooks;
        case ObjectType::SectionGroup:
        case ObjectType::Section: return Sorter::Sections;
        case ObjectType::Page: return Sorter::Pages;
        case ObjectType::Paragraph: return Sorter::Paragraphs;
        case ObjectType::Row: return Sorter::Rows;
        case ObjectType::Cell: return Sorter::Cells;
        default: return Sorter::None;
    }
}

MacroValue NormalizedKey(MacroValue key) {
    if (key.kind() != Kind::String) return key;
    if (IsIntegerText(key.string())) return MacroValue(key.AsInteger());
    if (IsNumericText(key.string())) return MacroValue(key.AsDecimal());
    return key;
}

bool HasNoOrder(const MacroValue& value) { return value.kind() == Kind::Array || value.kind() == Kind::Object; }

// -1, 0 or 1, as the comparison operators order the two keys, texts ignoring case.
int CompareKeys(const MacroValue& a, const MacroValue& b) {
    if (HasNoOrder(a) || HasNoOrder(b)) return 0;
    if (a.IsNumeric() && b.IsNumeric()) {
        if (a.IsInteger() && b.IsInteger()) {
            const std::int32_t x = a.AsInteger(), y = b.AsInteger();
            return x < y ? -1 : (x > y ? 1 : 0);
        }
        const double x = a.AsDecimal(), y = b.AsDecimal();
        return x < y ? -1 : (x > y ? 1 : 0);
    }
    const MacroValue x(a.AsString()), y(b.AsString());
    return LessThanNoCase(x, y) ? -1 : (GreaterThanNoCase(x, y) ? 1 : 0);
}

std::u16string KeyText(const MacroValue& key) { return HasNoOrder(key) ? key.DescribeShort() : key.AsString(); }

// One object to sort: its key, the list entry that holds it (the element, or the choice around
// it) and what to mark changed when its list is reordered.
struct Item {
    MacroValue key;
    const void* entry = nullptr;
    std::shared_ptr<HierarchyObject> parent;  // hierarchy items
    std::shared_ptr<LoadedPage> page;         // page content items
    xml::Container* container = nullptr;
};

// The list that holds the element among its siblings (null when it stands alone, as a title's
// paragraph does), and the entry of that list that holds it.
template <class Entry>
xml::Container* ListOfEntry(xml::Container* entry) {
    return entry ? dynamic_cast<xml::ChildList<Entry>*>(entry->owner) : nullptr;
}

xml::Container* ListOf(Sorter sorter, xml::ChildElement& element, const void*& entry) {
    entry = &element;
    switch (sorter) {
        case Sorter::Notebooks: return dynamic_cast<xml::ChildList<ON::Notebook>*>(element.owner);
        case Sorter::Pages: return dynamic_cast<xml::ChildList<ON::Page>*>(element.owner);
        case Sorter::Rows: return dynamic_cast<xml::ChildList<ON::Row>*>(element.owner);
        case Sorter::Cells: return dynamic_cast<xml::ChildList<ON::Cell>*>(element.owner);
        case Sorter::Sections: {
            auto* choice = dynamic_cast<ON::SectionChoice*>(element.owner);
            entry = choice;
            return ListOfEntry<ON::SectionChoice>(choice);
        }
        case Sorter::Paragraphs: {
            auto* choice = dynamic_cast<ON::OEChildrenChoice*>(element.owner);
            entry = choice;
            return ListOfEntry<ON::OEChildrenChoice>(choice);
        }
        case Sorter::None: break;
    }
    return nullptr;
}

// Puts the sorted entries into the places the group's entries held, in list order; true when
// that moved any.
template <class Entry>
bool Reorder(xml::ChildList<Entry>& list, const std::vector<const void*>& sorted) {
    std::vector<std::shared_ptr<Entry>> items = list.items();
    const std::unordered_set<const void*> members(sorted.begin(), sorted.end());
    std::unordered_map<const void*, std::shared_ptr<Entry>> byEntry;
    for (const auto& item : items) {
        if (members.count(item.get())) byEntry[item.get()] = item;
    }
    std::size_t next = 0;
    bool moved = false;
    for (auto& item : items) {
        if (next < sorted.size() && members.count(item.get())) {
            moved = moved || item.get() != sorted[next];
            item = byEntry[sorted[next++]];
        }
    }
    if (!moved) return false;
    list.Clear();
    for (auto& item : items) list.Add(std::move(item));
    return true;
}

}  // namespace

MacroValue Session::SortObjects(const MacroValue& objects, const MacroValue& by, const MacroValue& ascending) {
    constexpr std::u16string_view kFunction = u"SortObjects";
    if (objects.kind() != Kind::Array || !objects.array()) throw MacroError(std::u16string(msg::kSortExpectsArray));
    std::vector<ObjectRef> work;
    for (const auto& element : objects.array()->elements()) {
        if (element.value->kind() != Kind::Object || !element.value->object()) {
            throw MacroError(std::u16string(msg::kSortExpectsObjects));
        }
        work.push_back(element.value->object());
    }
    bool up = true;
    try {
        up = ascending.AsBoolean();
    } catch (const std::invalid_argument&) {
        throw MacroError(FormatMessage(qm::msg::kCannotConvertArgument, {kFunction}));
    }
    if (work.empty()) return MacroValue(false);

    std::vector<MacroValue> keys;
    keys.reserve(work.size());
    for (std::size_t i = 0; i < work.size(); ++i) {
        if (by.kind() == Kind::Array) {
            char16_t buffer[24];
            const MacroValue* key = by.array()->FindValue(IntegerText(static_cast<std::int64_t>(i), buffer));
            if (!key) throw MacroError(u"");
            keys.push_back(NormalizedKey(*key));
        } else {
            std::u16string property;
            try {
                property = by.AsString();
            } catch (const std::invalid_argument&) {
                throw MacroError(FormatMessage(qm::msg::kCannotConvertArgument, {kFunction}));
            }
            keys.push_back(NormalizedKey(work[i]->GetProperty(property, false)));
        }
    }

    const Sorter sorter = SorterFor(work.front()->TypeNumber());
    if (sorter == Sorter::None) return MacroValue(true);

    // The items of the sorter's kind, each once, with the list that holds it.
    std::vector<Item> items;
    std::unordered_set<const void*> seen;
    for (std::size_t i = 0; i < work.size(); ++i) {
        if (SorterFor(work[i]->TypeNumber()) != sorter) continue;
        Item item;
        item.key = keys[i];
        auto* element = dynamic_cast<OneNoteObject&>(*work[i]).node();
        if (!element || !seen.insert(element).second) continue;
        item.container = ListOf(sorter, *element, item.entry);
        if (!item.container) continue;
        if (auto* hierarchy = dynamic_cast<HierarchyObject*>(work[i].get())) {
            item.parent = TreeParent(*hierarchy);
        } else if (auto* content = dynamic_cast<PageContentObject*>(work[i].get())) {
            item.page = content->page();
        }
        items.push_back(std::move(item));
    }

    // Groups of siblings, in the order their first item comes.
    std::vector<std::vector<const Item*>> groups;
    std::unordered_map<const void*, std::size_t> groupOf;
    for (const Item& item : items) {
        const auto [at, added] = groupOf.emplace(item.container, groups.size());
        if (added) groups.emplace_back();
        groups[at->second].push_back(&item);
    }
    for (const std::vector<const Item*>& group : groups) {
        if (log_) {
            LogLine(log_, std::u16string(msg::kLogSortKeys) + IntegerText(static_cast<std::int64_t>(group.size())) +
                              std::u16string(msg::kLogSortKeysObjects));
            for (std::size_t i = 0; i < group.size(); ++i) {
                LogLine(log_, u"\t[" + IntegerText(static_cast<std::int64_t>(i)) + u"] " + KeyText(group[i]->key));
            }
        }
        std::vector<std::size_t> order(group.size());
        for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
        std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
            const int c = CompareKeys(group[a]->key, group[b]->key);
            return up ? c < 0 : c > 0;
        });
        std::vector<const void*> sorted;
        for (std::size_t index : order) sorted.push_back(group[index]->entry);

        xml::Container* container = group.front()->container;
        bool moved = false;
        switch (sorter) {
            case Sorter::Notebooks: moved = Reorder(static_cast<xml::ChildList<ON::Notebook>&>(*container), sorted); break;
            case Sorter::Sections:
                moved = Reorder(static_cast<xml::ChildList<ON::SectionChoice>&>(*container), sorted);
                break;
            case Sorter::Pages: moved = Reorder(static_cast<xml::ChildList<ON::Page>&>(*container), sorted); break;
            case Sorter::Paragraphs:
                moved = Reorder(static_cast<xml::ChildList<ON::OEChildrenChoice>&>(*container), sorted);
                break;
            case Sorter::Rows: moved = Reorder(static_cast<xml::ChildList<ON::Row>&>(*container), sorted); break;
            case Sorter::Cells: moved = Reorder(static_cast<xml::ChildList<ON::Cell>&>(*container), sorted); break;
            case Sorter::None: break;
        }
        if (!moved) continue;
        if (group.front()->parent) group.front()->parent->MarkChildrenMoved();
        if (group.front()->page) PageModified(*group.front()->page);
    }
    return MacroValue(true);
}

}  // namespace qm::onenote
