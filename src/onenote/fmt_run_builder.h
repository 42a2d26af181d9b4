// Runs built from the events of reading markup, in document order: text, the start of a `span`
// or an `a`, and the end of the element. Both readers of fmt_markup.h feed one: the direct reader
// as it reads, the XML route by walking the FMT tree. So both make the same runs from the same
// markup by construction.
//
// Each maximal stretch of characters under the same chain of elements is one run; its CSS is that
// of its spans, outer to inner (an inner declaration wins), its language that of the nearest span
// that has one, its link that of the nearest `a` that has an `href`.
//
// Each run carries its whole formatting, which nesting repeats: a long link around many small
// spans, deep nesting under long styles. The formatting made is therefore bounded by a multiple
// of the markup's size; beyond it the builder raises TooManyFormats and the markup is unreadable.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "onenote/fmt_runs.h"
#include "onenote/fmt_schema.h"

namespace qm::onenote {

// Raised when the runs would take far more room than the markup they come from.
struct TooManyFormats {};

class RunBuilder {
public:
    // `markupSize`: the size of the document read, wrapper included.
    explicit RunBuilder(std::size_t markupSize);

    void Text(std::u16string_view text);
    void OpenSpan(const std::optional<std::u16string_view>& style, const std::optional<std::u16string_view>& lang);
    void OpenAnchor(const std::optional<std::u16string_view>& href);
    // Ends the innermost open element.
    void Close();
    // The runs; the builder is spent.
    std::vector<TextRun> Take();

private:
    struct Frame {
        TextFormat format;
        std::size_t size;     // the room the format takes, as the budget counts it
        std::size_t element;  // the chain's identity
        // The first run made directly in the element, which takes the format when the element
        // ends rather than a copy of it now; none yet when npos.
        std::size_t firstRun;
    };

    void Spend(std::size_t size);
    void Open(TextFormat format);

    std::size_t budget_;
    std::vector<TextRun> runs_;
    std::vector<Frame> frames_;
    std::size_t elements_ = 0;
    std::size_t lastElement_ = 0;
};

// The summary of the runs RunBuilder would make from the same events, without their formatting
// past the first character. The budget is counted from an upper bound of each format's size (the
// sizes of the attributes it comes from): TooManyFormats here means only that RunBuilder might
// raise it, and the caller asks it.
class SummaryBuilder {
public:
    explicit SummaryBuilder(std::size_t markupSize);

    void Text(std::u16string_view text);
    void OpenSpan(const std::optional<std::u16string_view>& style, const std::optional<std::u16string_view>& lang);
    void OpenAnchor(const std::optional<std::u16string_view>& href);
    void Close();
    TextSummary Take();

private:
    struct Frame {
        std::size_t bound;    // at least the room the format takes
        std::size_t element;  // the chain's identity
        TextFormat format;    // made only until the first character is read
    };

    void Spend(std::size_t size);

    std::size_t budget_;
    TextSummary summary_;
    bool started_ = false;  // the first character is read
    std::vector<Frame> frames_;
    std::size_t elements_ = 0;
    std::size_t lastElement_ = 0;
};

// The runs of a tree the XML binding (or the direct reader) built, walked without recursion.
std::vector<TextRun> RunsOfTree(const FMT::Text& root, std::size_t markupSize);

}  // namespace qm::onenote
