#include "screenshot.h"

#include <wincodec.h>

#include "addin/com_holders.h"

namespace qm::addin::testing {
namespace {

// Encodes the bitmap as PNG into the file.
HRESULT WritePng(HBITMAP bitmap, const std::filesystem::path& file) {
    ComPtr<IWICImagingFactory> factory;
    HRESULT hr = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                  reinterpret_cast<void**>(factory.Out()));
    if (FAILED(hr)) return hr;
    ComPtr<IWICBitmap> source;
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
    ComPtr<IPropertyBag2> options;
    if (FAILED(hr = factory->CreateBitmapFromHBITMAP(bitmap, nullptr, WICBitmapIgnoreAlpha, source.Out()))) return hr;
    if (FAILED(hr = factory->CreateStream(stream.Out()))) return hr;
    if (FAILED(hr = stream->InitializeFromFilename(file.c_str(), GENERIC_WRITE))) return hr;
    if (FAILED(hr = factory->CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.Out()))) return hr;
    if (FAILED(hr = encoder->Initialize(stream.get(), WICBitmapEncoderNoCache))) return hr;
    if (FAILED(hr = encoder->CreateNewFrame(frame.Out(), options.Out()))) return hr;
    if (FAILED(hr = frame->Initialize(options.get()))) return hr;
    UINT width = 0, height = 0;
    source->GetSize(&width, &height);
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    if (FAILED(hr = frame->SetSize(width, height))) return hr;
    if (FAILED(hr = frame->SetPixelFormat(&format))) return hr;
    if (FAILED(hr = frame->WriteSource(source.get(), nullptr))) return hr;
    if (FAILED(hr = frame->Commit())) return hr;
    return encoder->Commit();
}

}  // namespace

std::filesystem::path ScreenshotFolder() { return std::filesystem::path(QUILLMARK_SCREENSHOT_DIR); }

bool SaveScreenshot(HWND window, const std::filesystem::path& name) {
    RECT frame{};
    if (!GetWindowRect(window, &frame)) return false;
    const int width = frame.right - frame.left, height = frame.bottom - frame.top;
    // Painted afresh, controls and all, and given time to reach the screen: under Wine a window's
    // drawing goes to the X server at a later turn of its message handling.
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
    for (int turn = 0; turn < 4; ++turn) {
        MSG message;
        while (PeekMessageW(&message, window, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        Sleep(30);
    }
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ previous = SelectObject(memory, bitmap);
    // What is on the screen where the window is: the window is on top, drawn by the system as
    // the user sees it.
    const bool copied = BitBlt(memory, 0, 0, width, height, screen, frame.left, frame.top, SRCCOPY);
    SelectObject(memory, previous);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);

    std::error_code ignored;
    std::filesystem::create_directories(ScreenshotFolder(), ignored);
    const HRESULT initialised = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const bool saved = copied && SUCCEEDED(WritePng(bitmap, ScreenshotFolder() / name));
    if (SUCCEEDED(initialised)) CoUninitialize();
    DeleteObject(bitmap);
    return saved;
}

}  // namespace qm::addin::testing
