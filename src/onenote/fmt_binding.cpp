#include "onenote/fmt_schema.h"

#include <tuple>

#include "xml/xml_reader.h"

namespace qm::xml {

namespace {

template <class E>
constexpr auto MixedContentOf() {
    return Mixed(&E::content, Alternative<std::shared_ptr<FMT::span>>(u"span"),
                 Alternative<std::shared_ptr<FMT::a>>(u"a"));
}

}  // namespace

template <>
struct Binding<FMT::Text> {
    static constexpr std::u16string_view kName = u"Text";
    static constexpr auto kFields = std::tuple{MixedContentOf<FMT::Text>()};
};

template <>
struct Binding<FMT::span> {
    static constexpr std::u16string_view kName = u"span";
    static constexpr auto kFields = std::tuple{Attribute(u"style", &FMT::span::style),
                                               Attribute(u"lang", &FMT::span::lang), MixedContentOf<FMT::span>()};
};

template <>
struct Binding<FMT::a> {
    static constexpr std::u16string_view kName = u"a";
    static constexpr auto kFields = std::tuple{Attribute(u"href", &FMT::a::href), MixedContentOf<FMT::a>()};
};

#define QM_FMT_INSTANTIATE(E)                                                            \
    template class Child<FMT::E>;                                                        \
    template ReadResult ReadElement<FMT::E>(FMT::E&, std::u16string_view, ReadSession&); \
    template void WriteElement<FMT::E>(const FMT::E&, std::u16string_view, XmlWriter&);
QM_FMT_INSTANTIATE(Text)
QM_FMT_INSTANTIATE(span)
QM_FMT_INSTANTIATE(a)
#undef QM_FMT_INSTANTIATE

}  // namespace qm::xml

namespace qm::FMT {

std::shared_ptr<Text> ParseText(std::u16string_view document) {
    xml::ReaderOptions options;
    options.acceptIllegalCharacters = true;
    const auto reader = xml::CreateStringXmlReader(document, options);
    auto root = std::make_shared<Text>();
    const xml::ReadContext context;
    xml::ReadSession session(*reader, context);
    xml::ReadElement(*root, xml::Binding<Text>::kName, session);
    return root;
}

std::u16string SerializeText(const Text& root) {
    std::u16string out;
    xml::SerializeElement(root, out, nullptr, false, false, false, false);
    return out;
}

}  // namespace qm::FMT
