// The settings document: its field descriptions, the one instantiation of the binding engine for
// them, and the file.
#include "macros/settings.h"

#include <tuple>

#include "core/format.h"
#include "macros/macro_store.h"
#include "macros/messages.h"
#include "xml/xml_error.h"

namespace qm::xml {

template <>
struct Binding<QMK::Formatting> {
    using E = QMK::Formatting;
    static constexpr std::u16string_view kName = u"Formatting";
    static constexpr auto kFields =
        std::tuple{Attribute(u"highlightColor", &E::highlightColor), Attribute(u"bold", &E::bold),
                   Attribute(u"italic", &E::italic),                 Attribute(u"underline", &E::underline),
                   Attribute(u"strikethrough", &E::strikethrough),   Attribute(u"supersub", &E::supersub)};
};

template <>
struct Binding<QMK::Font> {
    using E = QMK::Font;
    static constexpr std::u16string_view kName = u"Font";
    static constexpr auto kFields =
        std::tuple{Attribute(u"name", &E::name), Attribute(u"color", &E::color), Attribute(u"size", &E::size)};
};

template <>
struct Binding<QMK::Paragraph> {
    using E = QMK::Paragraph;
    static constexpr std::u16string_view kName = u"Paragraph";
    static constexpr auto kFields =
        std::tuple{Attribute(u"indent", &E::indent), Attribute(u"alignment", &E::alignment)};
};

template <>
struct Binding<QMK::Spacing> {
    using E = QMK::Spacing;
    static constexpr std::u16string_view kName = u"Spacing";
    static constexpr auto kFields =
        std::tuple{Attribute(u"spaceBefore", &E::spaceBefore), Attribute(u"spaceAfter", &E::spaceAfter),
                   Attribute(u"spaceBetween", &E::spaceBetween)};
};

template <>
struct Binding<QMK::List> {
    using E = QMK::List;
    static constexpr std::u16string_view kName = u"List";
    static constexpr auto kFields =
        std::tuple{Attribute(u"listSpacing", &E::listSpacing), Attribute(u"listAlignment", &E::listAlignment)};
};

template <>
struct Binding<QMK::Bullet> {
    using E = QMK::Bullet;
    static constexpr std::u16string_view kName = u"Bullet";
    static constexpr auto kFields = std::tuple{Attribute(u"bullet", &E::bullet), Attribute(u"fontSize", &E::fontSize),
                                               Attribute(u"fontColor", &E::fontColor)};
};

template <>
struct Binding<QMK::Number> {
    using E = QMK::Number;
    static constexpr std::u16string_view kName = u"Number";
    static constexpr auto kFields = std::tuple{
        Attribute(u"numberSequence", &E::numberSequence), Attribute(u"numberFormat", &E::numberFormat),
        Attribute(u"font", &E::font),                     Attribute(u"fontSize", &E::fontSize),
        Attribute(u"fontColor", &E::fontColor),           Attribute(u"bold", &E::bold),
        Attribute(u"italic", &E::italic),                 Attribute(u"language", &E::language)};
};

template <>
struct Binding<QMK::CustomStyle> {
    using E = QMK::CustomStyle;
    static constexpr std::u16string_view kName = u"CustomStyle";
    static constexpr auto kFields = std::tuple{
        Attribute(u"name", &E::name), Attribute(u"lang", &E::lang),       Slot(&E::formatting), Slot(&E::font),
        Slot(&E::paragraph),          Slot(&E::spacing),                  Slot(&E::list),       Slot(&E::bullet),
        Slot(&E::number)};
};

template <>
struct Binding<QMK::Quillmark> {
    using E = QMK::Quillmark;
    static constexpr std::u16string_view kName = u"Quillmark";
    static constexpr auto kFields =
        std::tuple{Attribute(u"pinTo", &E::pinTo), Attribute(u"pinToLocation", &E::pinToLocation),
                   Attribute(u"lastUpdateCheck", &E::lastUpdateCheck), Attribute(u"language", &E::language),
                   List(&E::styles)};
};

template class Child<QMK::Formatting>;
template class Child<QMK::Font>;
template class Child<QMK::Paragraph>;
template class Child<QMK::Spacing>;
template class Child<QMK::List>;
template class Child<QMK::Bullet>;
template class Child<QMK::Number>;
template class Child<QMK::CustomStyle>;
template class Child<QMK::Quillmark>;

}  // namespace qm::xml

namespace qm::macros {

void ReadSettings(std::u16string_view text, QMK::Quillmark& into) { xml::ParseElement(text, into); }

std::u16string WriteSettings(const QMK::Quillmark& settings) {
    std::u16string out;
    xml::SerializeElement(settings, out, nullptr, false, false, true, true);
    return out;
}

SettingsStore::SettingsStore() : SettingsStore(UserFolder()) {}

SettingsStore::SettingsStore(std::filesystem::path folder)
    : folder_(std::move(folder)), settings_(std::make_shared<QMK::Quillmark>()) {}

void SettingsStore::Load() {
    const std::filesystem::path path = SettingsPath();
    auto fresh = std::make_shared<QMK::Quillmark>();
    try {
        if (const std::optional<std::u16string> text = ReadStoredDocument(path)) {
            CheckRootElement(*text, u"Quillmark");
            ReadSettings(*text, *fresh);
        }
    } catch (const xml::XmlError& e) {
        throw StoreError(FormatMessage(msg::kCannotReadFile, {PathText(path), e.FullText()}));
    }
    settings_ = std::move(fresh);
    loaded_ = true;
}

QMK::Quillmark& SettingsStore::Get() {
    if (!loaded_) Load();
    return *settings_;
}

void SettingsStore::Save() {
    if (!loaded_) {
        try {
            Load();
        } catch (const StoreError& e) {
            throw StoreError(FormatMessage(msg::kKeptUnreadable, {PathText(SettingsPath()), e.message()}));
        }
    }
    std::u16string text;
    try {
        text = WriteSettings(*settings_);
    } catch (const xml::XmlError& e) {
        throw StoreError(FormatMessage(msg::kCannotSaveFile, {PathText(SettingsPath()), e.FullText()}));
    }
    WriteStoredDocument(SettingsPath(), text);
}

}  // namespace qm::macros
