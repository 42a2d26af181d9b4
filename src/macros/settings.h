// The add-in's own settings, "quillmark.xml" in the per-user folder: the last pin-to choice, the
// last update check, the user interface language and the custom text styles. The file is written
// like the macro list (UTF-16LE without a byte order mark, declaration, indented, replaced whole)
// and, like it, is never written over when it exists but cannot be read.
//
// Layout of a custom style: the formatting elements are optional children of `CustomStyle`, each
// at most once, in the order Formatting, Font, Paragraph, Spacing, List, Bullet, Number. Their
// attributes are all text written only when set: what they mean belongs to the styles feature,
// and a value it never set is left out.
//
// Defaults: "pinTo" is "favorites" (the favourites menu, the first of the pin-to choices);
// "language" is "" (the user interface follows OneNote's language).
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "macros/user_folder.h"
#include "xml/binding.h"
#include "xml/xml_strings.h"

namespace qm::QMK {
struct Formatting;
struct Font;
struct Paragraph;
struct Spacing;
struct List;
struct Bullet;
struct Number;
struct CustomStyle;
struct Quillmark;
}  // namespace qm::QMK

namespace qm::xml {
template <> struct Binding<QMK::Formatting>;
template <> struct Binding<QMK::Font>;
template <> struct Binding<QMK::Paragraph>;
template <> struct Binding<QMK::Spacing>;
template <> struct Binding<QMK::List>;
template <> struct Binding<QMK::Bullet>;
template <> struct Binding<QMK::Number>;
template <> struct Binding<QMK::CustomStyle>;
template <> struct Binding<QMK::Quillmark>;

extern template class Child<QMK::Formatting>;
extern template class Child<QMK::Font>;
extern template class Child<QMK::Paragraph>;
extern template class Child<QMK::Spacing>;
extern template class Child<QMK::List>;
extern template class Child<QMK::Bullet>;
extern template class Child<QMK::Number>;
extern template class Child<QMK::CustomStyle>;
extern template class Child<QMK::Quillmark>;
}  // namespace qm::xml

namespace qm::QMK {

// A text attribute written only when set.
using OptionalText = xml::Defaulted<std::u16string>;

struct Formatting : xml::Child<Formatting> {
    OptionalText highlightColor, bold, italic, underline, strikethrough, supersub;
};

struct Font : xml::Child<Font> {
    OptionalText name, color, size;
};

struct Paragraph : xml::Child<Paragraph> {
    OptionalText indent, alignment;
};

struct Spacing : xml::Child<Spacing> {
    OptionalText spaceBefore, spaceAfter, spaceBetween;
};

struct List : xml::Child<List> {
    OptionalText listSpacing, listAlignment;
};

struct Bullet : xml::Child<Bullet> {
    OptionalText bullet, fontSize, fontColor;
};

struct Number : xml::Child<Number> {
    OptionalText numberSequence, numberFormat, font, fontSize, fontColor, bold, italic, language;
};

struct CustomStyle : xml::Child<CustomStyle> {
    std::u16string name;
    OptionalText lang;
    std::shared_ptr<Formatting> formatting;
    std::shared_ptr<Font> font;
    std::shared_ptr<Paragraph> paragraph;
    std::shared_ptr<Spacing> spacing;
    std::shared_ptr<List> list;
    std::shared_ptr<Bullet> bullet;
    std::shared_ptr<Number> number;
};

// The settings document's root.
struct Quillmark : xml::Child<Quillmark> {
    xml::Defaulted<std::u16string> pinTo{u"favorites"};
    OptionalText pinToLocation;
    xml::Defaulted<xml::SystemTime> lastUpdateCheck;  // written only when set (not all zero)
    xml::Defaulted<std::u16string> language{u""};
    xml::ChildList<CustomStyle> styles;
};

}  // namespace qm::QMK

namespace qm::macros {

inline constexpr const char* kSettingsFileName = "quillmark.xml";

// The settings text: declaration, indented. Reading raises xml::XmlError.
void ReadSettings(std::u16string_view text, QMK::Quillmark& into);
std::u16string WriteSettings(const QMK::Quillmark& settings);

// "quillmark.xml" of a folder, loaded on first use and kept.
class SettingsStore {
public:
    SettingsStore();
    explicit SettingsStore(std::filesystem::path folder);
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    std::filesystem::path SettingsPath() const { return folder_ / kSettingsFileName; }

    // The settings, read on the first call; a missing file gives the defaults and writes nothing.
    // A file that cannot be read raises StoreError (naming the file, and the line and column of
    // bad XML) at each call until it reads.
    QMK::Quillmark& Get();

    // Writes the settings; refused (StoreError) while the file cannot be read, which is then left
    // as it is.
    void Save();

private:
    void Load();

    std::filesystem::path folder_;
    std::shared_ptr<QMK::Quillmark> settings_;
    bool loaded_ = false;
};

}  // namespace qm::macros
