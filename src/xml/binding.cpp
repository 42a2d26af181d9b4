#include "xml/binding.h"

#include "core/format.h"
#include "core/text.h"
#include "xml/messages.h"
#include "xml/xml_error.h"

namespace qm::xml {

namespace {

// Collects an element's text nodes under the indentation rule: blank-only nodes count only when
// they touch other text, or when the element has no child elements.
class TextCollector {
public:
    explicit TextCollector(bool wanted) : wanted_(wanted) {}

    void OnText(std::u16string_view value, bool cdata) {
        cdata_ = cdata_ || cdata;
        seen_ = true;
        if (!wanted_) return;
        text_ += pending_;
        pending_.clear();
        text_ += value;
        touching_ = true;
    }
    void OnBlank(std::u16string_view value) {
        if (!wanted_) return;
        seen_ = true;
        (touching_ ? text_ : pending_) += value;
    }
    void OnElement() {
        pending_.clear();
        touching_ = false;
        sawElement_ = true;
    }
    void Deliver(ElementHandler& handler) {
        if (!sawElement_) text_ += pending_;
        if (seen_) handler.Text(std::move(text_), cdata_);
    }

private:
    bool wanted_;
    bool seen_ = false;
    bool cdata_ = false;
    bool touching_ = false;
    bool sawElement_ = false;
    std::u16string text_;
    std::u16string pending_;
};

}  // namespace

void ReadSession::Enter() {
    if (++depth_ > kMaxElementDepth + 1) {
        Fail(FormatMessage(msg::kNestedTooDeeply, {Ascii(std::to_string(kMaxElementDepth))}));
    }
}

int& ReadSession::Counter(const void* key) {
    for (auto& [k, value] : counters_) {
        if (k == key) return value;
    }
    return counters_.emplace_back(key, 0).second;
}

void ReadSession::Fail(std::u16string message) const {
    throw XmlError(std::move(message), reader_.line(), reader_.column());
}

ReadResult RunReadLoop(ElementHandler& handler, ReadSession& session) {
    session.Enter();
    handler.Begin(session);
    XmlReader& reader = session.reader();

    if (reader.MoveToFirstAttribute()) {
        do {
            handler.Attribute(reader.localName(), reader.value(), reader);
        } while (reader.MoveToNextAttribute());
        reader.MoveToElement();
    }

    if (!reader.isEmptyElement()) {
        const bool wantsText = handler.WantsText();
        const bool mixed = handler.Mixed();
        TextCollector text(wantsText);
        bool declarationSeen = false;
        bool ended = false;
        int transparent = 0;  // unclaimed elements open inside mixed content
        while (!ended && reader.Read()) {
            switch (reader.nodeType()) {
                case NodeType::Element: {
                    text.OnElement();
                    const std::u16string_view name = reader.localName();
                    const bool empty = reader.isEmptyElement();
                    const ReadResult result = declarationSeen && name == handler.Name()
                                                  ? handler.ReadAgain(session)
                                                  : handler.Child(name, session);
                    if (mixed && result == ReadResult::NotMine && !empty) ++transparent;
                    ended = result == ReadResult::Finished;
                    break;
                }
                case NodeType::Text:
                case NodeType::CDATA: {
                    if (mixed) {
                        handler.MixedText(reader.value());
                        break;
                    }
                    const bool cdata = reader.nodeType() == NodeType::CDATA;
                    text.OnText(reader.value(), cdata);
                    if (!wantsText) handler.StrayText(reader.value(), cdata);
                    break;
                }
                case NodeType::Whitespace:
                    if (mixed) {
                        handler.MixedText(reader.value());
                    } else {
                        text.OnBlank(reader.value());
                    }
                    break;
                case NodeType::EndElement:
                    if (transparent > 0) {
                        --transparent;
                    } else {
                        ended = true;
                    }
                    break;
                case NodeType::XmlDeclaration: declarationSeen = true; break;
                default: break;
            }
        }
        text.Deliver(handler);
    }

    handler.Finish(session);
    session.Leave();
    return ReadResult::Handled;
}

bool AdvanceToElement(ReadSession& session, std::u16string& name) {
    XmlReader& reader = session.reader();
    while (reader.Read()) {
        switch (reader.nodeType()) {
            case NodeType::Element: name.assign(reader.localName()); return true;
            case NodeType::EndElement: return false;
            default: break;
        }
    }
    return false;
}

void ParseElement(std::u16string_view text, ChildElement& root, const ReadContext& context) {
    const auto reader = CreateStringXmlReader(text);
    ReadSession session(*reader, context);
    root.Read(session);
}

void SerializeElement(const ChildElement& element, std::u16string& out, XmlWriter* writer, bool contentOnly,
                      bool skipAttributes, bool withDeclaration, bool indent) {
    std::u16string text;
    StringSink sink(text);
    XmlWriter own(sink, indent);
    XmlWriter& target = writer != nullptr ? *writer : own;
    if (writer == nullptr && withDeclaration) own.WriteDeclaration();
    if (!contentOnly) element.WriteStartElement(target);
    element.WriteContent(target, skipAttributes);
    if (!contentOnly) target.EndElement();
    if (writer == nullptr) {
        own.EndDocument();
        out = std::move(text);
    }
}

}  // namespace qm::xml
