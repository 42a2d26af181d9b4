// The Text macro object: a stretch of one paragraph text element's characters, [start, end) in
// the element's plain text. Paragraph.texts gives one per run; QueryText gives one per match.
//
// - A stretch, not a copy: every read looks at the element's current text (kept parsed until the
//   text changes), so objects over one element see each other's changes.
// - Formatting reads come from the run of the stretch's first character; writes format every
//   character of the stretch, splitting runs at its ends. A match that spans several runs is
//   therefore one object.
// - Writing `value` replaces the stretch's characters (formatted as its first character) and
//   the stretch becomes the new characters. Stretches of other objects over the same element are
//   not moved.
// - startIndex and endIndex count in the paragraph's text, across all its text elements.
// - `selected` is the element's selection: true when it is "all"; writing it selects or
//   deselects the whole element.
// - Equality: the same paragraph, the same element, the same start and end.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/evaluator.h"
#include "core/value.h"
#include "onenote/fmt_runs.h"
#include "onenote/on_schema.h"

namespace qm::onenote {

// What a Text object needs from the page it lives on; the object model implements it per loaded
// page.
class TextHost {
public:
    virtual ~TextHost() = default;
    // A write changed the page's content: the page must be saved.
    virtual void MarkModified() = 0;
    // The macro log, or null when nothing is logged.
    virtual LogSink* log() = 0;
};

// The runs of one element as last parsed, shared by the objects made over it together.
struct ParsedRuns {
    std::u16string source;
    FormattedText runs;
    bool valid = false;
};

class TextObject final : public MacroObject {
public:
    // `paragraph` holds `element` (it may be null for an element outside any paragraph). Objects
    // over one element may share `parsed` (null: the object keeps its own).
    TextObject(std::shared_ptr<ON::OE> paragraph, std::shared_ptr<ON::T> element, std::size_t start,
               std::size_t end, std::shared_ptr<TextHost> host, std::shared_ptr<ParsedRuns> parsed = nullptr);

    std::int32_t TypeNumber() const override;
    std::u16string TypeName() const override;
    MacroValue GetProperty(std::u16string_view name, bool quiet) override;
    void SetProperty(std::u16string_view name, const MacroValue& value) override;
    bool SameAs(const MacroObject& other) const override;
    // `Text "its value" (Text)`.
    std::u16string Describe() const override;

    const std::shared_ptr<ON::OE>& paragraph() const noexcept { return paragraph_; }
    const std::shared_ptr<ON::T>& element() const noexcept { return element_; }
    std::size_t start() const noexcept { return start_; }
    std::size_t end() const noexcept { return end_; }
    // The stretch's characters.
    std::u16string Value() const;

private:
    const FormattedText& Runs() const;
    // Stores changed runs and tells the host.
    void Store(const FormattedText& before, const FormattedText& after);

    std::shared_ptr<ON::OE> paragraph_;
    std::shared_ptr<ON::T> element_;
    std::size_t start_;
    std::size_t end_;
    std::shared_ptr<TextHost> host_;
    std::shared_ptr<ParsedRuns> parsed_;
};

// One Text object per run of the paragraph's text elements, in order.
std::vector<ObjectRef> TextObjectsOfParagraph(const std::shared_ptr<ON::OE>& paragraph,
                                              const std::shared_ptr<TextHost>& host);

// One Text object per place `value` occurs in the paragraph's text elements (a match never spans
// two elements), in order. The caller logs the total with FoundTextLogLine (fmt_paragraph.h).
std::vector<ObjectRef> FindTextInParagraph(const std::shared_ptr<ON::OE>& paragraph, std::u16string_view value,
                                           bool ignoreCase, const std::shared_ptr<TextHost>& host);

}  // namespace qm::onenote
