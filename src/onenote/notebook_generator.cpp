#include "onenote/notebook_generator.h"

#include <cstdio>
#include <fstream>

#include "core/format.h"
#include "core/text.h"
#include "onenote/messages.h"
#include "onenote/notebook_folder.h"
#include "onenote/on_document.h"

namespace qm::onenote {

namespace fs = std::filesystem;

namespace {

// A GUID made of counters: {KKKKNNNN-SSSS-4PPP-8000-00000000000Q}.
std::u16string Guid(int kind, int notebook, int section, int page) {
    char text[48];
    std::snprintf(text, sizeof text, "{%04X%04X-%04X-4%03X-8000-%012X}", kind & 0xFFFF, notebook & 0xFFFF,
                  section & 0xFFFF, page & 0xFFF, static_cast<unsigned>(page));
    return Ascii(text);
}

ON::DateTime At(int dayOffset, int minute) {
    xml::SystemTime t{};
    t.wYear = 2024;
    t.wMonth = static_cast<std::uint16_t>(1 + (dayOffset / 28) % 12);
    t.wDay = static_cast<std::uint16_t>(1 + dayOffset % 28);
    t.wHour = static_cast<std::uint16_t>(8 + (minute / 60) % 10);
    t.wMinute = static_cast<std::uint16_t>(minute % 60);
    t.wSecond = static_cast<std::uint16_t>((minute * 7) % 60);
    return ON::DateTime::Of(t);
}

template <class Choice, class E>
std::shared_ptr<Choice> ChoiceOf(std::shared_ptr<E> element, std::shared_ptr<E> Choice::*slot) {
    auto choice = std::make_shared<Choice>();
    element->owner = choice.get();
    (*choice).*slot = std::move(element);
    return choice;
}

std::shared_ptr<ON::T> Run(std::u16string text) {
    auto t = ON::New<ON::T>();
    t->text = std::move(text);
    t->cdata = true;
    return t;
}

std::shared_ptr<ON::OE> Paragraph(const std::u16string& objectGuid, int index, int page) {
    auto oe = ON::New<ON::OE>();
    oe->author = u"Anna Berg";
    oe->authorInitials = u"AB";
    oe->lastModifiedBy = u"Anna Berg";
    oe->lastModifiedByInitials = u"AB";
    oe->creationTime = At(page, index);
    oe->lastModifiedTime = At(page, index + 3);
    oe->objectID = objectGuid + u"{" + Ascii(std::to_string(20 + index)) + u"}{B0}";
    oe->quickStyleIndex = ON::Int::Of(1);
    const std::u16string n = Ascii(std::to_string(index + 1));
    if (index % 10 == 9) {
        auto tag = std::make_shared<ON::Tag>();
        tag->index = ON::Int::Of(0);
        tag->completed = index % 20 == 19;
        tag->creationDate = At(page, index);
        oe->tags.Add(ChoiceOf(tag, &ON::TagChoice::tag));
    }
    if (index % 5 == 4) {
        auto list = std::make_shared<ON::List>();
        list->bullet = std::make_shared<ON::Bullet>();
        list->bullet->bullet = ON::Int::Of(2);
        list->bullet->fontSize = ON::Float::Of(11);
        list->bullet->owner = list.get();
        list->owner = oe.get();
        oe->list = list;
    }
    oe->content.Add(ChoiceOf(Run(u"Paragraph " + n + u" with <span style='font-weight:bold'>bold</span> and <span\n"
                                 u"style='color:#2E75B5'>blue</span> words, and a <a href=\"https://example.org/" +
                                 n + u"\">link</a> to read later."),
                             &ON::OEChoice::t));
    return oe;
}

std::shared_ptr<ON::Page> PageContent(const ON::Page& entry, const std::u16string& objectGuid, int pageNumber,
                                      int paragraphs) {
    auto page = ON::ReadPage(ON::WriteDocument(entry), u"generated page");
    page->lang = u"en-GB";
    auto tagDef = ON::New<ON::TagDef>();
    tagDef->index = ON::Int::Of(0);
    tagDef->name = u"To Do";
    tagDef->type = ON::Int::Of(0);
    tagDef->symbol = ON::Int::Of(3);
    page->tagDefs.Add(tagDef);

    auto titleOe = ON::New<ON::OE>();
    titleOe->objectID = objectGuid + u"{15}{B0}";
    titleOe->content.Add(ChoiceOf(Run(*entry.name), &ON::OEChoice::t));
    auto title = ON::New<ON::Title>();
    titleOe->owner = title.get();
    title->oe = titleOe;
    title->owner = page.get();
    page->title = title;

    auto outline = ON::New<ON::Outline>();
    outline->objectID = objectGuid + u"{16}{B0}";
    outline->position = std::make_shared<ON::Position>();
    outline->position->x = ON::Float::Of(36);
    outline->position->y = ON::Float::Of(86.4);
    outline->position->z = ON::Int::Of(0);
    outline->size = std::make_shared<ON::Size>();
    outline->size->width = ON::Float::Of(420);
    outline->size->height = ON::Float::Of(18.5 * paragraphs);
    outline->position->owner = outline.get();
    outline->size->owner = outline.get();
    auto children = ON::New<ON::OEChildren>();
    for (int i = 0; i < paragraphs; ++i) {
        children->items.Add(ChoiceOf(Paragraph(objectGuid, i, pageNumber), &ON::OEChildrenChoice::oe));
    }
    outline->oeChildren.Add(children);
    page->elements.Add(ChoiceOf(outline, &ON::PageElementChoice::outline));
    return page;
}

void WriteFile(const fs::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) throw FolderError(FormatMessage(msg::kFileNotWritten, {path.u16string()}));
}

}  // namespace

