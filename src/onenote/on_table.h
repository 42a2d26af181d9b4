// Tables inside paragraphs: column widths, rows, and cells that hold paragraphs again.
#pragma once

#include "onenote/on_types.h"

namespace qm::ON {

struct Table : Element<Table>, CascadedTextAttributes, EditedByAttributes {
    static constexpr std::u16string_view kName = u"Table";
    String objectID;
    Bool bordersVisible{false};
    Selection selected = NoSelection();
    OptDateTime lastModifiedTime;
    std::shared_ptr<Columns> columns;
    xml::ChildList<Row> rows{this};
};

struct Columns : Element<Columns> {
    static constexpr std::u16string_view kName = u"Columns";
    xml::ChildList<Column> columns{this};
};

struct Column : Element<Column> {
    static constexpr std::u16string_view kName = u"Column";
    OptInt index;
    OptFloat width;
    Bool isLocked{false};
};

// What rows and cells share.
struct TableItemAttributes : CascadedTextAttributes, EditedByAttributes {
    String objectID;
    Selection selected = NoSelection();
    OptDateTime lastModifiedTime;
};

struct Row : Element<Row>, TableItemAttributes {
    static constexpr std::u16string_view kName = u"Row";
    xml::ChildList<Cell> cells{this};
};

struct Cell : Element<Cell>, TableItemAttributes {
    static constexpr std::u16string_view kName = u"Cell";
    xml::ChildList<OEChildren> oeChildren{this};
};

}  // namespace qm::ON
