#include "platform/windows/SystemWindows.h"

#include "platform/windows/EventLoop.h"
#include "platform/windows/Resources.h"
#include "platform/windows/Widget.h"

// What holds controls or only shows: panels, frames, pictures, lines.

namespace platform {

namespace {

const wchar_t* PanelClass() {
  static const ATOM known = [] {
    WNDCLASSEXW design{};
    design.cbSize = sizeof design;
    design.lpfnWndProc = DefWindowProcW;
    design.hInstance = Module();
    design.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
    design.lpszClassName = L"QuillmerePanel";
    return RegisterClassExW(&design);
  }();
  return reinterpret_cast<const wchar_t*>(static_cast<ULONG_PTR>(known));
}

class PanelWidget : public NativeWidget {
 public:
  PanelWidget(Container& parent, const Design& design) : NativeWidget(parent.Native()) {
    TabIndex = design.TabIndex;
    paintsBack_ = true;
    Create(PanelClass(), WS_CLIPCHILDREN, WS_EX_CONTROLPARENT);
  }
};

/// A panel with the system's frame around it, which holds nothing itself.
class FrameWidget : public PanelWidget {
 public:
  FrameWidget(Container& parent, const Design& design)
      : PanelWidget(parent, design),
        frame_(CreateWindowExW(0, L"BUTTON", Wide(design.Caption).c_str(),
                               WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | BS_GROUPBOX, 0, 0, 0, 0,
                               Window(), nullptr, Module(), nullptr)) {
    RenewFont();
  }

  void Move(const Place& to) override {
    PanelWidget::Move(to);
    ::SetWindowPos(frame_, reinterpret_cast<HWND>(INT_PTR{1}), 0, 0, ToPixels(to.Width),
                   ToPixels(to.Height), SWP_NOACTIVATE);
  }

  void RenewFont() override {
    PanelWidget::RenewFont();
    SendMessageW(frame_, WM_SETFONT, reinterpret_cast<WPARAM>(Font()), TRUE);
  }

 protected:
  bool OnMessage(UINT message, WPARAM w, LPARAM l, LRESULT& result) override {
    if (message != WM_CTLCOLORSTATIC || reinterpret_cast<HWND>(l) != frame_) return false;
    result = Colour(reinterpret_cast<HDC>(w));
    return true;
  }

 private:
  HWND frame_ = nullptr;
};

class ImageWidget : public NativeWidget {
 public:
  ImageWidget(Container& parent, const std::string& resource)
      : NativeWidget(parent.Native()), resource_(resource) {
    const bool isIcon = resource.ends_with(".ico");
    Create(L"STATIC", isIcon ? SS_ICON | SS_REALSIZECONTROL : SS_BITMAP | SS_REALSIZECONTROL);
  }
  ~ImageWidget() override {
    if (bitmap_ != nullptr) DeleteObject(bitmap_);
  }

  void Move(const Place& to) override {
    NativeWidget::Move(to);
    if (Window() != nullptr && to.Width > 0) Renew();
  }

 private:
  void Renew() {
    const int width = ToPixels(At().Width);
    if (resource_.ends_with(".ico")) {
      SendMessageW(Window(), STM_SETIMAGE, IMAGE_ICON,
                   reinterpret_cast<LPARAM>(IconOfSize(resource_, width)));
      return;
    }
    const HBITMAP before = bitmap_;
    bitmap_ = PictureOfSize(resource_, width, ToPixels(At().Height), Background());
    SendMessageW(Window(), STM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(bitmap_));
    if (before != nullptr) DeleteObject(before);
  }

  std::string resource_;
  HBITMAP bitmap_ = nullptr;
};

}  // namespace

PictureBox::PictureBox(Container& parent, const Design& design)
    : Container(parent, design, new PanelWidget(parent, design)) {}

Frame::Frame(Container& parent, const Design& design)
    : Container(parent, design, new FrameWidget(parent, design)) {}

Image::Image(Container& parent, const Design& design, const std::string& resource)
    : Control(parent, design, new ImageWidget(parent, resource)),
      picture_(NumberPicture(resource)) {}

Line::Line(Container& parent, const Design& design, std::uint32_t colour)
    : Control(parent, design, new PanelWidget(parent, design)) {
  constexpr int OneDot = 15;
  if (design.At.Height < OneDot) Height(OneDot);
  if (design.At.Width < OneDot) Width(OneDot);
  BackColor(colour);
}

}  // namespace platform
