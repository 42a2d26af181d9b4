#include "onenote/session_fixture.h"

#include <fstream>

#include "core/text.h"
#include "onenote/onenote_test_util.h"

namespace qm::onenote::testing {
namespace {

constexpr std::string_view kHierarchy = R"(<?xml version="1.0"?>
<one:Notebooks xmlns:one="http://schemas.microsoft.com/office/onenote/2010/onenote">
  <one:Notebook name="Work" nickname="Work" ID="@1@" path="C:\Notes\Work" color="#ADE792" isCurrentlyViewed="true">
    <one:Section name="Ideas" ID="@2@" path="C:\Notes\Work\Ideas.one" color="#8AA8E4" isCurrentlyViewed="true">
      <one:Page ID="@3@" name="First" dateTime="2024-04-03T08:55:00.000Z" lastModifiedTime="2024-04-05T16:42:10.000Z" pageLevel="1" isCurrentlyViewed="true"/>
      <one:Page ID="@4@" name="Second" dateTime="2024-04-03T10:05:00.000Z" lastModifiedTime="2024-04-03T11:20:37.000Z" pageLevel="2" isUnread="true"/>
    </one:Section>
    <one:SectionGroup name="Archive" ID="@5@" path="C:\Notes\Work\Archive">
      <one:Section name="Old" ID="@6@" path="C:\Notes\Work\Archive\Old.one" readOnly="true">
        <one:Page ID="@7@" name="Old page" dateTime="2023-12-15T14:00:00.000Z" lastModifiedTime="2023-12-19T17:25:03.000Z" pageLevel="1"/>
      </one:Section>
    </one:SectionGroup>
  </one:Notebook>
  <one:Notebook name="Home" nickname="Home" ID="@8@" path="C:\Notes\Home" color="#F6B078">
    <one:Section name="Recipes" ID="@9@" path="C:\Notes\Home\Recipes.one" color="#EE9597">
      <one:Page ID="@10@" name="Cake" dateTime="2024-02-11T15:20:00.000Z" lastModifiedTime="2024-03-30T19:48:12.000Z" pageLevel="1"/>
    </one:Section>
  </one:Notebook>
</one:Notebooks>
)";

constexpr std::string_view kFirstPage = R"(<?xml version="1.0"?>
<one:Page xmlns:one="http://schemas.microsoft.com/office/onenote/2010/onenote" ID="@3@" name="First" dateTime="2024-04-03T08:55:00.000Z" lastModifiedTime="2024-04-05T16:42:10.000Z" pageLevel="1" isCurrentlyViewed="true">
  <one:TagDef index="0" name="To Do" type="0" symbol="3" fontColor="automatic" highlightColor="none"/>
  <one:Title>
    <one:OE objectID="@101@">
      <one:T><![CDATA[First]]></one:T>
    </one:OE>
  </one:Title>
  <one:Outline author="Anna Berg" authorInitials="AB" objectID="@102@">
    <one:Position x="36.0" y="86.4000015258789" z="0"/>
    <one:Size width="420.0" height="300.0"/>
    <one:OEChildren>
      <one:OE alignment="left" objectID="@103@" spaceBefore="4.0">
        <one:Tag index="0" completed="true" disabled="false" creationDate="2024-04-03T09:41:02.000Z"/>
        <one:T><![CDATA[Alpha]]></one:T>
        <one:OEChildren>
          <one:OE objectID="@104@">
            <one:List>
              <one:Bullet bullet="2" fontSize="11.0"/>
            </one:List>
            <one:T><![CDATA[Nested]]></one:T>
          </one:OE>
        </one:OEChildren>
      </one:OE>
      <one:OE objectID="@105@">
        <one:List>
          <one:Number numberSequence="0" numberFormat="##." fontSize="11.0" font="Calibri" text="1."/>
        </one:List>
        <one:T><![CDATA[42]]></one:T>
      </one:OE>
      <one:OE objectID="@106@">
        <one:Table bordersVisible="true" objectID="@107@">
          <one:Columns>
            <one:Column index="0" width="80.0"/>
            <one:Column index="1" width="90.0" isLocked="true"/>
          </one:Columns>
          <one:Row objectID="@108@">
            <one:Cell objectID="@109@">
              <one:OEChildren>
                <one:OE objectID="@110@">
                  <one:T><![CDATA[a]]></one:T>
                </one:OE>
              </one:OEChildren>
            </one:Cell>
            <one:Cell objectID="@111@">
              <one:OEChildren>
                <one:OE objectID="@112@">
                  <one:T><![CDATA[b]]></one:T>
                </one:OE>
              </one:OEChildren>
            </one:Cell>
          </one:Row>
          <one:Row objectID="@113@">
            <one:Cell objectID="@114@">
              <one:OEChildren>
                <one:OE objectID="@115@">
                  <one:T><![CDATA[c]]></one:T>
                </one:OE>
              </one:OEChildren>
            </one:Cell>
            <one:Cell objectID="@116@">
              <one:OEChildren>
                <one:OE objectID="@117@">
                  <one:T><![CDATA[d]]></one:T>
                </one:OE>
              </one:OEChildren>
            </one:Cell>
          </one:Row>
        </one:Table>
      </one:OE>
      <one:OE objectID="@118@">
        <one:Image format="png" objectID="@119@">
          <one:Size width="10.0" height="10.0"/>
          <one:Data>iVBORw0KGgo=</one:Data>
        </one:Image>
      </one:OE>
    </one:OEChildren>
  </one:Outline>
  <one:Image format="png" objectID="@120@">
    <one:Position x="300.0" y="40.0" z="1"/>
    <one:Size width="64.0" height="48.0"/>
    <one:Tag index="0" completed="false" disabled="false"/>
    <one:Data>iVBORw0KGgo=</one:Data>
  </one:Image>
</one:Page>
)";

