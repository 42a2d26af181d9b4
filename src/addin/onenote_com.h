// OneNote itself behind the OneNote seam: calls on the Application object OneNote hands the add-in
// at connection, always asking for and sending the 2010 schema.
//
// Calls go through OneNote's IApplication interface when the object gives it, else through
// IDispatch::Invoke with the methods' fixed dispatch identifiers (never by name: OneNote may
// refuse type information inside the surrogate). A call OneNote refuses because it is busy
// (0x8001010A) is tried again a few times, a short while apart; any other failure raises
// OneNoteError with OneNote's code and its text.
#pragma once

#include "addin/win32.h"

#include "addin/com_holders.h"
#include "addin/office_interfaces.h"
#include "onenote/onenote_api.h"

namespace qm::addin {

class ComOneNote final : public onenote::OneNoteApi {
public:
    explicit ComOneNote(IDispatch* application);

    std::u16string GetHierarchy(std::u16string_view startNodeId, onenote::HierarchyScope scope) override;
    void UpdateHierarchy(std::u16string_view changesXml) override;
    std::u16string GetHierarchyParent(std::u16string_view objectId) override;
    std::u16string GetPageContent(std::u16string_view pageId) override;
    void UpdatePageContent(std::u16string_view pageXml,
                           std::optional<xml::SystemTime> expectedLastModified = std::nullopt) override;
    std::u16string GetHyperlinkToObject(std::u16string_view hierarchyId,
                                        std::u16string_view pageContentObjectId) override;
    std::u16string CreateNewPage(std::u16string_view sectionId) override;

    // Whether calls go through the vtable (the object gave IApplication).
    bool direct() const noexcept { return static_cast<bool>(direct_); }

private:
    // One argument of a call through IDispatch, in the method's own order.
    struct Argument {
        VARTYPE type;
        union {
            BSTR text;
            int number;
            DATE date;
            VARIANT_BOOL flag;
            BSTR* out;
        };
    };
    void Invoke(OneNoteMethod method, std::initializer_list<Argument> arguments);

    ComPtr<IDispatch> dispatch_;
    ComPtr<IOneNoteApplication> direct_;
};

// The code OneNote answers while it is busy with something else.
inline constexpr HRESULT kOneNoteBusy = static_cast<HRESULT>(0x8001010A);
inline constexpr int kBusyAttempts = 5;
inline constexpr DWORD kBusyPauseMs = 200;

}  // namespace qm::addin