void GenerateNotebookFolder(const fs::path& folder, const GeneratedSize& size) {
    fs::create_directories(folder / "pages");
    auto root = std::make_shared<ON::Notebooks>();
    int pageNumber = 0;
    for (int n = 0; n < size.notebooks; ++n) {
        auto notebook = std::make_shared<ON::Notebook>();
        const std::u16string number = Ascii(std::to_string(n + 1));
        notebook->ID = Guid(1, n, 0, 0) + u"{1}{B0}";
        notebook->name = u"Notebook " + number;
        notebook->nickname = notebook->name;
        notebook->path = u"C:\\Notebooks\\Notebook " + number;
        notebook->lastModifiedTime = At(n, 0);
        notebook->color = u"#ADE792";
        notebook->isCurrentlyViewed = n == 0;
        for (int s = 0; s < size.sections; ++s) {
            auto section = std::make_shared<ON::Section>();
            const std::u16string sectionGuid = Guid(2, n, s, 0);
            const std::u16string sectionName = u"Section " + number + u"." + Ascii(std::to_string(s + 1));
            section->ID = sectionGuid + u"{1}{B0}";
            section->name = sectionName;
            section->path = *notebook->path + u"\\" + sectionName + u".one";
            section->lastModifiedTime = At(n + s, 0);
            section->color = u"#8AA8E4";
            section->isCurrentlyViewed = n == 0 && s == 0;
            for (int p = 0; p < size.pages; ++p, ++pageNumber) {
                auto entry = std::make_shared<ON::Page>();
                entry->ID = sectionGuid + u"{1}{E" + Ascii(std::to_string(1000000000000 + pageNumber)) + u"}";
                entry->name = u"Page " + Ascii(std::to_string(pageNumber + 1));
                entry->dateTime = At(pageNumber, 0);
                entry->lastModifiedTime = At(pageNumber, 30);
                entry->pageLevel = ON::Int::Of(1);
                entry->isCurrentlyViewed = pageNumber == 0;
                const auto content = PageContent(*entry, Guid(3, n, s, p), pageNumber, size.paragraphs);
                WriteFile(folder / "pages" / NotebookFolder::PageFileName(*entry->ID), ON::WriteDocumentFile(*content));
                section->pages.Add(entry);
            }
            notebook->children.Add(ChoiceOf(section, &ON::SectionChoice::section));
        }
        root->notebooks.Add(notebook);
    }
    WriteFile(folder / "hierarchy.xml", ON::WriteDocumentFile(*root));
}

}  // namespace qm::onenote
