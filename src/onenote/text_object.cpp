#include "onenote/text_object.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "core/error.h"
#include "core/format.h"
#include "onenote/fmt_paragraph.h"
#include "onenote/fmt_properties.h"
#include "onenote/messages.h"
#include "onenote/object_types.h"

namespace qm::onenote {

namespace {

constexpr std::u16string_view kType = u"type";
constexpr std::u16string_view kValue = u"value";
constexpr std::u16string_view kStartIndex = u"startIndex";
constexpr std::u16string_view kEndIndex = u"endIndex";
constexpr std::u16string_view kSelected = u"selected";
constexpr std::u16string_view kAllSelected = u"all";
constexpr std::u16string_view kNotSelected = u"none";

std::u16string TextTypeName() { return std::u16string(onenote::TypeName(ObjectType::Text)); }

MacroValue IndexValue(std::size_t index) {
    return MacroValue(static_cast<std::int32_t>(
        std::min<std::size_t>(index, static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))));
}

void Log(LogSink* log, std::u16string_view text) {
    if (!log) return;
    log->Write(u"\r\n");
    log->Write(text);
}

std::u16string_view KindWord(TextValueKind kind) {
    switch (kind) {
        case TextValueKind::Bool: return msg::kKindBool;
        case TextValueKind::Number: return msg::kKindFontSize;
        case TextValueKind::String: break;
    }
    return msg::kKindString;
}

}  // namespace

TextObject::TextObject(std::shared_ptr<ON::OE> paragraph, std::shared_ptr<ON::T> element, std::size_t start,
                       std::size_t end, std::shared_ptr<TextHost> host, std::shared_ptr<ParsedRuns> parsed)
    : paragraph_(std::move(paragraph)),
      element_(std::move(element)),
      start_(start),
      end_(std::max(start, end)),
      host_(std::move(host)),
      parsed_(parsed ? std::move(parsed) : std::make_shared<ParsedRuns>()) {}

std::int32_t TextObject::TypeNumber() const { return Number(ObjectType::Text); }

std::u16string TextObject::TypeName() const { return TextTypeName(); }

const FormattedText& TextObject::Runs() const {
    ParsedRuns& parsed = *parsed_;
    if (!parsed.valid || parsed.source != element_->text) {
        parsed.runs = ReadRuns(*element_);
        parsed.source = element_->text;
        parsed.valid = true;
    }
    return parsed.runs;
}

std::u16string TextObject::Value() const {
    const std::u16string plain = Runs().PlainText();
    const std::size_t start = std::min(start_, plain.size());
    return plain.substr(start, std::min(end_, plain.size()) - start);
}

MacroValue TextObject::GetProperty(std::u16string_view name, bool quiet) {
    if (name == kType) return MacroValue(TypeName());
    if (name == kValue) return MacroValue(Value());
    if (name == kStartIndex || name == kEndIndex) {
        const std::size_t offset = OffsetInParagraph(paragraph_.get(), *element_);
        return IndexValue(offset + (name == kStartIndex ? start_ : end_));
    }
    if (name == kSelected) return MacroValue(element_->selected.value == kAllSelected);
    if (const auto property = TextPropertyNamed(name)) {
        const FormattedText& runs = Runs();
        const TextRun* run = runs.RunAt(std::min(start_, runs.Length()));
        return ReadTextProperty(run ? run->format : TextFormat{}, *property);
    }
    if (quiet) return MacroValue();
    throw MacroError(FormatMessage(msg::kUnknownProperty, {name, TypeName()}));
}

