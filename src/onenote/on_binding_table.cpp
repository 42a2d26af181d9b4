// Tables: columns, rows and cells.
#include "onenote/on_binding.h"

namespace qm::xml {

using namespace ON::bind;

namespace {

template <class E>
constexpr auto TableItemFields() {
    using I = ON::TableItemAttributes;
    return std::tuple_cat(std::tuple{Attr<E>(u"objectID", &I::objectID), Attr<E>(u"selected", &I::selected),
                                     Attr<E>(u"lastModifiedTime", &I::lastModifiedTime)},
                          CascadedTextFields<E>(), EditedByFields<E>());
}

}  // namespace

template <>
struct Binding<ON::Table> : ON::OneNoteBinding {
    using E = ON::Table;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(
        std::tuple{Attr<E>(u"objectID", &E::objectID), Attr<E>(u"bordersVisible", &E::bordersVisible),
                   Attr<E>(u"selected", &E::selected), Attr<E>(u"lastModifiedTime", &E::lastModifiedTime)},
        CascadedTextFields<E>(), EditedByFields<E>(), std::tuple{SlotOf<E>(&E::columns), ListOf(&E::rows)});
};

template <>
struct Binding<ON::Columns> : ON::OneNoteBinding {
    static constexpr std::u16string_view kName = ON::Columns::kName;
    static constexpr auto kFields = std::tuple{ListOf(&ON::Columns::columns)};
};

template <>
struct Binding<ON::Column> : ON::OneNoteBinding {
    using E = ON::Column;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple{Attr<E>(u"index", &E::index), Attr<E>(u"width", &E::width),
                                               Attr<E>(u"isLocked", &E::isLocked)};
};

template <>
struct Binding<ON::Row> : ON::OneNoteBinding {
    using E = ON::Row;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(TableItemFields<E>(), std::tuple{ListOf(&E::cells)});
};

template <>
struct Binding<ON::Cell> : ON::OneNoteBinding {
    using E = ON::Cell;
    static constexpr std::u16string_view kName = E::kName;
    static constexpr auto kFields = std::tuple_cat(TableItemFields<E>(), std::tuple{ListOf(&E::oeChildren)});
};

QM_ON_INSTANTIATE(Table)
QM_ON_INSTANTIATE(Columns)
QM_ON_INSTANTIATE(Column)
QM_ON_INSTANTIATE(Row)
QM_ON_INSTANTIATE(Cell)

}  // namespace qm::xml