constexpr std::string_view kSecondPage = R"(<?xml version="1.0"?>
<one:Page xmlns:one="http://schemas.microsoft.com/office/onenote/2010/onenote" ID="@4@" name="Second" dateTime="2024-04-03T10:05:00.000Z" lastModifiedTime="2024-04-03T11:20:37.000Z" pageLevel="2" isUnread="true">
  <one:PageSettings RTL="true" color="#FFFFFF">
    <one:PageSize>
      <one:Orientation landscape="true"/>
      <one:Dimensions width="700.0" height="500.0"/>
      <one:Margins top="10.0" bottom="11.0" left="12.0" right="13.0"/>
    </one:PageSize>
    <one:RuleLines visible="true">
      <one:Horizontal color="#C0C0C0" spacing="20.0"/>
      <one:Margin color="#FF0000"/>
    </one:RuleLines>
  </one:PageSettings>
  <one:Title>
    <one:OE objectID="@201@">
      <one:T><![CDATA[Second]]></one:T>
    </one:OE>
  </one:Title>
  <one:Outline objectID="@202@">
    <one:OEChildren>
      <one:OE objectID="@203@">
        <one:MediaFile objectID="@204@">
          <one:MediaReference mediaID="{11111111-2222-3333-4444-555555555555}"/>
        </one:MediaFile>
      </one:OE>
      <one:OE objectID="@205@">
        <one:InkWord recognizedText="hi">
          <one:CallbackID callbackID="@301@"/>
        </one:InkWord>
      </one:OE>
      <one:OE objectID="@206@">
        <one:InsertedFile objectID="@207@" preferredName="report.pdf" pathCache="C:\cache\report.pdf">
          <one:Position x="5.0" y="6.0" z="2"/>
          <one:Size width="30.0" height="40.0" isSetByUser="true"/>
        </one:InsertedFile>
      </one:OE>
      <one:OE objectID="@208@">
        <one:InkDrawing objectID="@209@">
          <one:CallbackID callbackID="@302@"/>
        </one:InkDrawing>
      </one:OE>
      <one:OE objectID="@210@"/>
    </one:OEChildren>
  </one:Outline>
</one:Page>
)";

