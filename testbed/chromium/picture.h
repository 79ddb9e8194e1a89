// One picture of a page, as Chromium sends it and as a window paints it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <windows.h>

#include <wincodec.h>
#include <wrl/client.h>

namespace testbed::chromium {

struct Picture {
    UINT width = 0;
    UINT height = 0;
    std::vector<std::uint8_t> pixels; // 32 bits each, blue first, rows from the top
};

/// Windows' imaging component, called by its exported functions: the thread need not have initialised COM, nor still have it
/// initialised in the end.
class PictureDecoder {
  public:
    PictureDecoder();

    /// @return nothing if it is no picture.
    std::optional<Picture> Decode(const std::string& base64Png) const;

  private:
    Microsoft::WRL::ComPtr<IWICImagingFactory> factory_;
};

} // namespace testbed::chromium
