// The user-facing texts of the macro runtime's built-in functions, in one list. Templates carry
// numbered placeholders filled by FormatMessage.
#pragma once

#include <string_view>

namespace qm::msg {

// Call dispatch (an unknown name uses the expression language's kUnknownFunction)
inline constexpr std::u16string_view kWrongArgumentCount = u"Function '[1]' takes [2] parameters, [3] provided";
// A built-in met a value its conversions cannot handle (an array where a text is needed, ...).
inline constexpr std::u16string_view kCannotConvertArgument =
    u"Function '[1]' cannot use one of the values it was given: it has the wrong type";

// Array built-ins. The Join/Length/Keys texts have no colon after "for", the Push/Pop texts have
// one: both forms are the ones users know.
inline constexpr std::u16string_view kArrayJoinExpectsArray = u"Expected an array for Array_Join";
inline constexpr std::u16string_view kArrayLengthExpectsArray = u"Expected an array for Array_Length";
inline constexpr std::u16string_view kArrayKeysExpectsArray = u"Expected an array for Array_Keys";
inline constexpr std::u16string_view kArrayPushBackExpectsArray = u"Expected an array for: Array_PushBack";
inline constexpr std::u16string_view kArrayPushFrontExpectsArray = u"Expected an array for: Array_PushFront";
inline constexpr std::u16string_view kArrayPopBackExpectsArray = u"Expected an array for: Array_PopBack";
inline constexpr std::u16string_view kArrayPopFrontExpectsArray = u"Expected an array for: Array_PopFront";
inline constexpr std::u16string_view kArrayPopBackEmpty = u"Array_PopBack: Cannot pop from empty array";
inline constexpr std::u16string_view kArrayPopFrontEmpty = u"Array_PopFront: Cannot pop from empty array";

// DateTime built-ins
inline constexpr std::u16string_view kExpectedDateTime =
    u"[1] expects a date and time (such as 2016-03-05T09:07:02), not [2]";

// Dialog box built-ins
inline constexpr std::u16string_view kExpectedDialogBox =
    u"Expected an object of type DialogBox at first parameter of AddControl";
inline constexpr std::u16string_view kExpectedDropDownValues =
    u"Expected an array at fifth parameter of DialogBox_AddDropDown";
inline constexpr std::u16string_view kNoDialogUi =
    u"[1] cannot show a dialog box: this run has no window to show it in";
inline constexpr std::u16string_view kDialogBoxTypeName = u"DialogBox";
inline constexpr std::u16string_view kUnknownProperty = u"A property named '[1]' on object of type '[2]' does not exist.";
inline constexpr std::u16string_view kReadOnlyProperty =
    u"Attempting to write read-only property '[1]' on object of type '[2]'";

// Functions of the OneNote object model
inline constexpr std::u16string_view kNoObjectModel = u"[1] needs a OneNote notebook: none is open in this run";

// Statement interpreter
inline constexpr std::u16string_view kElseWithoutIf = u"Else without If";
inline constexpr std::u16string_view kUnexpectedCount = u"Unexpected [1] count at: [1] [2]";
inline constexpr std::u16string_view kBreakWithoutLoop = u"Break statement encountered without For or While at: Break [1]";
inline constexpr std::u16string_view kContinueWithoutLoop =
    u"Continue statement encountered without For or While at: Continue [1]";
// A Break or Continue count whose value is no number at all (an array, an object, a time).
inline constexpr std::u16string_view kCountNotNumeric = u"Expected a Numeric count at: [1] [2]";
// Function calls nested deeper than the interpreter allows ([2] is the limit).
inline constexpr std::u16string_view kCallsTooDeep =
    u"Function '[1]' cannot be called: more than [2] function calls are unfinished (endless recursion?)";
// Blocks and calls nested so deeply that the run would exhaust the stack.
inline constexpr std::u16string_view kBlocksNestedTooDeeply =
    u"The macro is nested too deeply: its blocks and function calls would exhaust the stack";
// What the user sees for a macro error that carries no text (a ForEach over a value that is no
// array, a statement with no content): the error keeps its empty message, the report names the code.
inline constexpr std::u16string_view kErrorWithoutText = u"Macro error (code 0xFFFFFFA0)";

// Macro log lines
inline constexpr std::u16string_view kLogSeparator =
    u"------------------------------------------------------------------------";
inline constexpr std::u16string_view kLogConditionTrue = u"\tCondition evaluated to true";
inline constexpr std::u16string_view kLogConditionFalse = u"\tCondition evaluated to false";
inline constexpr std::u16string_view kLogBreakingOutOf = u"Breaking out of ";
inline constexpr std::u16string_view kLogRunningMacro = u"Running Macro \"[1]\"";
inline constexpr std::u16string_view kLogPagesModified = u" pages are modified.";
inline constexpr std::u16string_view kLogPagesWillBeSaved = u" They will now be saved to OneNote";
inline constexpr std::u16string_view kLogUserRefusedSaving = u"User did not allow saving multiple pages";
inline constexpr std::u16string_view kLogExitMacro = u"ExitMacro called, exiting macro ";
inline constexpr std::u16string_view kLogExitSaving = u"after saving changes";
inline constexpr std::u16string_view kLogExitNotSaving = u"without saving changes";
inline constexpr std::u16string_view kErrorWhileRunning = u"Error while running macro: ";

}  // namespace qm::msg
