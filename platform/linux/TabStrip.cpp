#include <QStyleOptionTabWidgetFrame>
#include <QStylePainter>
#include <QTabBar>

#include "platform/Forms.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

/// A tab bar over an empty pane; the pages are the window's own controls, which lie above it.
class TabStripWidget : public QWidget {
 public:
  explicit TabStripWidget(QWidget* parent) : QWidget(parent), bar_(new QTabBar(this)) {
    setFocusProxy(bar_);
    bar_->setExpanding(false);
    bar_->setUsesScrollButtons(true);
    bar_->setFocusPolicy(Qt::StrongFocus);
  }

  QTabBar* Bar() const { return bar_; }

 protected:
  void resizeEvent(QResizeEvent*) override {
    bar_->setGeometry(0, 0, width(), bar_->sizeHint().height());
  }

  void paintEvent(QPaintEvent*) override {
    QStylePainter painter(this);
    QStyleOptionTabWidgetFrame option;
    option.initFrom(this);
    const int overlap = style()->pixelMetric(QStyle::PM_TabBarBaseOverlap, nullptr, bar_);
    option.rect = rect().adjusted(0, bar_->height() - overlap, 0, 0);
    option.tabBarRect = bar_->geometry();
    option.selectedTabRect = bar_->tabRect(bar_->currentIndex());
    option.tabBarSize = bar_->size();
    option.shape = bar_->shape();
    option.lineWidth = 1;
    painter.drawPrimitive(QStyle::PE_FrameTabWidget, option);
  }

 private:
  QTabBar* bar_;
};

QTabBar* Bar(const TabStrip& strip) { return static_cast<TabStripWidget*>(Widget(strip))->Bar(); }

}  // namespace

TabStrip::TabStrip(Container& parent, const Design& design, const std::vector<std::string>& tabs)
    : Control(parent, design, ::platform::Native(new TabStripWidget(Widget(parent)))) {
  for (const std::string& tab : tabs) Bar(*this)->addTab(FromText(tab));
  Bar(*this)->setAccessibleName(design.AccessibleName);
  QObject::connect(Bar(*this), &QTabBar::currentChanged, [this] {
    Widget(*this)->update();
    SetFocus();
    if (Click) Click();
  });
}

int TabStrip::SelectedItem() const { return Bar(*this)->currentIndex() + 1; }
int TabStrip::Count() const { return Bar(*this)->count(); }
void TabStrip::SelectedItem(int index) { Bar(*this)->setCurrentIndex(index - 1); }

}  // namespace platform
