// The ribbon's callbacks as Office calls them through IDispatch::Invoke: the arguments arrive last
// to first in DISPPARAMS, the ribbon control (to ask for its id and tag) being the last one, a
// toggle's pressed state the one before; by-reference forms are taken as well. Results go into
// the result VARIANT: VT_BOOL for getPressed, getVisible and getEnabled, VT_BSTR for labels and
// menu contents, VT_I4 for sizes and counts; images are left empty.
//
// Callbacks of the tools this version does not have answer as if the tool had nothing to show:
// hidden, not pressed, empty, zero; their actions do nothing.
#pragma once

#include "addin/win32.h"

#include "addin/callback_table.h"

namespace qm::addin {

class AddinSession;

// Raises on failure (the caller's COM boundary reports it). `session` is null while OneNote is not
// connected: callbacks that need it then fail.
void InvokeCallback(Callback callback, AddinSession* session, const DISPPARAMS& parameters, VARIANT* result);

}  // namespace qm::addin
