// The formatted text inside a paragraph's text element (ON::T), bound as the FMT schema: a root
// `Text` holding text interleaved with `span` elements (a CSS `style` and a `lang`) and `a`
// elements (an `href`), nesting freely. The markup OneNote writes is HTML-like rather than XML;
// fmt_runs.h makes it readable XML first and turns the tree into runs.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "xml/binding.h"

namespace qm::FMT {

struct span;
struct a;

// One item of mixed content: a piece of text or an element.
using Item = std::variant<std::u16string, std::shared_ptr<span>, std::shared_ptr<a>>;

struct Text : xml::Child<Text> {
    std::vector<Item> content;
};

struct span : xml::Child<span> {
    std::optional<std::u16string> style;
    std::optional<std::u16string> lang;
    std::vector<Item> content;
};

struct a : xml::Child<a> {
    std::optional<std::u16string> href;
    std::vector<Item> content;
};

}  // namespace qm::FMT

// The bindings live in fmt_binding.cpp, the only file that instantiates the engine for them.
namespace qm::xml {
#define QM_FMT_DECLARE_ELEMENT(E)                                                              \
    template <>                                                                                \
    struct Binding<FMT::E>;                                                                    \
    extern template class Child<FMT::E>;                                                       \
    extern template ReadResult ReadElement<FMT::E>(FMT::E&, std::u16string_view, ReadSession&); \
    extern template void WriteElement<FMT::E>(const FMT::E&, std::u16string_view, XmlWriter&);
QM_FMT_DECLARE_ELEMENT(Text)
QM_FMT_DECLARE_ELEMENT(span)
QM_FMT_DECLARE_ELEMENT(a)
#undef QM_FMT_DECLARE_ELEMENT
}  // namespace qm::xml

namespace qm::FMT {

// Reads a whole document whose root is `Text` (an XML declaration first). Characters XML cannot
// carry are accepted (OneNote puts them into text). Raises xml::XmlError.
std::shared_ptr<Text> ParseText(std::u16string_view document);

// The tree as XML, without declaration: `<Text>...</Text>`.
std::u16string SerializeText(const Text& root);

}  // namespace qm::FMT
