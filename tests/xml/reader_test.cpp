#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text.h"
#include "platform_test_util.h"
#include "xml/xml_reader.h"

namespace qm::xml {
namespace {

// Each node as "Type:name=value", attributes as "@name=value".
std::vector<std::string> Nodes(std::u16string_view text) {
    static const char* const kTypes[] = {"None",  "Element", "End",     "Text",    "Blank", "CDATA",
                                         "Decl",  "Comment", "PI",      "Doctype", "Other"};
    std::vector<std::string> out;
    auto reader = CreateStringXmlReader(text);
    while (reader->Read()) {
        std::string node = kTypes[static_cast<int>(reader->nodeType())];
        if (reader->nodeType() == NodeType::Element || reader->nodeType() == NodeType::EndElement) {
            node += ":" + ToUtf8(reader->localName());
            if (reader->isEmptyElement()) node += "/";
        } else {
            node += "=" + ToUtf8(reader->value());
        }
        out.push_back(node);
        if (reader->MoveToFirstAttribute()) {
            do out.push_back("@" + ToUtf8(reader->localName()) + "=" + ToUtf8(reader->value()));
            while (reader->MoveToNextAttribute());
            reader->MoveToElement();
        }
    }
    return out;
}

TEST(XmlReader, ReportsNodeTypesFaithfully) {
    EXPECT_EQ(Nodes(u"\xFEFF<?xml version=\"1.0\" encoding=\"utf-16\"?><!--c--><a xmlns:p=\"u\" x=\"1\">\n "
                    u"<p:b/>t&amp;<![CDATA[<c>]]><?pi d?></a>"),
              (std::vector<std::string>{"Decl=", "Comment=c", "Element:a", "@p=u", "@x=1", "Blank=\n ", "Element:b/",
                                        "Text=t&", "CDATA=<c>", "PI=d", "End:a"}));
}

TEST(XmlReader, OnlyARealDeclarationCounts) {
    EXPECT_EQ(Nodes(u"<?xml-stylesheet href=\"s\"?><a/>"),
              (std::vector<std::string>{"PI=href=\"s\"", "Element:a/"}));
    if (!qm::test::UnderWine()) EXPECT_EQ(Nodes(u" <a/>"), (std::vector<std::string>{"Element:a/"}));
}

}  // namespace
}  // namespace qm::xml
