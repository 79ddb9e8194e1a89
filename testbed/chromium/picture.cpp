// Decoding of PNG, and painting.
#include "testbed/chromium/picture.h"

#include <wincrypt.h>

// In the library, but in no header. NOLINTNEXTLINE(readability-identifier-naming)
extern "C" HRESULT WINAPI WICCreateImagingFactory_Proxy(UINT version, IWICImagingFactory** factory);

namespace testbed::chromium {
namespace {

using Microsoft::WRL::ComPtr;

constexpr UINT kBytesPerPixel = 4;

std::vector<BYTE> FromBase64(const std::string& text) {
    DWORD size = 0;
    const auto length = static_cast<DWORD>(text.size());
    CryptStringToBinaryA(text.c_str(), length, CRYPT_STRING_BASE64, nullptr, &size, nullptr, nullptr);
    std::vector<BYTE> bytes(size);
    if (CryptStringToBinaryA(text.c_str(), length, CRYPT_STRING_BASE64, bytes.data(), &size, nullptr,
                             nullptr) == FALSE) {
        return {};
    }
    return bytes;
}

} // namespace

PictureDecoder::PictureDecoder() {
    WICCreateImagingFactory_Proxy(WINCODEC_SDK_VERSION, factory_.GetAddressOf());
}

std::optional<Picture> PictureDecoder::Decode(const std::string& base64Png) const {
    std::vector<BYTE> bytes = FromBase64(base64Png);
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapDecoder> decoder;
    ComPtr<IWICBitmapFrameDecode> frame;
    ComPtr<IWICBitmapSource> pixels;
    Picture picture;
    if (factory_ == nullptr || FAILED(factory_->CreateStream(stream.GetAddressOf())) ||
        FAILED(stream->InitializeFromMemory(bytes.data(), static_cast<DWORD>(bytes.size()))) ||
        FAILED(factory_->CreateDecoderFromStream(stream.Get(), nullptr, WICDecodeMetadataCacheOnDemand,
                                                 decoder.GetAddressOf())) ||
        FAILED(decoder->GetFrame(0, frame.GetAddressOf())) ||
        FAILED(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGR, frame.Get(), pixels.GetAddressOf())) ||
        FAILED(pixels->GetSize(&picture.width, &picture.height))) {
        return std::nullopt;
    }
    const UINT stride = picture.width * kBytesPerPixel;
    picture.pixels.resize(std::size_t{stride} * picture.height);
    if (FAILED(pixels->CopyPixels(nullptr, stride, static_cast<UINT>(picture.pixels.size()),
                                  picture.pixels.data()))) {
        return std::nullopt;
    }
    return picture;
}

} // namespace testbed::chromium
