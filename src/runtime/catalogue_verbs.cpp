// The functions without a family: the OneNote queries, insertion and sorting, which the object
// model of the open notebooks carries out, and ExitMacro.
#include "core/format.h"
#include "runtime/builtin.h"
#include "runtime/messages.h"
#include "runtime/object_model.h"
#include "runtime/run_control.h"

namespace qm {
namespace {

ObjectModel& Model(RuntimeServices& services, std::u16string_view function) {
    if (!services.objects) FailMacro(msg::kNoObjectModel, {function});
    return *services.objects;
}

MacroValue QueryObjects(RuntimeServices& s, std::span<Argument> a) {
    return Model(s, u"QueryObjects").QueryObjects(a[0].value, a[1].value);
}
MacroValue QueryText(RuntimeServices& s, std::span<Argument> a) {
    return Model(s, u"QueryText").QueryText(a[0].value, a[1].value, a[2].value);
}
MacroValue InsertObject(RuntimeServices& s, std::span<Argument> a) {
    return Model(s, u"InsertObject").InsertObject(a[0].value, a[1].value, a[2].value);
}
MacroValue SortObjects(RuntimeServices& s, std::span<Argument> a) {
    return Model(s, u"SortObjects").SortObjects(a[0].value, a[1].value, a[2].value);
}
MacroValue GetCurrentNotebook(RuntimeServices& s, std::span<Argument>) {
    return Model(s, u"GetCurrentNotebook").GetCurrentNotebook();
}
MacroValue GetCurrentPage(RuntimeServices& s, std::span<Argument>) { return Model(s, u"GetCurrentPage").GetCurrentPage(); }
MacroValue GetCurrentSection(RuntimeServices& s, std::span<Argument>) {
    return Model(s, u"GetCurrentSection").GetCurrentSection();
}
MacroValue GetCurrentSectionGroup(RuntimeServices& s, std::span<Argument>) {
    return Model(s, u"GetCurrentSectionGroup").GetCurrentSectionGroup();
}
MacroValue GetNotebookRoot(RuntimeServices& s, std::span<Argument>) {
    return Model(s, u"GetNotebookRoot").GetNotebookRoot();
}
MacroValue GetParentOfType(RuntimeServices& s, std::span<Argument> a) {
    return Model(s, u"GetParentOfType").GetParentOfType(a[0].value, a[1].value, a[2]);
}
MacroValue GetAncestorOfType(RuntimeServices& s, std::span<Argument> a) {
    return Model(s, u"GetAncestorOfType").GetAncestorOfType(a[0].value, a[1].value, a[2]);
}

MacroValue ExitMacro(RuntimeServices&, std::span<Argument> a) { throw Macro::ExitException(a[0].value.AsBoolean()); }

}  // namespace

std::vector<BuiltinDefinition> VerbBuiltins() {
    return {
        {{u"ExitMacro", u"void", u"Exits the macro execution",
          {{u"saveChanges", u"Bool", u"Saves changes to OneNote if set to true, discards them if set to false"}}},
         &ExitMacro},
        {{u"GetAncestorOfType", u"Bool",
          u"Returns true if the given object has an ancestor of given type and stores that ancestor in the ancestor "
          u"parameter",
          {{u"object", u"Object", u"Object to look for an ancestor of"},
           {u"type", u"ObjectType", u"Type of the ancestor to look for"},
           {u"ancestor", u"out Object", u"If an ancestor is found, it is stored in this parameter"}}},
         &GetAncestorOfType},
        {{u"GetCurrentNotebook", u"Notebook", u"Returns the current notebook in OneNote", {}}, &GetCurrentNotebook},
        {{u"GetCurrentPage", u"Page", u"Returns the current page in OneNote", {}}, &GetCurrentPage},
        {{u"GetCurrentSection", u"Section", u"Returns the current section in OneNote", {}}, &GetCurrentSection},
        {{u"GetCurrentSectionGroup", u"Mixed",
          u"Returns the current section group in OneNote. If the current section is not in a section group, then "
          u"returns the current Notebook",
          {}},
         &GetCurrentSectionGroup},
        {{u"GetNotebookRoot", u"NotebookRoot", u"Returns the root of the notebook hierarchy in OneNote", {}},
         &GetNotebookRoot},
        {{u"GetParentOfType", u"Bool",
          u"Returns true if the given object has a parent of given type and stores that parent in the parent parameter",
          {{u"object", u"Object", u"Object to look for a parent of"},
           {u"type", u"ObjectType", u"Type of the parent to look for"},
           {u"parent", u"out Object", u"If a parent is found, it is stored in this parameter"}}},
         &GetParentOfType},
        {{u"InsertObject", u"Object",
          u"Creates a new object and inserts it into OneNote hierarchy or into a OneNote page. Returns the newly "
          u"created object",
          {{u"object", u"Object", u"Parent object to insert the new object into"},
           {u"type", u"ObjectType",
            u"The type of the new object to create and insert. Following types of object can be inserted: Page "
            u"(under a Section), Outline (under a Page), Paragraph (under an Outline or a Cell), Table (under an "
            u"Outline or a Cell), Row (under a Table), Cell (under a Row), Text (under a Paragraph)"},
           {u"position", u"Numeric",
            u"The position of the new object. The value is a 0 based index for the child collection or -1 to insert "
            u"at the end"}}},
         &InsertObject},
        {{u"QueryObjects", u"Array<Object>",
          u"Queries requested type of object in OneNote within the given scope. Returns all found object in an "
          u"array. Search is done in a depth-first manner",
          {{u"type", u"ObjectType", u"Type of the object to query for"},
           {u"scope", u"Object",
            u"Root object for the search. All objects under this object (including this object) are searched"}}},
         &QueryObjects},
        {{u"QueryText", u"Array<Text>",
          u"Queries given text in OneNote within the given scope. Returns all found text object in an array. Search "
          u"is done in a depth-first manner",
          {{u"scope", u"Object",
            u"Root object for the search. All text under this object (including this object) are searched"},
           {u"value", u"String", u"The text value to search for"},
           {u"ignoreCase", u"Bool", u"Find text in case-insensitive manner if set to true"}}},
         &QueryText},
        {{u"SortObjects", u"void",
          u"Sorts given object by a given property or a given custom sort order. When sorting object that are not "
          u"under the same parent object, they are sorted only within their siblings. For instance if you try to "
          u"sort all pages in current notebook, they will be sorted within each section and they won't move between "
          u"sections",
          {{u"objects", u"Array", u"Array of object to be sorted"},
           {u"by", u"Mixed",
            u"The property to sort by (in which case its type is string) or a custom sort order (in which case its "
            u"type is an array). A custom sort order array must have indices 0 to number of elements being sorted and "
            u"its values will be used when comparing corresponding object in the object array"},
           {u"ascending", u"Bool", u"Sort in ascending order, if set to true, descending order if set to false"}}},
         &SortObjects},
    };
}

}  // namespace qm
