#include "platform/windows/SystemWindows.h"

#include "platform/windows/Resources.h"

#include <algorithm>
#include <array>
#include <map>
#include <objidl.h>
#include <utility>
#include <vector>
#include <wincodec.h>

#include "platform/windows/Widget.h"

namespace platform {

namespace {

/// The resource of a file: its name in capitals, with "_" for what a resource's name can't have.
std::wstring ResourceOf(const std::string& file) {
  std::wstring name = Wide(file);
  for (wchar_t& letter : name) {
    if (letter == L'.' || letter == L'@') letter = L'_';
  }
  CharUpperW(name.data());
  return name;
}

/// "tray.ico" for a scale of 1, "tray@2x.ico" where more dots are there, if there is such a file.
std::string ForScale(const std::string& file, bool more, const wchar_t* type) {
  const std::size_t dot = file.find('.');
  const std::string finer = file.substr(0, dot) + "@2x" + file.substr(dot);
  return more && FindResourceW(Module(), ResourceOf(finer).c_str(), type) != nullptr ? finer : file;
}

/// The files of pictures that the program has handles of, which count from 1.
std::vector<std::string>& Pictures() {
  static auto& names = *new std::vector<std::string>;
  return names;
}

/// Something of the imaging library's, given back at its end.
template <typename Interface>
class Com {
 public:
  Com() = default;
  Com(const Com&) = delete;
  Com& operator=(const Com&) = delete;
  ~Com() {
    if (pointer_ != nullptr) pointer_->Release();
  }
  Interface** Out() { return &pointer_; }
  Interface* operator->() const { return pointer_; }
  Interface* Get() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }

 private:
  Interface* pointer_ = nullptr;
};

/// Decodes, scales and turns a picture into 32 bits a pixel, blue first.
class Decoder {
 public:
  explicit Decoder(const std::string& file) {
    const HRSRC place = FindResourceW(Module(), ResourceOf(file).c_str(), RT_RCDATA);
    if (place == nullptr) return;
    auto* bytes = static_cast<BYTE*>(LockResource(LoadResource(Module(), place)));
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                     IID_PPV_ARGS(factory_.Out()));
    if (!factory_ || FAILED(factory_->CreateStream(stream_.Out())) ||
        FAILED(stream_->InitializeFromMemory(bytes, SizeofResource(Module(), place))) ||
        FAILED(factory_->CreateDecoderFromStream(stream_.Get(), nullptr,
                                                 WICDecodeMetadataCacheOnDemand, decoder_.Out()))) {
      return;
    }
    decoder_->GetFrame(0, frame_.Out());
  }

  bool Read(int width, int height, std::vector<BYTE>& pixels) {
    Com<IWICBitmapScaler> scaled;
    Com<IWICFormatConverter> plain;
    const auto wide = static_cast<UINT>(width);
    const auto high = static_cast<UINT>(height);
    if (!frame_ || FAILED(factory_->CreateFormatConverter(plain.Out())) ||
        FAILED(plain->Initialize(frame_.Get(), GUID_WICPixelFormat32bppPBGRA,
                                 WICBitmapDitherTypeNone, nullptr, 0,
                                 WICBitmapPaletteTypeCustom)) ||
        FAILED(factory_->CreateBitmapScaler(scaled.Out())) ||
        FAILED(scaled->Initialize(plain.Get(), wide, high, WICBitmapInterpolationModeFant))) {
      return false;
    }
    pixels.resize(std::size_t{4} * wide * high);
    return SUCCEEDED(
        scaled->CopyPixels(nullptr, 4 * wide, static_cast<UINT>(pixels.size()), pixels.data()));
  }

 private:
  Com<IWICImagingFactory> factory_;
  Com<IWICStream> stream_;
  Com<IWICBitmapDecoder> decoder_;
  Com<IWICBitmapFrameDecode> frame_;
};

/// Lays a picture with premultiplied transparency on a plain colour.
void LayOn(COLORREF background, std::vector<BYTE>& pixels) {
  const std::array<unsigned, 3> under{GetBValue(background), GetGValue(background),
                                      GetRValue(background)};
  for (std::size_t at = 0; at + 4 <= pixels.size(); at += 4) {
    const unsigned clear = 255u - pixels[at + 3];
    for (std::size_t c = 0; c < under.size(); ++c) {
      pixels[at + c] = static_cast<BYTE>(std::min(255u, pixels[at + c] + under[c] * clear / 255));
    }
    pixels[at + 3] = 255;
  }
}

}  // namespace

HICON IconOfSize(const std::string& name, int size) {
  static std::map<std::pair<std::string, int>, HICON> icons;
  HICON& icon = icons[{name, size}];
  constexpr int Small = 16;
  if (icon == nullptr) {
    const std::string file = ForScale(name, size > Small, RT_GROUP_ICON);
    icon = static_cast<HICON>(
        LoadImageW(Module(), ResourceOf(file).c_str(), IMAGE_ICON, size, size, LR_DEFAULTCOLOR));
  }
  return icon;
}

HBITMAP PictureOfSize(const std::string& name, int width, int height, COLORREF background) {
  const bool more = GetDpiForSystem() > USER_DEFAULT_SCREEN_DPI;
  std::vector<BYTE> pixels;
  if (!Decoder(ForScale(name, more, RT_RCDATA)).Read(width, height, pixels)) return nullptr;
  LayOn(background, pixels);
  return CreateBitmap(width, height, 1, 32, pixels.data());
}

HCURSOR PointerForScale(const std::string& name, int dpi) {
  static std::map<int, HCURSOR> pointers;
  HCURSOR& pointer = pointers[dpi];
  if (pointer == nullptr) {
    const int size = GetSystemMetricsForDpi(SM_CXCURSOR, static_cast<UINT>(dpi));
    const std::string file = ForScale(name, size > 32, RT_GROUP_CURSOR);
    pointer = static_cast<HCURSOR>(
        LoadImageW(Module(), ResourceOf(file).c_str(), IMAGE_CURSOR, size, size, LR_DEFAULTCOLOR));
  }
  return pointer;
}

std::uint32_t NumberPicture(const std::string& name) {
  Pictures().push_back(name);
  return static_cast<std::uint32_t>(Pictures().size());
}

HICON PictureByHandle(std::uint32_t handle, int size) {
  const std::vector<std::string>& files = Pictures();
  return handle >= 1 && handle <= files.size() ? IconOfSize(files[handle - 1], size) : nullptr;
}

}  // namespace platform
