// What every COM object of the add-in needs: its reference count, and QueryInterface answered from
// a table of the interfaces it gives.
#pragma once

#include <atomic>
#include <cstddef>

#include "addin/win32.h"

namespace qm::addin {

// Starts at one reference, for the creator; the object goes with the last Release.
class RefCount {
public:
    ULONG Add() noexcept { return ++count_; }
    template <class Object>
    ULONG Release(Object* object) noexcept {
        const ULONG left = --count_;
        if (left == 0) delete object;
        return left;
    }

private:
    std::atomic<ULONG> count_{1};
};

// One interface of an object: its identifier and the object's pointer of that interface.
struct InterfaceEntry {
    const IID* iid;
    IUnknown* pointer;
};

template <std::size_t N>
HRESULT QueryFromTable(const InterfaceEntry (&table)[N], REFIID iid, void** object) noexcept {
    if (!object) return E_POINTER;
    for (const InterfaceEntry& entry : table) {
        if (IsEqualIID(iid, *entry.iid)) {
            entry.pointer->AddRef();
            *object = entry.pointer;
            return S_OK;
        }
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

}  // namespace qm::addin
