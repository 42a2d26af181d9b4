// The user-facing texts of the macro documents, in one list. Templates carry numbered
// placeholders filled by FormatMessage.
#pragma once

#include <string_view>

namespace qm::macros::msg {

// The "Edit XML" box of the macro editor.
inline constexpr std::u16string_view kEditXmlTitle = u"Edit XML";
inline constexpr std::u16string_view kEditXmlMessage =
    u"You can copy the below XML and share with others, or use it as a starting point for a new macro. You can "
    u"also edit the XML below and click OK to import. It will replace the macro you are currently working on.";

// Reading a macro document.
inline constexpr std::u16string_view kExpressionTooDeep =
    u"Expression in macro is nested too deeply: more than [1] levels";

// The text form of macros: reading ("file:line: message") and writing.
inline constexpr std::u16string_view kTextMixedIndentation = u"Indentation mixes tabs and spaces";
inline constexpr std::u16string_view kTextTabsAfterSpaces = u"Indented with tabs, but earlier lines indent with spaces";
inline constexpr std::u16string_view kTextSpacesAfterTabs = u"Indented with spaces, but earlier lines indent with tabs";
inline constexpr std::u16string_view kTextUnexpectedIndent = u"Unexpected indentation";
inline constexpr std::u16string_view kTextNoBlockHere = u"Unexpected indentation: the line above takes no indented block";
inline constexpr std::u16string_view kTextUnmatchedDedent = u"Indentation does not match any enclosing block";
inline constexpr std::u16string_view kTextTooDeep = u"Statements are nested too deeply: more than [1] levels";
inline constexpr std::u16string_view kTextAfterElse = u"Unexpected text after Else";
inline constexpr std::u16string_view kTextForEachForm = u"Expected ForEach $name in expression";
inline constexpr std::u16string_view kTextFunctionForm = u"Expected Function Name($a, $b)";
inline constexpr std::u16string_view kTextFunctionNotTopLevel =
    u"Function definitions belong at the top level, without indentation";
inline constexpr std::u16string_view kTextUnknownHeader =
    u"Unknown header line: expected #name, #category, #description, #id, #version or #publishDate";
inline constexpr std::u16string_view kTextHeaderAfterStatement = u"Header lines come before the first statement";
inline constexpr std::u16string_view kTextHeaderTwice = u"Header #[1] is given twice";
inline constexpr std::u16string_view kTextVersionNumber = u"#version expects a whole number";
inline constexpr std::u16string_view kTextPublishDate =
    u"#publishDate expects a date and time such as 2016-03-05T14:07:09.042Z";
inline constexpr std::u16string_view kTextCannotWriteLineBreak =
    u"[1] cannot be written in the text form: it holds a line break";
inline constexpr std::u16string_view kTextCannotWriteName =
    u"[1] cannot be written in the text form: '[2]' is not a name";
inline constexpr std::u16string_view kTextCannotWriteExpression =
    u"[1] cannot be written in the text form: the expression [2] does not read back as it is";

// The macro store and the settings file.
inline constexpr std::u16string_view kCannotReadFile = u"Cannot read \"[1]\": [2]";
inline constexpr std::u16string_view kCannotSaveFile = u"Cannot save \"[1]\": [2]";
inline constexpr std::u16string_view kKeptUnreadable =
    u"\"[1]\" could not be read, so it is left as it is and changes are not saved until it can be read.\r\n[2]";
inline constexpr std::u16string_view kCounterNotSaved =
    u"The macros were saved, but the load counter \"[1]\" could not be updated: other running copies of "
    u"Quillmark may not see the change.";
inline constexpr std::u16string_view kFirstFormatNotMigrated =
    u"\"[1]\" holds macros in the first macro format, which this version cannot convert. The file is left as it "
    u"is.";
inline constexpr std::u16string_view kMacroNotFound = u"There is no macro with the id or name \"[1]\".";

// Macro documents brought in from elsewhere (imports, files on the command line).
inline constexpr std::u16string_view kNotAMacroDocument =
    u"Expected a \"Macro\" or \"Macros\" element, found \"[1]\"";
inline constexpr std::u16string_view kEmptyDocument = u"The document holds no element";
inline constexpr std::u16string_view kUnexpectedRoot = u"Expected a \"[1]\" element, found \"[2]\"";
inline constexpr std::u16string_view kNewerMacroVersion =
    u"This macro is from a newer version of Quillmark. It will be imported but may not work properly "
    u"here.\r\n\r\nDo you want to download the latest version of Quillmark?";

// The macro log switch on the command line.
inline constexpr std::u16string_view kLoggingOn = u"Macro logging is on.";
inline constexpr std::u16string_view kLoggingOff = u"Macro logging is off.";

}  // namespace qm::macros::msg
