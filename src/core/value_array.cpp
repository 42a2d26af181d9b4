// MacroArray: the keyed array container of the value model. The representation and
// the rules for nextIndex are described in value.h.
#include <algorithm>
#include <limits>
#include <stdexcept>

#include "core/value.h"

namespace qm {

namespace {

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

// The index named by a canonical non-negative decimal key ("0", "17"; not "007", "-1", "+1",
// "1.0"), or -1. Only such keys can name an element of a dense array.
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

MacroArray::MacroArray(const MacroArray& other)
    : values_(other.values_),
      boxes_(other.boxes_),
      keys_(other.keys_ ? std::make_unique<Keys>(*other.keys_) : nullptr),
      nextIndex_(other.nextIndex_) {}

MacroArray& MacroArray::operator=(const MacroArray& other) {
    if (this != &other) *this = MacroArray(other);
    return *this;
}

MacroArray::~MacroArray() {
    // Nested arrays that only this array holds are taken apart here, level by level, so a deeply
    // nested array does not recurse through shared_ptr destructors.
    std::vector<MacroValue> pending;
    auto collect = [&pending](MacroArray& array) {
        auto take = [&pending](MacroValue& value) {
            if (value.kind() != Kind::Array) return;
            const ArrayRef& inner = value.array();
            if (inner && inner.use_count() == 1 && !inner->empty()) pending.push_back(std::move(value));
        };
        if (array.values_ && array.values_.use_count() == 1) {
            for (MacroValue& value : *array.values_) take(value);
        }
        for (ValueRef& box : array.boxes_) {
            if (box && box.use_count() == 1) take(*box);
        }
    };
    collect(*this);
    while (!pending.empty()) {
        MacroValue value = std::move(pending.back());
        pending.pop_back();
        MacroArray& inner = *value.array();
        collect(inner);
        inner.values_.reset();
        inner.boxes_.clear();
    }
}

// Before a change: a value vector that a snapshot (or a copy of the array) still shares is copied
// first, so they keep what they saw.
void MacroArray::Own() {
    if (!values_) {
        values_ = std::make_shared<Values>();
    } else if (values_.use_count() > 1) {
        values_ = std::make_shared<Values>(*values_);
    }
}

MacroValue& MacroArray::OwnedAt(std::size_t i) {
    Own();
    return (*values_)[i];
}

void MacroArray::Reserve(std::size_t n) {
    if (n == 0) return;
    Own();
    values_->reserve(n);
}

std::u16string_view MacroArray::KeyAt(std::size_t i, char16_t* buffer) const {
    if (keys_) return keys_->text[i];
    return IntegerText(static_cast<std::int64_t>(i), buffer);
}

MacroArray::Element MacroArray::ElementAt(std::size_t i) const {
    char16_t buffer[24];
    return Element{std::u16string(KeyAt(i, buffer)), &ValueAt(i)};
}

void MacroArray::MakeKeyed() {
    if (keys_) return;
    auto keys = std::make_unique<Keys>();
    const std::size_t n = size();
    keys->text.reserve(n);
    char16_t buffer[24];
    for (std::size_t i = 0; i < n; ++i) {
        keys->text.emplace_back(IntegerText(static_cast<std::int64_t>(i), buffer));
        keys->positions.emplace(keys->text.back(), i);
    }
    keys_ = std::move(keys);
}

void MacroArray::NoteIntegerKey(std::u16string_view key) {
    if (!IsIntegerText(key)) return;
    std::int64_t value = IntegerKeyValue(key);
    if (value >= nextIndex_ && value < std::numeric_limits<std::int64_t>::max()) nextIndex_ = value + 1;
}

std::size_t MacroArray::IndexOf(std::u16string_view key) const {
    if (!keys_) {
        std::int64_t i = CanonicalIndex(key);
        return (i >= 0 && static_cast<std::uint64_t>(i) < size()) ? static_cast<std::size_t>(i) : npos;
    }
    auto it = keys_->positions.find(key);
    return it == keys_->positions.end() ? npos : it->second;
}

const MacroValue* MacroArray::FindValue(std::u16string_view key) const {
    std::size_t i = IndexOf(key);
    return i == npos ? nullptr : &ValueAt(i);
}

void MacroArray::PushDense(MacroValue&& value) {
    Own();
    values_->push_back(std::move(value));
    if (!boxes_.empty()) boxes_.emplace_back();
    ++nextIndex_;
}

// Appends under a key that is not taken yet; the array must be keyed.
void MacroArray::AddKeyed(std::u16string key, MacroValue value) {
    Own();
    keys_->positions.emplace(key, values_->size());
    NoteIntegerKey(key);
    keys_->text.push_back(std::move(key));
    values_->push_back(std::move(value));
    if (!boxes_.empty()) boxes_.emplace_back();
}

std::size_t MacroArray::FindOrCreateIndex(std::u16string_view key) {
    if (!keys_) {
        std::int64_t i = CanonicalIndex(key);
        if (i >= 0 && static_cast<std::uint64_t>(i) < size()) return static_cast<std::size_t>(i);
        if (i >= 0 && static_cast<std::uint64_t>(i) == size()) {
            PushDense(MacroValue());
            return size() - 1;
        }
        MakeKeyed();
    }
    auto it = keys_->positions.find(key);
    if (it != keys_->positions.end()) return it->second;
    AddKeyed(std::u16string(key), MacroValue());
    return size() - 1;
}

MacroValue& MacroArray::FindOrCreateValue(std::u16string_view key) { return At(FindOrCreateIndex(key)); }

ValueRef MacroArray::FindOrCreate(std::u16string_view key) { return Handle(FindOrCreateIndex(key)); }

ValueRef MacroArray::Handle(std::size_t i) {
    if (boxes_.empty()) boxes_.resize(size());
    ValueRef& box = boxes_[i];
    if (!box) {
        Own();
        box = std::make_shared<MacroValue>(std::move((*values_)[i]));
        (*values_)[i] = MacroValue();
    }
    return box;
}

MacroValue& MacroArray::Append(std::u16string key, MacroValue value) {
    if (!keys_ && CanonicalIndex(key) == static_cast<std::int64_t>(size())) {
        PushDense(std::move(value));
        return At(size() - 1);
    }
    MakeKeyed();
    if (keys_->positions.count(key) != 0) throw std::invalid_argument("MacroArray::Append: the key exists already");
    AddKeyed(std::move(key), std::move(value));
    return At(size() - 1);
}

void MacroArray::PushBack(MacroValue value) {
    if (!keys_) {
        PushDense(std::move(value));
        return;
    }
    // nextIndex is past every integer key created so far; a key can still exist under that text
    // only after nextIndex saturated, so step over taken keys.
    char16_t buffer[24];
    std::u16string key(IntegerText(nextIndex_, buffer));
    while (keys_->positions.count(key) != 0 && nextIndex_ < std::numeric_limits<std::int64_t>::max()) {
        key = IntegerText(++nextIndex_, buffer);
    }
    AddKeyed(std::move(key), std::move(value));
    // AddKeyed moved nextIndex past the key unless it saturated there.
}

// Integer keys (IsIntegerText: "-3" and "007" included) become 0, 1, 2 ... in element order; string
// keys stay. The array is dense afterwards when every key was an integer.
void MacroArray::Renumber() {
    if (!keys_) {
        nextIndex_ = static_cast<std::int64_t>(size());
        return;
    }
    std::int64_t next = 0;
    bool allIntegers = true;
    char16_t buffer[24];
    for (std::u16string& key : keys_->text) {
        if (IsIntegerText(key)) {
            key = IntegerText(next++, buffer);
        } else {
            allIntegers = false;
        }
    }
    nextIndex_ = next;
    if (allIntegers) {
        keys_.reset();
        return;
    }
    keys_->positions.clear();
    for (std::size_t i = 0; i < keys_->text.size(); ++i) keys_->positions.emplace(keys_->text[i], i);
}

void MacroArray::PushFront(MacroValue value) {
    Own();
    values_->insert(values_->begin(), std::move(value));
    if (!boxes_.empty()) boxes_.emplace(boxes_.begin());
    if (keys_) keys_->text.emplace(keys_->text.begin(), u"0");
    Renumber();
}

// The value of the element at a position, for removing it: a boxed value still held by a handle
// is copied (the holder keeps the original), any other is moved out.
MacroValue MacroArray::TakeValue(std::size_t i) {
    if (!boxes_.empty() && boxes_[i]) {
        ValueRef box = std::move(boxes_[i]);
        if (box.use_count() == 1) return std::move(*box);
        return *box;
    }
    return std::move((*values_)[i]);
}

MacroValue MacroArray::PopBack() {
    if (empty()) throw std::invalid_argument("MacroArray::PopBack: the array is empty");
    Own();
    const std::size_t last = size() - 1;
    MacroValue value = TakeValue(last);
    values_->pop_back();
    if (!boxes_.empty()) boxes_.pop_back();
    if (!keys_) {
        --nextIndex_;
        return value;
    }
    std::u16string key = std::move(keys_->text.back());
    keys_->text.pop_back();
    keys_->positions.erase(key);
    if (IsIntegerText(key) && IntegerKeyValue(key) == nextIndex_ - 1) --nextIndex_;
    if (keys_->text.empty() && nextIndex_ == 0) keys_.reset();
    return value;
}

MacroValue MacroArray::PopFront() {
    if (empty()) throw std::invalid_argument("MacroArray::PopFront: the array is empty");
    Own();
    MacroValue value = TakeValue(0);
    values_->erase(values_->begin());
    if (!boxes_.empty()) boxes_.erase(boxes_.begin());
    if (keys_) keys_->text.erase(keys_->text.begin());
    Renumber();
    return value;
}

std::shared_ptr<const MacroArray::Values> MacroArray::Snapshot() const {
    if (empty()) return nullptr;
    if (std::none_of(boxes_.begin(), boxes_.end(), [](const ValueRef& box) { return box != nullptr; })) {
        return values_;
    }
    // A boxed value can change through its handle without the array knowing: copy the values.
    auto copy = std::make_shared<Values>();
    copy->reserve(size());
    for (std::size_t i = 0; i < size(); ++i) copy->push_back(ValueAt(i));
    return copy;
}

std::vector<std::size_t> MacroArray::KeyOrder() const {
    std::vector<std::size_t> order;
    order.reserve(size());
    if (keys_) {
        for (const auto& [key, index] : keys_->positions) order.push_back(index);
        return order;
    }
    // Dense keys are the decimal texts of 0..n-1: sort the positions by those texts.
    for (std::size_t i = 0; i < size(); ++i) order.push_back(i);
    std::sort(order.begin(), order.end(), [](std::size_t a, std::size_t b) {
        char16_t x[24];
        char16_t y[24];
        return IntegerText(static_cast<std::int64_t>(a), x) < IntegerText(static_cast<std::int64_t>(b), y);
    });
    return order;
}

}  // namespace qm
