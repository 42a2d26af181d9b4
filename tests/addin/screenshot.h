// Pictures of the add-in's windows for a person to look at: a window drawn into a bitmap and saved
// as a PNG file through the platform's imaging component (WIC).
#pragma once

#include "addin/win32.h"

#include <filesystem>

namespace qm::addin::testing {

// The folder the pictures land in: "screenshots" in the build folder.
std::filesystem::path ScreenshotFolder();

// Saves the window, frame and all, as ScreenshotFolder() / name; false when it could not.
bool SaveScreenshot(HWND window, const std::filesystem::path& name);

}  // namespace qm::addin::testing
