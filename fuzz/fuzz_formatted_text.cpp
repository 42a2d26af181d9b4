// Bytes (UTF-8) as the content of a paragraph's text element. Reading never fails; an element
// stored back unchanged keeps its text; runs written as markup read back as the same runs
// (joined), and writing those again gives the same markup; an edit of a stretch, stored and read
// again, gives the edited text. Markup that the direct reader takes reads to the same tree as
// through the XML reader, and to the same runs whether they are made as it reads or from the tree;
// its summary is their plain text and first formatting.
// Storing decides a change as comparing the joined runs does.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <vector>
#include <string_view>

#include "core/text.h"
#include "onenote/fmt_markup.h"
#include "onenote/fmt_paragraph.h"
#include "onenote/fmt_properties.h"
#include "onenote/fmt_quick_reader.h"
#include "onenote/fmt_run_builder.h"
#include "onenote/fmt_schema.h"

namespace {

using namespace qm::onenote;

void Check(bool condition) {
    if (!condition) std::abort();
}

// The writer puts U+FFFD for a null character, which markup cannot carry.
FormattedText AsWritten(FormattedText text) {
    text.Normalize();
    for (TextRun& run : text.runs) {
        for (char16_t& c : run.text) {
            if (c == u'\0') c = u'\xFFFD';
        }
    }
    text.Normalize();
    return text;
}

void CheckRewrite(const FormattedText& runs) {
    const std::u16string markup = WriteMarkup(runs);
    const FormattedText again = ParseMarkup(markup);
    Check(again.readable);
    Check(again.runs == AsWritten(runs).runs);
    Check(WriteMarkup(again) == markup);
}

// The runs, or none when there are too many formats.
template <class Read>
std::optional<std::vector<TextRun>> RunsOrTooMany(const Read& read) {
    try {
        return read();
    } catch (const TooManyFormats&) {
        return std::nullopt;
    }
}

void CheckQuickReader(std::u16string_view content) {
    const std::u16string prepared = PrepareMarkup(content);
    // What the direct reader takes needs no preparation unless it holds breaks, hard spaces or
    // blanks around it.
    const bool framed = !content.empty() && (content.front() <= u' ' || content.back() <= u' ');
    if (!framed && content.find(u"<b") == std::u16string_view::npos && content.find(u"<B") == std::u16string_view::npos &&
        content.find(u"&nbsp;") == std::u16string_view::npos && ReadSimpleMarkup(content)) {
        Check(prepared == content);
    }
    const auto quick = ReadSimpleMarkup(prepared);
    if (!quick) return;
    // An XmlError escaping here is a finding too: the direct reader took what XML refuses.
    const auto full = qm::FMT::ParseText(u"<?xml version=\"1.0\"?><Text>" + prepared + u"</Text>");
    Check(qm::FMT::SerializeText(*quick) == qm::FMT::SerializeText(*full));
    Check(RunsOrTooMany([&] { return ReadSimpleRuns(prepared, prepared.size()).value(); }) ==
          RunsOrTooMany([&] { return RunsOfTree(*quick, prepared.size()); }));
}

// Both ways of reading markup into runs give the same runs and the same verdict.
void CheckDirectRuns(std::u16string_view content) {
    const FormattedText direct = ParseMarkup(content);
    const FormattedText tree = ReadMarkupThroughTree(content);
    Check(direct.readable == tree.readable && direct.runs == tree.runs);
    const auto summary = ParseMarkupSummary(content);
    const TextRun* first = tree.RunAt(0);
    Check(summary->plain == tree.PlainText() && summary->first == (first ? first->format : TextFormat{}));
}

bool SameJoined(FormattedText a, FormattedText b) {
    a.Normalize();
    b.Normalize();
    return a.runs == b.runs;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The first three bytes choose an edit; the rest is the content.
    const std::size_t control = size < 3 ? size : 3;
    const std::u16string content =
        qm::FromUtf8(std::string_view(reinterpret_cast<const char*>(data) + control, size - control));

    CheckQuickReader(content);
    CheckDirectRuns(content);
    qm::ON::T t;
    t.text = content;
    const FormattedText runs = ReadRuns(t);
    Check(runs.readable || runs.runs.size() == 1);
    FormattedText same = runs;
    same.Normalize();
    Check(!StoreRuns(t, runs, same) && t.text == content);
    CheckRewrite(runs);

    if (control < 3) return 0;
    const std::size_t length = runs.Length();
    const std::size_t start = length == 0 ? 0 : data[0] % (length + 1);
    const std::size_t end = start + (length == 0 ? 0 : data[1] % (length - start + 1));
    FormattedText edited = runs;
    std::u16string expected = runs.PlainText();
    switch (data[2] % 4) {
        case 0: {
            const std::u16string text = u"x\ny";
            edited.ReplaceRange(start, end, text);
            expected.replace(start, end - start, text);
            break;
        }
        case 1:
            edited.FormatRange(start, end, [](TextFormat& f) {
                WriteTextProperty(f, TextProperty::Bold, qm::MacroValue(true));
                WriteTextProperty(f, TextProperty::Lang, qm::MacroValue(u"en-US"));
            });
            break;
        case 2:
            edited.FormatRange(start, end, [](TextFormat& f) {
                WriteTextProperty(f, TextProperty::Hyperlink, qm::MacroValue(u"http://a/?b=1&c='2'"));
                WriteTextProperty(f, TextProperty::Underline, qm::MacroValue(false));
            });
            break;
        default: edited.ReplaceRange(start, end, u""); expected.erase(start, end - start); break;
    }
    Check(edited.PlainText() == expected);
    Check(StoreRuns(t, runs, edited) == !SameJoined(runs, edited));
    const FormattedText stored = ReadRuns(t);
    Check(stored.readable || t.text == content);
    if (stored.readable) Check(AsWritten(stored).runs == AsWritten(edited).runs);
    return 0;
}
