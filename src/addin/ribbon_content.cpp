#include "addin/ribbon_content.h"

#include <algorithm>
#include <memory>
#include <vector>

#include "addin/callback_table.h"
#include "addin/messages.h"
#include "addin/ribbon_schema.h"
#include "core/value.h"

namespace qm::addin {
namespace {

std::u16string Name(Callback callback) { return std::u16string(CallbackName(callback)); }

std::shared_ptr<R::button> Button(std::u16string id, std::u16string_view label, Callback onAction) {
    auto button = std::make_shared<R::button>();
    button->id = std::move(id);
    button->label = std::u16string(label);
    button->onAction = Name(onAction);
    return button;
}

std::shared_ptr<R::dynamicMenu> DynamicMenu(std::u16string id, std::u16string_view label, Callback getContent) {
    auto menu = std::make_shared<R::dynamicMenu>();
    menu->id = std::move(id);
    menu->label = std::u16string(label);
    menu->getContent = Name(getContent);
    menu->getSize = Name(Callback::GetMacroButtonSize);
    return menu;
}

std::shared_ptr<R::toggleButton> Toggle(std::u16string id, std::u16string_view label, Callback onAction,
                                        Callback getPressed) {
    auto toggle = std::make_shared<R::toggleButton>();
    toggle->id = std::move(id);
    toggle->label = std::u16string(label);
    toggle->onAction = Name(onAction);
    toggle->getPressed = Name(getPressed);
    return toggle;
}

std::shared_ptr<R::menuSeparator> Separator(std::u16string id, std::u16string_view title = {}) {
    auto separator = std::make_shared<R::menuSeparator>();
    separator->id = std::move(id);
    if (!title.empty()) separator->title = std::u16string(title);
    return separator;
}

std::shared_ptr<R::button> DisabledButton(std::u16string id, std::u16string_view label) {
    auto button = std::make_shared<R::button>();
    button->id = std::move(id);
    button->label = std::u16string(label);
    button->enabled = u"false";
    return button;
}

std::shared_ptr<R::menu> OptionsMenu() {
    auto options = std::make_shared<R::menu>();
    options->id = u"MacroOptions";
    options->label = std::u16string(msg::kOptionsLabel);
    options->getSize = Name(Callback::GetMacroButtonSize);
    options->controls.emplace_back(Toggle(u"EnableMacroLogging", msg::kLoggingLabel, Callback::ToggleEnableMacroLogging,
                                          Callback::GetEnableMacroLoggingPressed));
    options->controls.emplace_back(
        Toggle(u"CompactMode", msg::kCompactLabel, Callback::ToggleCompactMode, Callback::GetCompactModePressed));
    options->controls.emplace_back(Separator(u"MacroDisplaySeparator", msg::kDisplayTitle));
    auto byCategory = Button(u"MacroDisplayByCategory", msg::kDisplayByCategory, Callback::SetMacroDisplay);
    byCategory->tag = std::u16string(kDisplayByCategory);
    options->controls.emplace_back(byCategory);
    auto asList = Button(u"MacroDisplayAsList", msg::kDisplayAsList, Callback::SetMacroDisplay);
    asList->tag = std::u16string(kDisplayAsList);
    options->controls.emplace_back(asList);
    options->controls.emplace_back(Separator(u"PageXmlSeparator"));
    options->controls.emplace_back(Button(u"ShowPageXml", msg::kShowPageXmlLabel, Callback::ShowPageXml));
    return options;
}

// The tools of this family that this version does not have: their callbacks answer, their
// controls stay hidden.
std::shared_ptr<R::group> HiddenToolsGroup() {
    auto tools = std::make_shared<R::group>();
    tools->id = u"Tools";
    tools->label = std::u16string(msg::kToolsGroupLabel);
    tools->visible = u"false";
    for (const Callback action : {Callback::OnRotateRight90, Callback::OnRotateLeft90, Callback::OnFlipHorz,
                                  Callback::OnFlipVert, Callback::OnCleanupPrintouts, Callback::OnCrop,
                                  Callback::OnSelectTextFromImage, Callback::OnCalvista,
                                  Callback::OnSaveSelectionAsCustomStyle, Callback::OnManageCustomStyles,
                                  Callback::OnManageFavorites}) {
        auto button = Button(u"Tool_" + Name(action), CallbackName(action), action);
        button->visible = u"false";
        tools->controls.emplace_back(button);
    }
    auto pinTo = std::make_shared<R::dynamicMenu>();
    pinTo->id = u"Tool_PinTo";
    pinTo->getLabel = Name(Callback::GetPinToLabel);
    pinTo->getContent = Name(Callback::GetPinToMenu);
    pinTo->visible = u"false";
    tools->controls.emplace_back(pinTo);
    auto update = Button(u"Tool_Update", CallbackName(Callback::OnUpdate), Callback::OnUpdate);
    update->getVisible = Name(Callback::GetUpdateVisible);
    tools->controls.emplace_back(update);
    auto licence = std::make_shared<R::button>();
    licence->id = u"Tool_GoPro";
    licence->getLabel = Name(Callback::GetGoProLabel);
    licence->onAction = Name(Callback::OnGoPro);
    licence->visible = u"false";
    tools->controls.emplace_back(licence);
    return tools;
}

bool ByCategory(const M2::Macros& list) { return *list.display == kDisplayByCategory; }

struct MenuIds {
    std::u16string_view macro;     // prefix of a macro entry's id
    std::u16string_view category;  // prefix of a category submenu's id
    Callback onAction;
};

constexpr MenuIds IdsOf(MacroMenuKind kind) {
    return kind == MacroMenuKind::Run ? MenuIds{u"Macro_", u"MacroCategory_", Callback::OnMacro}
                                      : MenuIds{u"EditMacro_", u"EditMacroCategory_", Callback::OnEditMacro};
}

std::u16string Numbered(std::u16string_view prefix, std::size_t n) {
    return std::u16string(prefix) + IntegerText(static_cast<std::int64_t>(n));
}

}  // namespace

std::u16string CustomUiXml() {
    auto macros = std::make_shared<R::group>();
    macros->id = std::u16string(kMacrosControlId);
    macros->label = std::u16string(msg::kMacrosGroupLabel);
    auto run = DynamicMenu(u"MacroMenu", msg::kRunMacroLabel, Callback::GetMacroMenu);
    run->getVisible = Name(Callback::GetMacrosVisible);
    run->imageMso = u"MacroPlay";
    macros->controls.emplace_back(run);
    auto edit = DynamicMenu(u"EditMacroMenu", msg::kEditMacroLabel, Callback::GetEditMacrosMenu);
    edit->imageMso = u"VisualBasic";
    macros->controls.emplace_back(edit);
    auto download = DynamicMenu(u"DownloadMacroMenu", msg::kDownloadMacrosLabel, Callback::GetDownloadMacrosMenu);
    download->imageMso = u"ImportMoreMenu";
    macros->controls.emplace_back(download);
    macros->controls.emplace_back(OptionsMenu());

    auto tab = std::make_shared<R::tab>();
    tab->id = u"QuillmarkTab";
    tab->label = std::u16string(msg::kTabLabel);
    tab->groups.Add(macros);
    tab->groups.Add(HiddenToolsGroup());
    R::customUI ui;
    ui.onLoad = Name(Callback::OnLoad);
    ui.ribbon = std::make_shared<R::ribbon>();
    ui.ribbon->tabs = std::make_shared<R::tabs>();
    ui.ribbon->tabs->items.Add(tab);
    return R::WriteCustomUi(ui);
}

std::u16string MacroMenuXml(const M2::Macros& list, MacroMenuKind kind) {
    const MenuIds ids = IdsOf(kind);
    R::menu content;
    if (list.macros.empty()) {
        content.controls.emplace_back(DisabledButton(Numbered(ids.macro, 0), msg::kNoMacros));
        return R::WriteMenu(content);
    }
    auto entry = [&](const M2::Macro& macro, std::size_t index) {
        auto button = Button(Numbered(ids.macro, index), macro.name, ids.onAction);
        button->tag = *macro.id;
        if (!macro.description.empty()) button->supertip = macro.description;
        return button;
    };
    const bool grouped = ByCategory(list);
    std::vector<std::pair<std::u16string, std::shared_ptr<R::menu>>> categories;
    std::vector<R::Control> uncategorised;
    for (std::size_t i = 0; i < list.macros.size(); ++i) {
        const M2::Macro& macro = *list.macros[i];
        if (!grouped || macro.category.empty()) {
            uncategorised.emplace_back(entry(macro, i));
            continue;
        }
        auto found = std::find_if(categories.begin(), categories.end(),
                                  [&](const auto& category) { return category.first == macro.category; });
        if (found == categories.end()) {
            auto submenu = std::make_shared<R::menu>();
            submenu->id = Numbered(ids.category, categories.size());
            submenu->label = macro.category;
            categories.emplace_back(macro.category, submenu);
            found = categories.end() - 1;
        }
        found->second->controls.emplace_back(entry(macro, i));
    }
    for (auto& category : categories) content.controls.emplace_back(std::move(category.second));
    for (auto& control : uncategorised) content.controls.push_back(std::move(control));
    return R::WriteMenu(content);
}

std::u16string DownloadMenuXml() {
    R::menu content;
    content.controls.emplace_back(DisabledButton(u"DownloadMacro_None", msg::kNoGallery));
    return R::WriteMenu(content);
}

std::u16string EmptyMenuXml() {
    const R::menu content;
    return R::WriteMenu(content);
}

bool HasCategory(const M2::Macros& list, std::u16string_view category) {
    for (const auto& macro : list.macros) {
        if (macro->category == category) return true;
    }
    return false;
}

}  // namespace qm::addin
