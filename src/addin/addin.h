// The add-in object OneNote creates through the class objects: IDTExtensibility2 (connection and
// disconnection), IRibbonExtensibility (the ribbon XML) and IDispatch for the ribbon's named
// callbacks (callback_table.h). What the callbacks do lives in AddinSession, which exists from
// OnConnection to OnDisconnection.
#pragma once

#include "addin/win32.h"

#include "addin/module.h"

namespace qm::addin {

// A new add-in object holding one reference for the caller; null when memory ran out.
IUnknown* CreateAddin(AddinKind kind) noexcept;

}  // namespace qm::addin
