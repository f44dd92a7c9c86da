#pragma once

/// Sizes of the main window's stretching parts for an outer window size, all in twips.
struct MainLayout {
  struct Size {
    int Width;
    int Height;
  };
  Size TabStrip1;
  Size Lists;   ///< `ListLog`, `ListVCookie` and `Frame1`.
  Size Panels;  ///< `Picture1` to `Picture4`.
  Size SearchList;
};

inline constexpr int MinMainWidth = 8145;  ///< Smallest outer size of the main window, twips.
inline constexpr int MinMainHeight = 4230;

constexpr MainLayout LayOut(int windowWidth, int windowHeight, int tabsLeft, int tabsTop) {
  const MainLayout::Size tabs{windowWidth - tabsLeft - 150, windowHeight - tabsTop - 450};
  const MainLayout::Size panels{tabs.Width - 150, tabs.Height - 450};
  return {.TabStrip1 = tabs,
          .Lists = {tabs.Width - 240, tabs.Height - 570},
          .Panels = panels,
          .SearchList = {panels.Width - 120, panels.Height - 570}};
}
