// MacroArray: the keyed array container of the value model. The representation and
// the rules for nextIndex are described in value.h.
#include <algorithm>
#include <limits>
#include <stdexcept>

#include "core/value.h"
#include "core/value_pool.h"

namespace qm {

namespace {

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

template <class... Args>
ValueRef MakeElement(Args&&... args) {
    return std::allocate_shared<MacroValue>(ElementAllocator<MacroValue>(), std::forward<Args>(args)...);
}

}  // namespace

namespace {

// The index named by a canonical non-negative decimal key ("0", "17"; not "007", "-1", "+1"), or
// -1. Only such keys can name an element of a dense array.
std::int64_t CanonicalIndex(std::u16string_view key) {
    if (key.empty() || key.size() > 18) return -1;
    if (key[0] == u'0') return key.size() == 1 ? 0 : -1;
    std::int64_t value = 0;
    for (char16_t c : key) {
        if (!IsDigit(c)) return -1;
        value = value * 10 + (c - u'0');
    }
    return value;
}

// The value of an integer key (IsIntegerText), saturated to the int64 range.
std::int64_t IntegerKeyValue(std::u16string_view key) {
    bool negative = key[0] == u'-';
    std::int64_t value = 0;
    constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
    for (std::size_t i = negative ? 1 : 0; i < key.size(); ++i) {
        int digit = key[i] - u'0';
        if (value > (kMax - digit) / 10) return negative ? std::numeric_limits<std::int64_t>::min() : kMax;
        value = value * 10 + digit;
    }
    return negative ? -value : value;
}

}  // namespace

MacroArray::~MacroArray() {
    // Nested arrays that only this array holds are taken apart here, level by level, so a deeply
    // nested array does not recurse through shared_ptr destructors.
    std::vector<ValueRef> pending;
    auto collect = [&pending](std::vector<Element>& elements) {
        for (Element& element : elements) {
            ValueRef& value = element.value;
            if (value && value.use_count() == 1 && value->kind() == Kind::Array) {
                const ArrayRef& inner = value->array();
                if (inner && inner.use_count() == 1 && !inner->elements_.empty()) pending.push_back(std::move(value));
            }
        }
    };
    collect(elements_);
    while (!pending.empty()) {
        ValueRef value = std::move(pending.back());
        pending.pop_back();
        MacroArray& inner = *value->array();
        collect(inner.elements_);
        inner.elements_.clear();
        inner.keys_.clear();
    }
}

void MacroArray::MakeSparse() {
    if (!dense_) return;
    keys_.clear();
    for (std::size_t i = 0; i < elements_.size(); ++i) keys_.emplace_hint(keys_.end(), elements_[i].key, i);
    dense_ = false;
}

void MacroArray::NoteIntegerKey(std::u16string_view key) {
    if (!IsIntegerText(key)) return;
    std::int64_t value = IntegerKeyValue(key);
    if (value >= nextIndex_ && value < std::numeric_limits<std::int64_t>::max()) nextIndex_ = value + 1;
}

std::size_t MacroArray::IndexOf(std::u16string_view key) const {
    if (dense_) {
        std::int64_t i = CanonicalIndex(key);
        return (i >= 0 && static_cast<std::uint64_t>(i) < elements_.size()) ? static_cast<std::size_t>(i) : npos;
    }
    auto it = keys_.find(key);
    return it == keys_.end() ? npos : it->second;
}

MacroValue* MacroArray::FindValue(std::u16string_view key) const {
    std::size_t i = IndexOf(key);
    return i == npos ? nullptr : elements_[i].value.get();
}

ValueRef MacroArray::Find(std::u16string_view key) const {
    std::size_t i = IndexOf(key);
    return i == npos ? nullptr : elements_[i].value;
}

void MacroArray::PushDense(MacroValue&& value) {
    // The new key is the last key plus one ("41" -> "42", "99" -> "100"), counted up in its text:
    // cheaper than writing the number out afresh, and the same text, as a dense array's keys are
    // exactly "0".."n-1".
    std::u16string key;
    if (elements_.empty()) {
        key = u"0";
    } else {
        key = elements_.back().key;
        std::size_t i = key.size();
        while (i > 0 && key[i - 1] == u'9') key[--i] = u'0';
        if (i == 0) {
            key.insert(key.begin(), u'1');
        } else {
            ++key[i - 1];
        }
    }
    elements_.push_back(Element{std::move(key), MakeElement(std::move(value))});
    ++nextIndex_;
}

std::size_t MacroArray::FindOrCreateIndex(std::u16string_view key) {
    if (dense_) {
        std::int64_t i = CanonicalIndex(key);
        if (i >= 0 && static_cast<std::uint64_t>(i) < elements_.size()) return static_cast<std::size_t>(i);
        if (i >= 0 && static_cast<std::uint64_t>(i) == elements_.size() && nextIndex_ == i) {
            PushDense(MacroValue());
            return elements_.size() - 1;
        }
        MakeSparse();
    }
    auto it = keys_.lower_bound(key);
    if (it != keys_.end() && it->first == key) return it->second;
    std::size_t index = elements_.size();
    elements_.push_back(Element{std::u16string(key), MakeElement()});
    keys_.emplace_hint(it, std::u16string(key), index);
    NoteIntegerKey(key);
    return index;
}

ValueRef MacroArray::FindOrCreate(std::u16string_view key) { return elements_[FindOrCreateIndex(key)].value; }

MacroValue& MacroArray::FindOrCreateValue(std::u16string_view key) { return *elements_[FindOrCreateIndex(key)].value; }

MacroValue& MacroArray::Append(std::u16string key, MacroValue value) {
    if (dense_ && CanonicalIndex(key) == static_cast<std::int64_t>(elements_.size()) &&
        nextIndex_ == static_cast<std::int64_t>(elements_.size())) {
        PushDense(std::move(value));
        return *elements_.back().value;
    }
    MakeSparse();
    std::size_t index = elements_.size();
    auto [it, inserted] = keys_.emplace(key, index);
    if (!inserted) throw std::invalid_argument("MacroArray::Append: the key exists already");
    NoteIntegerKey(key);
    elements_.push_back(Element{std::move(key), MakeElement(std::move(value))});
    return *elements_.back().value;
}

void MacroArray::PushBack(MacroValue value) {
    if (dense_ && nextIndex_ == static_cast<std::int64_t>(elements_.size())) {
        PushDense(std::move(value));
        return;
    }
    MakeSparse();
    // nextIndex is past every integer key created so far; a key can still exist under that text
    // only after nextIndex saturated, so step over taken keys.
    char16_t buffer[24];
    std::u16string key(IntegerText(nextIndex_, buffer));
    while (keys_.find(key) != keys_.end() && nextIndex_ < std::numeric_limits<std::int64_t>::max()) {
        key = IntegerText(++nextIndex_, buffer);
    }
    std::size_t index = elements_.size();
    keys_.emplace(key, index);
    elements_.push_back(Element{std::move(key), MakeElement(std::move(value))});
    if (nextIndex_ < std::numeric_limits<std::int64_t>::max()) ++nextIndex_;
}

// Integer keys (IsIntegerText: "-3" and "007" included) become 0, 1, 2 ... in element order; string
// keys stay. The array is dense afterwards when every key was an integer.
void MacroArray::Renumber() {
    std::int64_t next = 0;
    bool allIntegers = true;
    char16_t buffer[24];
    for (Element& element : elements_) {
        if (IsIntegerText(element.key)) {
            element.key = IntegerText(next++, buffer);
        } else {
            allIntegers = false;
        }
    }
    nextIndex_ = next;
    keys_.clear();
    if (allIntegers) {
        dense_ = true;
        return;
    }
    dense_ = false;
    for (std::size_t i = 0; i < elements_.size(); ++i) keys_.emplace(elements_[i].key, i);
}

void MacroArray::PushFront(MacroValue value) {
    elements_.insert(elements_.begin(), Element{u"0", MakeElement(std::move(value))});
    Renumber();
}

MacroValue MacroArray::PopBack() {
    if (elements_.empty()) throw std::invalid_argument("MacroArray::PopBack: the array is empty");
    Element last = std::move(elements_.back());
    elements_.pop_back();
    if (!dense_) keys_.erase(last.key);
    if (IsIntegerText(last.key) && IntegerKeyValue(last.key) == nextIndex_ - 1) --nextIndex_;
    if (!dense_ && elements_.empty() && nextIndex_ == 0) dense_ = true;
    // The value is moved out when nothing else shares it, copied otherwise (another element or a
    // caller's reference still sees the original).
    if (last.value.use_count() == 1) return std::move(*last.value);
    return *last.value;
}

MacroValue MacroArray::PopFront() {
    if (elements_.empty()) throw std::invalid_argument("MacroArray::PopFront: the array is empty");
    ValueRef first = std::move(elements_.front().value);
    elements_.erase(elements_.begin());
    Renumber();
    if (first.use_count() == 1) return std::move(*first);
    return *first;
}

std::vector<std::size_t> MacroArray::KeyOrder() const {
    std::vector<std::size_t> order;
    order.reserve(elements_.size());
    if (!dense_) {
        for (const auto& [key, index] : keys_) order.push_back(index);
        return order;
    }
    // Dense keys are the decimal texts of 0..n-1: sort the indices by those texts.
    for (std::size_t i = 0; i < elements_.size(); ++i) order.push_back(i);
    std::sort(order.begin(), order.end(),
              [this](std::size_t a, std::size_t b) { return elements_[a].key < elements_[b].key; });
    return order;
}

}  // namespace qm