std::string SimplePage(int id, std::string_view name, std::string_view text) {
    return std::string(R"(<?xml version="1.0"?>
<one:Page xmlns:one="http://schemas.microsoft.com/office/onenote/2010/onenote" ID="@)") +
           std::to_string(id) + R"(@" name=")" + std::string(name) + R"(">
  <one:Title>
    <one:OE>
      <one:T><![CDATA[)" + std::string(name) + R"(]]></one:T>
    </one:OE>
  </one:Title>
  <one:Outline>
    <one:OEChildren>
      <one:OE>
        <one:T><![CDATA[)" + std::string(text) + R"(]]></one:T>
      </one:OE>
    </one:OEChildren>
  </one:Outline>
</one:Page>
)";
}

// Replaces every "@n@" by Id(n).
std::string WithIds(std::string_view text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t end = text[i] == '@' ? text.find('@', i + 1) : std::string_view::npos;
        if (end != std::string_view::npos && end > i + 1 && end - i < 6) {
            out += ToUtf8(Id(std::stoi(std::string(text.substr(i + 1, end - i - 1)))));
            i = end;
        } else {
            out += text[i];
        }
    }
    return out;
}

void WriteFile(const std::filesystem::path& file, std::string_view text) {
    std::ofstream(file, std::ios::binary) << WithIds(text);
}

}  // namespace

std::u16string Id(int n) {
    std::string digits = std::to_string(n);
    return FromUtf8("{00000000-0000-0000-0000-" + std::string(12 - digits.size(), '0') + digits + "}{1}{B0}");
}

void WriteTestNotebook(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder / "pages");
    WriteFile(folder / "hierarchy.xml", kHierarchy);
    auto page = [&](int id, std::string_view text) {
        WriteFile(folder / "pages" / NotebookFolder::PageFileName(Id(id)), text);
    };
    page(kFirst, kFirstPage);
    page(kSecond, kSecondPage);
    page(kOldPage, SimplePage(kOldPage, "Old page", "Long ago"));
    page(kCake, SimplePage(kCake, "Cake", "Flour &amp; eggs"));
}

std::vector<std::u16string> LogCapture::TakeLines() {
    std::vector<std::u16string> lines;
    const std::u16string text = Take();
    std::size_t start = 0;
    while (start <= text.size()) {
        const std::size_t end = text.find(u"\r\n", start);
        const std::u16string line = text.substr(start, end == std::u16string::npos ? std::u16string::npos : end - start);
        if (!(start == 0 && line.empty())) lines.push_back(line);
        if (end == std::u16string::npos) break;
        start = end + 2;
    }
    return lines;
}

void SessionTest::SetUp() {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    dir_ = ScratchDir(std::string("session-") + info->test_suite_name() + "-" + info->name());
    WriteTestNotebook(dir_);
    folder_ = std::make_unique<NotebookFolder>(dir_);
    session_ = std::make_unique<Session>(*folder_);
    session_->SetLog(&log_);
}

std::vector<ObjectRef> SessionTest::Query(std::u16string_view type, const ObjectRef& scope) {
    const MacroValue found = session_->QueryObjects(MacroValue(type), MacroValue(scope));
    std::vector<ObjectRef> objects;
    for (const auto& element : found.array()->elements()) objects.push_back(element.value->object());
    return objects;
}

ObjectRef SessionTest::Root() { return session_->GetNotebookRoot().object(); }

ObjectRef SessionTest::Find(std::u16string_view type, std::u16string_view text) {
    const bool hierarchy = type == u"Notebook" || type == u"SectionGroup" || type == u"Section" || type == u"Page";
    for (const ObjectRef& object : Query(type, Root())) {
        if (Get(object, hierarchy ? u"name" : u"text", true).AsString() == text) return object;
    }
    ADD_FAILURE() << "no " << ToUtf8(type) << " " << ToUtf8(text);
    return nullptr;
}

MacroValue SessionTest::Get(const ObjectRef& object, std::u16string_view name, bool quiet) {
    return object->GetProperty(name, quiet);
}

void SessionTest::Set(const ObjectRef& object, std::u16string_view name, MacroValue value) {
    object->SetProperty(name, value);
}

}  // namespace qm::onenote::testing
