// Schemas that keep what they do not model, namespaces in the reader and writer, and documents
// holding characters XML 1.0 cannot carry.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "core/text.h"
#include "xml/binding.h"
#include "xml/xml_chars.h"
#include "xml/xml_error.h"

namespace qm::xml {
namespace keep {

constexpr std::u16string_view kNs = u"urn:k";

struct Leaf;
struct Root : Child<Root> {
    std::optional<std::u16string> name;
    Defaulted<bool> flag{false};
    ChildList<Leaf> leaves{this};
    std::shared_ptr<Leaf> last;
    Unknowns unknown;
};
struct Leaf : Child<Leaf> {
    std::u16string text;
    Unknowns unknown;
};

}  // namespace keep

template <>
struct Binding<keep::Leaf> {
    static constexpr std::u16string_view kName = u"Leaf";
    static constexpr std::u16string_view kPrefix = u"k";
    static constexpr std::u16string_view kNamespace = keep::kNs;
    static constexpr bool kKeepUnknown = true;
    static constexpr auto kFields = std::tuple{Text(&keep::Leaf::text)};
};
template <>
struct Binding<keep::Root> {
    static constexpr std::u16string_view kName = u"Root";
    static constexpr std::u16string_view kPrefix = u"k";
    static constexpr std::u16string_view kNamespace = keep::kNs;
    static constexpr bool kKeepUnknown = true;
    static constexpr auto kFields = std::tuple{Attribute(u"name", &keep::Root::name), Attribute(u"flag", &keep::Root::flag),
                                               List(&keep::Root::leaves), Slot(u"Last", &keep::Root::last)};
};

namespace {

using keep::Root;

std::shared_ptr<Root> Read(std::u16string_view text) {
    auto root = std::make_shared<Root>();
    ParseElement(u"<?xml version=\"1.0\"?>" + std::u16string(text), u"Root", *root);
    return root;
}

std::u16string Write(const Root& root) {
    std::u16string out;
    SerializeElement(root, u"Root", out, nullptr, false, false, false, false);
    return out;
}

TEST(KeepUnknown, UnmodelledContentIsWrittenBackInItsPlace) {
    const std::u16string text =
        u"<k:Root xmlns:k=\"urn:k\" xmlns:o=\"urn:o\" o:extra=\"1\" more=\"2\">"
        u"<k:Odd a=\"b\"><k:Leaf>inner</k:Leaf></k:Odd>"
        u"<k:Leaf>one</k:Leaf><o:Leaf>foreign</o:Leaf><k:Leaf>two</k:Leaf>stray"
        u"<Plain xmlns=\"urn:d\"><Sub xmlns=\"\">s</Sub></Plain><k:Last>z</k:Last></k:Root>";
    const auto root = Read(text);
    EXPECT_FALSE(root->name.has_value());
    ASSERT_EQ(root->leaves.size(), 2u) << "an unknown element neither ends nor splits the run";
    EXPECT_EQ(root->leaves[1]->text, u"two");
    EXPECT_EQ(root->last->text, u"z");
    EXPECT_EQ(root->unknown.attributes().size(), 2u);
    EXPECT_EQ(root->unknown.children().size(), 4u);
    EXPECT_EQ(Write(*root), text);
    // Content whose modelled neighbour is gone is kept at the end.
    root->leaves.Remove(0);
    EXPECT_EQ(Write(*root),
              u"<k:Root xmlns:k=\"urn:k\" xmlns:o=\"urn:o\" o:extra=\"1\" more=\"2\">"
              u"<k:Odd a=\"b\"><k:Leaf>inner</k:Leaf></k:Odd>"
              u"<k:Leaf>two</k:Leaf>stray<Plain xmlns=\"urn:d\"><Sub xmlns=\"\">s</Sub></Plain><k:Last>z</k:Last>"
              u"<o:Leaf>foreign</o:Leaf></k:Root>");
}

TEST(KeepUnknown, PrefixedAttributesAreNeverTakenForModelledOnes) {
    const auto root = Read(u"<k:Root xmlns:k=\"urn:k\" xmlns:o=\"urn:o\" o:name=\"x\" flag=\"True\"/>");
    EXPECT_FALSE(root->name.has_value());
    EXPECT_TRUE(*root->flag);
    EXPECT_EQ(Write(*root), u"<k:Root xmlns:k=\"urn:k\" flag=\"true\" xmlns:o=\"urn:o\" o:name=\"x\" />");
}

TEST(KeepUnknown, IllegalCharactersAreShieldedOnlyWhereTextCanStand) {
    const std::u16string doc = u"<k:Root xmlns:k=\"urn:k\" name=\"a&#x0B;b\x01\"><k:Leaf><![CDATA[&#1;\x0B]]>&#2;"
                               u"\xD800</k:Leaf><!-- &#3; --></k:Root>";
    EXPECT_THROW(Read(doc), XmlError) << "refused unless asked for";
    auto reader = CreateStringXmlReader(doc, ReaderOptions{.acceptIllegalCharacters = true});
    std::vector<std::u16string> values;
    while (reader->Read()) {
        if (reader->nodeType() == NodeType::Text || reader->nodeType() == NodeType::CDATA ||
            reader->nodeType() == NodeType::Comment) {
            values.emplace_back(reader->value());
        }
        if (reader->MoveToFirstAttribute()) {
            do values.emplace_back(reader->value());
            while (reader->MoveToNextAttribute());
            reader->MoveToElement();
        }
    }
    EXPECT_EQ(values, (std::vector<std::u16string>{u"urn:k", u"a\x0B" u"b\x01", u"&#1;\x0B", u"\x02\xD800", u" &#3; "}));
    // A genuine private-use character outside the shielded set passes through.
    reader = CreateStringXmlReader(u"<a>\xDBC0\xDC41</a>", ReaderOptions{.acceptIllegalCharacters = true});
    reader->Read();
    reader->Read();
    EXPECT_EQ(reader->value(), u"\xDBC0\xDC41");
}

TEST(KeepUnknown, WriterReferencesIllegalCharactersWhenAsked) {
    std::u16string out;
    StringSink sink(out);
    XmlWriter writer(sink, WriterOptions{.indent = true, .newline = u"\n", .illegal = IllegalCharacters::Reference});
    writer.WriteDeclaration(u"");
    writer.StartElement(u"", u"a", u"");
    writer.DeclareNamespace(u"p", u"urn:p");
    writer.DeclareNamespace(u"p", u"urn:p");
    writer.WriteAttribute(u"v", u"\x01\xDFFF");
    writer.StartElement(u"", u"b", u"");
    writer.WriteCData(u"x\x0By]]>z");
    writer.EndDocument();
    EXPECT_EQ(out, u"<?xml version=\"1.0\"?>\n<a xmlns:p=\"urn:p\" v=\"&#x1;&#xDFFF;\">\n  "
                   u"<b><![CDATA[x]]>&#xB;<![CDATA[y]]]]><![CDATA[>z]]></b>\n</a>");
}

TEST(KeepUnknown, FastConversionsAgreeWithTheCoreOnes) {
    std::mt19937 random(7);
    const char16_t units[] = {u'a', u'<', u'\x7F', u'\x80', u'\x7FF', u'\x800', u'\xD7FF', u'\xD800',
                              u'\xDBFF', u'\xDC00', u'\xDFFF', u'\xE000', u'\xFFFF', u'\x01'};
    for (int round = 0; round < 300; ++round) {
        // Mostly ASCII, as documents are, so that the word-at-a-time runs are taken and left.
        std::u16string text;
        for (int i = 0; i < 40; ++i) text += random() % 3 != 0 ? u'a' : units[random() % std::size(units)];
        std::string utf8;
        AppendUtf8(utf8, text);
        EXPECT_EQ(utf8, ToUtf8(text));
        std::string bytes;
        for (int i = 0; i < 40; ++i) bytes += random() % 3 != 0 ? 'a' : static_cast<char>(random() % 256);
        EXPECT_EQ(Utf8ToUtf16(bytes), FromUtf8(bytes));
    }
}

}  // namespace
}  // namespace qm::xml
