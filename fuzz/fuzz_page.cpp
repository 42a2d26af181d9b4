// Bytes as a OneNote page or hierarchy document, in whatever encoding they arrive in. Whatever
// reads must write, read again and write the same text again; the readable listing of what was
// read must not fail either, and a written page must be stored by the notebook folder as written.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "onenote/given_page.h"
#include "onenote/notebook_listing.h"
#include "onenote/on_document.h"
#include "onenote/plain_text.h"
#include "xml/file_io.h"

namespace {

using qm::ON::DocumentError;

void PageRoundTrip(std::u16string_view text) {
    std::shared_ptr<qm::ON::Page> first;
    try {
        first = qm::ON::ReadPage(text, u"fuzzed page");
    } catch (const DocumentError&) {
        return;
    }
    (void)qm::onenote::ListPage(*first);
    const std::u16string written = qm::ON::WriteDocument(*first);
    const auto second = qm::ON::ReadPage(written, u"written page");  // an error here is a finding
    if (qm::ON::WriteDocument(*second) != written) std::abort();
    // The notebook folder stores a page sent in the written form as it is, with its name and time
    // set: byte for byte what binding and writing it gives.
    if (const auto given = qm::onenote::detail::ReadGivenPage(written)) {
        const auto time = qm::ON::DateTime::Of(qm::xml::SystemTime{2024, 5, 0, 6, 7, 8, 9, 0});
        if (second->title) second->name = qm::onenote::TitleText(*second);
        second->lastModifiedTime = time;
        if (qm::onenote::detail::PageFileBytes(*given, second->name, time) != qm::ON::WriteDocumentFile(*second)) {
            std::abort();
        }
    }
}

void HierarchyRoundTrip(std::u16string_view text) {
    qm::ON::HierarchyDocument first;
    try {
        first = qm::ON::ReadHierarchy(text, u"fuzzed hierarchy");
    } catch (const DocumentError&) {
        return;
    }
    (void)qm::onenote::ListHierarchy(qm::ON::RootOf(first));
    const std::u16string written = qm::ON::WriteDocument(qm::ON::RootOf(first));
    const auto second = qm::ON::ReadHierarchy(written, u"written hierarchy");
    if (qm::ON::WriteDocument(qm::ON::RootOf(second)) != written) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::u16string text = qm::io::DecodeXmlBytes(std::string_view(reinterpret_cast<const char*>(data), size));
    PageRoundTrip(text);
    HierarchyRoundTrip(text);
    return 0;
}
