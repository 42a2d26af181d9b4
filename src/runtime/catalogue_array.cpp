// The Array family: building arrays, reading their size and keys, joining them into text, and
// using them as stacks and queues. Push and Pop work on the caller's array itself: an array value
// is shared, and an unset variable passed to a Push becomes a new array in place.
#include <charconv>

#include "runtime/builtin.h"
#include "runtime/messages.h"

namespace qm {
namespace {

MacroValue Count(std::size_t n) { return MacroValue(static_cast<std::int32_t>(n)); }

// A key that is the decimal text of a 32-bit integer ("0", "17", "-3") reads back as that
// integer; every other key ("007", "name", "99999999999") stays a text.
MacroValue KeyValue(std::u16string_view key) {
    if (IsIntegerText(key) && key.size() <= 11) {
        std::string ascii(key.begin(), key.end());
        std::int32_t n = 0;
        auto [end, ec] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), n);
        if (ec == std::errc() && end == ascii.data() + ascii.size() && IntegerText(n) == key) return MacroValue(n);
    }
    return MacroValue(key);
}

// The array a Push works on: the argument's own array, or, for an unset value, a new array stored
// back into the variable or element the argument came from. The argument keeps the array alive
// for the call.
MacroArray& PushTarget(Argument& arg, std::u16string_view notAnArray) {
    if (arg.value.kind() == Kind::Array) return *arg.value.array();
    if (!arg.value.IsEmpty()) FailMacro(notAnArray);
    arg.value.AsArray();
    if (arg.slot) *arg.slot = arg.value;
    return *arg.value.array();
}

MacroArray& PopSource(const Argument& arg, std::u16string_view notAnArray, std::u16string_view empty) {
    if (arg.value.kind() != Kind::Array) FailMacro(notAnArray);
    MacroArray& array = *arg.value.array();
    if (array.empty()) FailMacro(empty);
    return array;
}

MacroValue Array(RuntimeServices&, std::span<Argument> args) {
    auto array = std::make_shared<MacroArray>();
    array->Reserve(args.size());
    for (auto& arg : args) array->PushBack(std::move(arg.value));
    return MacroValue(std::move(array));
}

MacroValue ArrayJoin(RuntimeServices&, std::span<Argument> args) {
    if (args[0].value.kind() != Kind::Array) FailMacro(msg::kArrayJoinExpectsArray);
    const std::u16string glue = args[1].value.AsString();
    const MacroArray& array = *args[0].value.array();
    std::u16string joined;
    for (std::size_t i = 0; i < array.size(); ++i) {
        if (i != 0) joined += glue;
        joined += array.ValueAt(i).AsString();
    }
    return MacroValue(std::move(joined));
}

MacroValue ArrayKeys(RuntimeServices&, std::span<Argument> args) {
    if (args[0].value.kind() != Kind::Array) FailMacro(msg::kArrayKeysExpectsArray);
    const MacroArray& array = *args[0].value.array();
    auto keys = std::make_shared<MacroArray>();
    keys->Reserve(array.size());
    char16_t buffer[24];
    for (std::size_t i = 0; i < array.size(); ++i) keys->PushBack(KeyValue(array.KeyAt(i, buffer)));
    return MacroValue(std::move(keys));
}

MacroValue ArrayLength(RuntimeServices&, std::span<Argument> args) {
    const MacroValue& value = args[0].value;
    if (value.IsEmpty()) return Count(0);
    if (value.kind() != Kind::Array) FailMacro(msg::kArrayLengthExpectsArray);
    return Count(value.array()->size());
}

MacroValue ArrayPushBack(RuntimeServices&, std::span<Argument> args) {
    MacroArray& array = PushTarget(args[0], msg::kArrayPushBackExpectsArray);
    array.PushBack(std::move(args[1].value));
    return Count(array.size());
}

MacroValue ArrayPushFront(RuntimeServices&, std::span<Argument> args) {
    MacroArray& array = PushTarget(args[0], msg::kArrayPushFrontExpectsArray);
    array.PushFront(std::move(args[1].value));
    return Count(array.size());
}

MacroValue ArrayPopBack(RuntimeServices&, std::span<Argument> args) {
    return PopSource(args[0], msg::kArrayPopBackExpectsArray, msg::kArrayPopBackEmpty).PopBack();
}

MacroValue ArrayPopFront(RuntimeServices&, std::span<Argument> args) {
    return PopSource(args[0], msg::kArrayPopFrontExpectsArray, msg::kArrayPopFrontEmpty).PopFront();
}

}  // namespace

std::vector<BuiltinDefinition> ArrayBuiltins() {
    return {
        {{u"Array", u"Array", u"Creates an array with given arguments",
          {{u"elements...", u"Mixed", u"Elements in the array. No elements or several elements can be provided"}}},
         &Array},
        {{u"Array_Join", u"String",
          u"Concatenates the elements in the given array using the given glue string and returns the combined string",
          {{u"array", u"Array", u"Array to join together into a string"},
           {u"glue", u"String", u"Glue string to add between the array elements"}}},
         &ArrayJoin},
        {{u"Array_Keys", u"Array", u"Returns a new array that contains the keys of the given array",
          {{u"array", u"Array", u"Array return the keys of"}}},
         &ArrayKeys},
        {{u"Array_Length", u"Numeric", u"Returns the number of elements in the given array",
          {{u"array", u"Array", u"Array return the number of elements"}}},
         &ArrayLength},
        {{u"Array_PopBack", u"Mixed",
          u"Removes and returns the last item in the array. To use an array as a stack, use this function along "
          u"with Array_PushBack",
          {{u"array", u"Array", u"Array to remove and return the the last item from"}}},
         &ArrayPopBack},
        {{u"Array_PopFront", u"Mixed",
          u"Removes and returns the first item in the array. All numerical keys in the array will be modified to "
          u"start counting from zero while string keys won't be affected. To use an array as a queue, use this "
          u"function along with Array_PushBack",
          {{u"array", u"Array", u"Array to remove and return the the first item from"}}},
         &ArrayPopFront},
        {{u"Array_PushBack", u"Numeric",
          u"Inserts the given value to the end of the array. Returns the number of elements in the array after the "
          u"insertion. To use an array as a stack, use this function along with Array_PopBack. To use an array as "
          u"a queue, use this function along with Array_PopFront",
          {{u"array", u"Array", u"Array to insert the value to"}, {u"value", u"Mixed", u"The value to insert"}}},
         &ArrayPushBack},
        {{u"Array_PushFront", u"Numeric",
          u"Inserts the given value to the beginning of the array. All numerical keys in the array will be "
          u"modified to start counting from zero while string keys won't be affected. Returns the number of "
          u"elements in the array after the insertion",
          {{u"array", u"Array", u"Array to insert the value to"}, {u"value", u"Mixed", u"The value to insert"}}},
         &ArrayPushFront},
    };
}

}  // namespace qm
