// The data model of bound documents: what every bound element carries, the containers that hold
// elements, and the state one read of a document shares between its elements.
//
// A schema is bound by describing each element type's attributes, children and text once (see
// binding.h). Types that xml-aware layers define derive from Child<E> and get the common header;
// types defined below this layer (the expression tree) are bound without knowing it, through their
// description alone.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>
#include <vector>

#include "xml/xml_reader.h"
#include "xml/xml_writer.h"

namespace qm::xml {

// What a field, an element or the reading loop answers when offered a child element.
enum class ReadResult {
    NotMine,   // not claimed: offer it elsewhere
    Handled,   // claimed (and read), or deliberately dropped
    Finished,  // the enclosing element's end was met while looking: stop reading it
};

using ContextWords = std::array<std::uintptr_t, 3>;

class ChildElement;

// Any bound element, as the element-end callback sees it.
class T_Element {
public:
    template <class E>
    T_Element(const E& element, const ChildElement* header)
        : object_(&element), type_(&typeid(E)), header_(header) {}

    template <class E>
    const E* As() const {
        return *type_ == typeid(E) ? static_cast<const E*>(object_) : nullptr;
    }
    const std::type_info& type() const { return *type_; }
    // The common header, for element types that have one.
    const ChildElement* header() const { return header_; }

private:
    const void* object_;
    const std::type_info* type_;
    const ChildElement* header_;
};

// The caller's side of a read: copied into every element header, and told about every element
// whose reading ends.
struct ReadContext {
    ContextWords source{};
    ContextWords position{};
    std::function<void(std::u16string_view name, const T_Element& element)> onElementEnd;
};

// One read of one document: the reader, the caller's context and the nesting so far.
class ReadSession {
public:
    ReadSession(XmlReader& reader, const ReadContext& context) : reader_(reader), context_(context) {}
    ReadSession(const ReadSession&) = delete;
    ReadSession& operator=(const ReadSession&) = delete;

    XmlReader& reader() const { return reader_; }
    const ReadContext& context() const { return context_; }

    // Element reads recurse once per level; beyond kMaxElementDepth (plus the frame that reads a
    // whole document) the read fails.
    void Enter();
    void Leave() { --depth_; }

    // A counter a binding keeps for the length of one read, found by the address of a key object
    // of its own; used to bound the nesting of a recursive content model.
    int& Counter(const void* key);

    // Raises XmlError at the reader's position.
    [[noreturn]] void Fail(std::u16string message) const;

    // The element whose read ended last (its object's address): right after a field has read a
    // child, that child.
    const void* lastElement() const { return lastElement_; }
    void SetLastElement(const void* element) { lastElement_ = element; }

private:
    XmlReader& reader_;
    const ReadContext& context_;
    int depth_ = 0;
    const void* lastElement_ = nullptr;
    std::vector<std::pair<const void*, int>> counters_;
};

// Anything that holds elements: an element (through its single child slots), a child list, or a
// choice. `owner` is the container one level up: for an element, the list, choice or element that
// holds it; for a list, the element whose field it is; for a choice, the list that holds it.
struct Container {
    Container* owner = nullptr;

    Container() = default;
    Container(const Container&) = default;
    Container& operator=(const Container&) = default;
    virtual ~Container() = default;
};

// The common header of every element type defined in an xml-aware layer.
class ChildElement : public Container {
public:
    ContextWords source{};    // the caller's document context, copied when read
    ContextWords position{};  // caller-defined, copied when read
    bool present = false;     // read from a document (a default-constructed element: false)
    bool cdata = false;       // some text content arrived as CDATA

    // Attributes (unless skipped), then children and text, in schema order.
    virtual void WriteContent(XmlWriter& writer, bool skipAttributes) const = 0;
    virtual void WriteStartElement(XmlWriter& writer) const = 0;
    // Fills the element from a reader positioned on its start tag, or before a whole document.
    virtual ReadResult Read(ReadSession& session) = 0;
    virtual std::u16string_view ElementName() const = 0;

protected:
    ChildElement() = default;
    ChildElement(const ChildElement&) = default;
    ChildElement& operator=(const ChildElement&) = default;
};

// An attribute value kept beside the default it was constructed with; written only when the two
// differ.
template <class T>
struct Defaulted {
    T value{};
    T defaultValue{};

    Defaulted() = default;
    Defaulted(T initial) : value(initial), defaultValue(std::move(initial)) {}  // NOLINT: implicit by design
    Defaulted& operator=(T v) {
        value = std::move(v);
        return *this;
    }

    const T& operator*() const noexcept { return value; }
    bool IsDefault() const { return value == defaultValue; }
};

// The ordered children of one type. Elements added through it point back at it; it is neither
// copied nor moved, so those back-pointers stay valid.
template <class E>
class ChildList : public Container {
public:
    using value_type = std::shared_ptr<E>;

    ChildList() = default;
    // A list that knows the element holding it from the start (a list read from a document learns
    // it when its first element is read).
    explicit ChildList(Container* holder) { owner = holder; }
    ChildList(const ChildList&) = delete;
    ChildList& operator=(const ChildList&) = delete;

    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }
    std::size_t size() const noexcept { return items_.size(); }
    bool empty() const noexcept { return items_.empty(); }
    const std::shared_ptr<E>& operator[](std::size_t i) const { return items_[i]; }
    const std::vector<std::shared_ptr<E>>& items() const noexcept { return items_; }

    E& Add(std::shared_ptr<E> element) {
        element->owner = this;
        items_.push_back(std::move(element));
        return *items_.back();
    }
    void Insert(std::size_t index, std::shared_ptr<E> element) {
        element->owner = this;
        items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(index), std::move(element));
    }
    std::shared_ptr<E> Remove(std::size_t index) {
        std::shared_ptr<E> removed = std::move(items_[index]);
        items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
        removed->owner = nullptr;
        return removed;
    }
    void Clear() {
        for (auto& item : items_) item->owner = nullptr;
        items_.clear();
    }

private:
    std::vector<std::shared_ptr<E>> items_;
};

// A choice object: one slot per alternative element type, of which a read document fills exactly
// one. Choice types derive from it and name their slots `ChoiceSlot`s.
struct ChoiceGroup : Container {};

template <class T>
using ChoiceSlot = std::shared_ptr<T>;

}  // namespace qm::xml