void TextObject::SetProperty(std::u16string_view name, const MacroValue& value) {
    LogSink* log = host_ ? host_->log() : nullptr;
    if (log) {
        std::u16string line(msg::kLogModifyingProperty);
        line += name;
        line += msg::kLogModifyingPropertyValue;
        line += GetProperty(name, true).Describe();
        Log(log, line);
    }
    const auto property = TextPropertyNamed(name);
    if (name == kType || name == kStartIndex || name == kEndIndex) {
        throw MacroError(FormatMessage(msg::kReadOnlyProperty, {name, TypeName()}));
    }
    if (name != kValue && name != kSelected && !property) {
        throw MacroError(FormatMessage(msg::kUnknownProperty, {name, TypeName()}));
    }
    const TextValueKind kind = property ? KindOf(*property) : name == kSelected ? TextValueKind::Bool
                                                                                : TextValueKind::String;
    MacroValue converted;
    try {
        converted = property ? ConvertTextValue(*property, value)
                             : kind == TextValueKind::Bool ? MacroValue(value.AsBoolean()) : MacroValue(value.AsString());
    } catch (const std::invalid_argument&) {
        throw MacroError(FormatMessage(msg::kInvalidPropertyValue, {name, TypeName(), value.DescribeShort(), KindWord(kind)}));
    }

    if (name == kSelected) {
        const std::u16string_view selection = converted.boolean() ? kAllSelected : kNotSelected;
        if (element_->selected.value != selection) {
            element_->selected = std::u16string(selection);
            if (host_) host_->MarkModified();
        }
    } else {
        const FormattedText before = Runs();
        FormattedText after = before;
        if (property) {
            after.FormatRange(start_, end_, [&](TextFormat& format) { WriteTextProperty(format, *property, converted); });
        } else {
            const std::u16string text = NormalizeLineBreaks(converted.string());
            const std::size_t start = std::min(start_, before.Length());
            after.ReplaceRange(start, end_, text);
            start_ = start;
            end_ = start + text.size();
        }
        Store(before, after);
    }
    if (log) Log(log, std::u16string(msg::kLogNewValue) + GetProperty(name, true).Describe());
}

void TextObject::Store(const FormattedText& before, const FormattedText& after) {
    if (StoreRuns(*element_, before, after) && host_) host_->MarkModified();
}

bool TextObject::SameAs(const MacroObject& other) const {
    const auto* text = dynamic_cast<const TextObject*>(&other);
    return text && text->paragraph_ == paragraph_ && text->element_ == element_ && text->start_ == start_ &&
           text->end_ == end_;
}

std::u16string TextObject::Describe() const {
    const std::u16string type = TypeName();
    return type + u" \"" + Value() + u"\" (" + type + u")";
}

std::vector<ObjectRef> TextObjectsOfParagraph(const std::shared_ptr<ON::OE>& paragraph,
                                              const std::shared_ptr<TextHost>& host) {
    std::vector<ObjectRef> objects;
    if (!paragraph) return objects;
    for (const auto& choice : paragraph->content) {
        if (!choice || !choice->t) continue;
        const auto parsed = std::make_shared<ParsedRuns>(ParsedRuns{choice->t->text, ReadRuns(*choice->t), true});
        std::size_t start = 0;
        for (const TextRun& run : parsed->runs.runs) {
            const std::size_t end = start + run.text.size();
            if (end > start) {
                objects.push_back(std::make_shared<TextObject>(paragraph, choice->t, start, end, host, parsed));
            }
            start = end;
        }
    }
    return objects;
}

std::vector<ObjectRef> FindTextInParagraph(const std::shared_ptr<ON::OE>& paragraph, std::u16string_view value,
                                           bool ignoreCase, const std::shared_ptr<TextHost>& host) {
    std::vector<ObjectRef> objects;
    if (!paragraph) return objects;
    for (const auto& choice : paragraph->content) {
        if (!choice || !choice->t) continue;
        const auto parsed = std::make_shared<ParsedRuns>(ParsedRuns{choice->t->text, ReadRuns(*choice->t), true});
        for (const TextMatch& match : FindMatches(parsed->runs.PlainText(), value, ignoreCase)) {
            objects.push_back(std::make_shared<TextObject>(paragraph, choice->t, match.start, match.end, host, parsed));
        }
    }
    return objects;
}

}  // namespace qm::onenote
