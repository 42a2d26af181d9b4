// What the add-in tests share: quillmark.dll loaded as OneNote loads it, stand-ins for the objects
// OneNote hands the add-in (its Application over a notebook folder, ribbon controls, the ribbon),
// and a fresh per-user folder for each test.
#pragma once

#include <gtest/gtest.h>

#include "addin/com_holders.h"
#include "addin/office_interfaces.h"

#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "onenote/notebook_folder.h"

namespace qm::addin::testing {

CLSID Guid(std::u16string_view text);

// quillmark.dll (copied beside the test program), loaded once.
class AddinLibrary {
public:
    static AddinLibrary& Get();
    HRESULT GetClassObject(REFCLSID clsid, REFIID iid, void** object) const;
    std::filesystem::path Path() const;

private:
    AddinLibrary();
    HMODULE module_ = nullptr;
    HRESULT(STDAPICALLTYPE* getClassObject_)(REFCLSID, REFIID, void**) = nullptr;
};

// An IDispatch whose Invoke a test writes.
class FakeDispatch : public IDispatch {
public:
    virtual ~FakeDispatch() = default;
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO*, UINT*) override;

protected:
    // The arguments in their own order (the first is parameters.rgvarg[cArgs - 1]).
    virtual HRESULT Call(DISPID id, WORD flags, const std::vector<VARIANT*>& arguments, VARIANT* result) = 0;

private:
    std::atomic<ULONG> references_{1};
};

// A ribbon control: Office hands one to every callback.
class FakeControl final : public FakeDispatch {
public:
    FakeControl(std::u16string id, std::u16string tag) : id_(std::move(id)), tag_(std::move(tag)) {}

protected:
    HRESULT Call(DISPID id, WORD flags, const std::vector<VARIANT*>& arguments, VARIANT* result) override;

private:
    std::u16string id_, tag_;
};

// The ribbon handed to OnLoad: remembers what it was asked to refresh ("" for everything).
class FakeRibbon final : public FakeDispatch {
public:
    std::vector<std::u16string> invalidated;

protected:
    HRESULT Call(DISPID id, WORD flags, const std::vector<VARIANT*>& arguments, VARIANT* result) override;
};

// OneNote's Application serving a notebook folder: through IDispatch with OneNote's dispatch
// identifiers, and, when `direct`, through IApplication as well (calls there are forwarded to the
// same code). Every page written is kept, and the time spent writing.
class FakeOneNote final : public FakeDispatch {
public:
    FakeOneNote(const std::filesystem::path& folder, bool direct) : folder_(folder), direct_(direct) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

    std::vector<std::u16string> updatedPages;
    double updateSeconds = 0;
    int busyAnswers = 0;  // this many calls are refused as busy first
    int calls = 0;
    int directCalls = 0;  // of them, through IApplication

protected:
    HRESULT Call(DISPID id, WORD flags, const std::vector<VARIANT*>& arguments, VARIANT* result) override;

private:
    class Direct;
    friend class Direct;
    onenote::NotebookFolder folder_;
    bool direct_;
};

// Calls a callback by name through IDispatch as Office does: the arguments given first to last.
HRESULT InvokeByName(IDispatch* addin, std::u16string_view name, std::vector<VARIANT> arguments, VARIANT* result);

// A test with its own per-user folder (QUILLMARK_HOME) and box record (QUILLMARK_TEST_BOXES).
class AddinTest : public ::testing::Test {
protected:
    void SetUp() override;
    std::filesystem::path home() const { return home_; }
    // The boxes the add-in showed, a line each.
    std::vector<std::string> Boxes() const;
    // The host log's text.
    std::string HostLogText() const;
    // A new add-in object through the in-process class, as IDispatch.
    ComPtr<IDispatch> NewAddin() const;
    // Stores a macro written in the text form; returns its id.
    std::u16string StoreMacro(std::u16string_view text) const;

private:
    std::filesystem::path home_;
};

}  // namespace qm::addin::testing
