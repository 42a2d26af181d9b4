// The content properties of a page: right-to-left, colour, size and orientation, margins, rule
// lines, and the objects standing on it. They read and write the page's loaded content.
//
// Absent settings read as OneNote's schema defaults: colour "automatic", an automatic size in
// portrait, a page of 612 by 792 points (8.5 by 11 inches), margins of 36 points at top and
// bottom and 72 at the sides, rule lines hidden with 23.76 points of spacing. Writing a size,
// orientation or margin gives the page a fixed size, filled in from those defaults; writing
// automaticSize true makes it automatic again. A page has vertical rule lines or a margin line,
// never both: writing one removes the other.
#include "core/error.h"
#include "core/format.h"
#include "onenote/hierarchy_objects.h"
#include "onenote/messages.h"
#include "onenote/page_objects.h"
#include "onenote/session.h"

namespace qm::onenote {
namespace {

constexpr double kDefaultWidth = 612;
constexpr double kDefaultHeight = 792;
constexpr double kDefaultMarginTopBottom = 36;
constexpr double kDefaultMarginSides = 72;
constexpr double kDefaultRuleSpacing = 23.76;
constexpr std::u16string_view kAutomatic = u"automatic";
constexpr std::u16string_view kPortrait = u"portrait";
constexpr std::u16string_view kLandscape = u"landscape";

PageObject& Self(OneNoteObject& object) { return static_cast<PageObject&>(object); }
ON::Page& Content(OneNoteObject& object) { return *Self(object).content().document; }

ON::PageSettings* Settings(OneNoteObject& object) { return Content(object).pageSettings.get(); }
ON::PageSettings& MakeSettings(OneNoteObject& object) {
    ON::Page& page = Content(object);
    if (!page.pageSettings) {
        page.pageSettings = ON::New<ON::PageSettings>();
        page.pageSettings->owner = &page;
    }
    return *page.pageSettings;
}

ON::PageSize* Size(OneNoteObject& object) {
    ON::PageSettings* settings = Settings(object);
    return settings ? settings->pageSize.get() : nullptr;
}

bool IsAutomatic(const ON::PageSize* size) { return size == nullptr || size->automatic || !size->orientation; }

// The page's size made fixed (Orientation, Dimensions and Margins all present), defaults filled in.
ON::PageSize& FixedSize(OneNoteObject& object) {
    ON::PageSettings& settings = MakeSettings(object);
    if (!settings.pageSize) {
        settings.pageSize = ON::New<ON::PageSize>();
        settings.pageSize->owner = &settings;
    }
    ON::PageSize& size = *settings.pageSize;
    size.automatic.reset();
    if (!size.orientation) {
        size.orientation = ON::New<ON::Orientation>();
        size.orientation->owner = &size;
    }
    if (!size.dimensions) {
        size.dimensions = ON::New<ON::Dimensions>();
        size.dimensions->owner = &size;
        size.dimensions->width = ON::Float::Of(kDefaultWidth);
        size.dimensions->height = ON::Float::Of(kDefaultHeight);
    }
    if (!size.margins) {
        size.margins = ON::New<ON::Margins>();
        size.margins->owner = &size;
        size.margins->top = ON::Float::Of(kDefaultMarginTopBottom);
        size.margins->bottom = ON::Float::Of(kDefaultMarginTopBottom);
        size.margins->left = ON::Float::Of(kDefaultMarginSides);
        size.margins->right = ON::Float::Of(kDefaultMarginSides);
    }
    return size;
}

MacroValue NumberOr(const ON::OptFloat& value, double fallback) {
    return MacroValue(value ? NumberOf(*value) : fallback);
}

// --- rtl, color, size -------------------------------------------------------------------------

MacroValue GetRtl(OneNoteObject& o) {
    const ON::PageSettings* settings = Settings(o);
    return MacroValue(settings != nullptr && *settings->RTL);
}
void SetRtl(OneNoteObject& o, const MacroValue& v) { MakeSettings(o).RTL = v.boolean(); }

MacroValue GetColor(OneNoteObject& o) {
    const ON::PageSettings* settings = Settings(o);
    return MacroValue(settings && settings->color ? *settings->color : std::u16string(kAutomatic));
}
void SetColor(OneNoteObject& o, const MacroValue& v) { MakeSettings(o).color = v.string(); }

MacroValue GetAutomaticSize(OneNoteObject& o) { return MacroValue(IsAutomatic(Size(o))); }
void SetAutomaticSize(OneNoteObject& o, const MacroValue& v) {
    if (!v.boolean()) {
        FixedSize(o);
        return;
    }
    ON::PageSettings& settings = MakeSettings(o);
    auto size = ON::New<ON::PageSize>();
    size->owner = &settings;
    size->automatic = ON::New<ON::Automatic>();
    size->automatic->owner = size.get();
    settings.pageSize = std::move(size);
}

MacroValue GetOrientation(OneNoteObject& o) {
    const ON::PageSize* size = Size(o);
    const bool landscape = !IsAutomatic(size) && *size->orientation->landscape;
    return MacroValue(std::u16string(landscape ? kLandscape : kPortrait));
}
void SetOrientation(OneNoteObject& o, const MacroValue& v) {
    const std::u16string& text = v.string();
    if (text != kPortrait && text != kLandscape) throw MacroError(FormatMessage(msg::kInvalidOrientation, {text}));
    FixedSize(o).orientation->landscape = text == kLandscape;
}

template <ON::OptFloat ON::Dimensions::*Member, const double& Fallback>
MacroValue GetDimension(OneNoteObject& o) {
    const ON::PageSize* size = Size(o);
    if (IsAutomatic(size) || !size->dimensions) return MacroValue(Fallback);
    return NumberOr(size->dimensions.get()->*Member, Fallback);
}
template <ON::OptFloat ON::Dimensions::*Member>
void SetDimension(OneNoteObject& o, const MacroValue& v) {
    FixedSize(o).dimensions.get()->*Member = ON::Float::Of(v.decimal());
}

template <ON::OptFloat ON::Margins::*Member, const double& Fallback>
MacroValue GetMargin(OneNoteObject& o) {
    const ON::PageSize* size = Size(o);
    if (IsAutomatic(size) || !size->margins) return MacroValue(Fallback);
    return NumberOr(size->margins.get()->*Member, Fallback);
}
template <ON::OptFloat ON::Margins::*Member>
void SetMargin(OneNoteObject& o, const MacroValue& v) {
    FixedSize(o).margins.get()->*Member = ON::Float::Of(v.decimal());
}

// --- rule lines -------------------------------------------------------------------------------

ON::RuleLines* Rules(OneNoteObject& o) {
    ON::PageSettings* settings = Settings(o);
    return settings ? settings->ruleLines.get() : nullptr;
}
ON::RuleLines& MakeRules(OneNoteObject& o) {
    ON::PageSettings& settings = MakeSettings(o);
    if (!settings.ruleLines) {
        settings.ruleLines = ON::New<ON::RuleLines>();
        settings.ruleLines->owner = &settings;
        settings.ruleLines->visible = false;
    }
    return *settings.ruleLines;
}

MacroValue GetRulesVisible(OneNoteObject& o) {
    const ON::RuleLines* rules = Rules(o);
    return MacroValue(rules != nullptr && rules->visible.value_or(false));
}
void SetRulesVisible(OneNoteObject& o, const MacroValue& v) { MakeRules(o).visible = v.boolean(); }

// One kind of rule line (Horizontal, Vertical or Margin), made on first write; a Vertical and a
// Margin exclude each other.
template <class Line>
std::shared_ptr<Line> ON::RuleLines::*LineSlot() {
    if constexpr (std::is_same_v<Line, ON::Horizontal>) {
        return &ON::RuleLines::horizontal;
    } else if constexpr (std::is_same_v<Line, ON::Vertical>) {
        return &ON::RuleLines::vertical;
    } else {
        return &ON::RuleLines::margin;
    }
}

template <class Line>
Line* FindLine(OneNoteObject& o) {
    ON::RuleLines* rules = Rules(o);
    return rules ? (rules->*LineSlot<Line>()).get() : nullptr;
}
template <class Line>
Line& MakeLine(OneNoteObject& o) {
    ON::RuleLines& rules = MakeRules(o);
    auto& slot = rules.*LineSlot<Line>();
    if (!slot) {
        rules.automatic.reset();
        if constexpr (std::is_same_v<Line, ON::Vertical>) rules.margin.reset();
        if constexpr (std::is_same_v<Line, ON::Margin>) rules.vertical.reset();
        slot = ON::New<Line>();
        slot->owner = &rules;
    }
    return *slot;
}

template <class Line>
MacroValue GetLineColor(OneNoteObject& o) {
    const Line* line = FindLine<Line>(o);
    return MacroValue(line && line->color ? *line->color : std::u16string(kAutomatic));
}
template <class Line>
void SetLineColor(OneNoteObject& o, const MacroValue& v) {
    MakeLine<Line>(o).color = v.string();
}
template <class Line>
MacroValue GetLineSpacing(OneNoteObject& o) {
    const Line* line = FindLine<Line>(o);
    return line ? NumberOr(line->spacing, kDefaultRuleSpacing) : MacroValue(kDefaultRuleSpacing);
}
template <class Line>
void SetLineSpacing(OneNoteObject& o, const MacroValue& v) {
    MakeLine<Line>(o).spacing = ON::Float::Of(v.decimal());
}

// --- the objects on the page ------------------------------------------------------------------

template <bool Outlines, bool Images, bool Files>
MacroValue GetPageElements(OneNoteObject& o) {
    PageObject& page = Self(o);
    const std::shared_ptr<LoadedPage>& loaded = o.session().LoadContent(page);
    std::vector<std::shared_ptr<xml::ChildElement>> elements;
    for (const auto& choice : loaded->document->elements) {
        if (Outlines && choice->outline) elements.push_back(choice->outline);
        if (Images && choice->image) elements.push_back(choice->image);
        if (Files && choice->insertedFile) elements.push_back(choice->insertedFile);
    }
    return ObjectArray(ObjectsFor(o.session(), loaded, elements));
}

constexpr PropertyDef InContent(PropertyDef def) {
    def.content = true;
    return def;
}

using K = PropertyKind;
constexpr Access RW = Access::ReadWrite;
constexpr Access RO = Access::ReadOnly;

constexpr PropertyDef kPageContent[] = {
    InContent({u"rtl", K::Bool, RW, &GetRtl, &SetRtl}),
    InContent({u"color", K::String, RW, &GetColor, &SetColor}),
    InContent({u"automaticSize", K::Bool, RW, &GetAutomaticSize, &SetAutomaticSize}),
    InContent({u"orientation", K::String, RW, &GetOrientation, &SetOrientation}),
    InContent({u"width", K::Number, RW, &GetDimension<&ON::Dimensions::width, kDefaultWidth>,
             &SetDimension<&ON::Dimensions::width>}),
    InContent({u"height", K::Number, RW, &GetDimension<&ON::Dimensions::height, kDefaultHeight>,
             &SetDimension<&ON::Dimensions::height>}),
    InContent({u"marginTop", K::Number, RW, &GetMargin<&ON::Margins::top, kDefaultMarginTopBottom>,
             &SetMargin<&ON::Margins::top>}),
    InContent({u"marginBottom", K::Number, RW, &GetMargin<&ON::Margins::bottom, kDefaultMarginTopBottom>,
             &SetMargin<&ON::Margins::bottom>}),
    InContent({u"marginLeft", K::Number, RW, &GetMargin<&ON::Margins::left, kDefaultMarginSides>,
             &SetMargin<&ON::Margins::left>}),
    InContent({u"marginRight", K::Number, RW, &GetMargin<&ON::Margins::right, kDefaultMarginSides>,
             &SetMargin<&ON::Margins::right>}),
    InContent({u"ruleLinesVisible", K::Bool, RW, &GetRulesVisible, &SetRulesVisible}),
    InContent({u"ruleLinesHorizontalColor", K::String, RW, &GetLineColor<ON::Horizontal>,
             &SetLineColor<ON::Horizontal>}),
    InContent({u"ruleLinesHorizontalSpacing", K::Number, RW, &GetLineSpacing<ON::Horizontal>,
             &SetLineSpacing<ON::Horizontal>}),
    InContent({u"ruleLinesVerticalColor", K::String, RW, &GetLineColor<ON::Vertical>, &SetLineColor<ON::Vertical>}),
    InContent({u"ruleLinesVerticalSpacing", K::Number, RW, &GetLineSpacing<ON::Vertical>,
             &SetLineSpacing<ON::Vertical>}),
    InContent({u"ruleLinesMarginColor", K::String, RW, &GetLineColor<ON::Margin>, &SetLineColor<ON::Margin>}),
    InContent({u"pageObjects", K::Array, RO, &GetPageElements<true, true, true>}),
    InContent({u"outlines", K::Array, RO, &GetPageElements<true, false, false>}),
    InContent({u"images", K::Array, RO, &GetPageElements<false, true, false>}),
};

}  // namespace

PropertyTable PageContentProperties() { return kPageContent; }

}  // namespace qm::onenote
