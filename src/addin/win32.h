// The Windows headers as the add-in includes them.
#pragma once

#include <windows.h>
#include <oaidl.h>
#include <oleauto.h>

// The system's FormatMessage macro would rename the project's own (core/format.h).
#undef FormatMessage
