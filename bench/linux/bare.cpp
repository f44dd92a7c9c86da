#include <QApplication>
#include <QLabel>
#include <QTimer>

// A window with a line of text, in the manner of the program: two timers of 500 milliseconds, and a
// wait of 100 milliseconds that also ends for window events. What it costs, the toolkit costs.

namespace {

/// A click changes its colour.
class Window : public QLabel {
 public:
  using QLabel::QLabel;

 protected:
  void mousePressEvent(QMouseEvent*) override {
    setAutoFillBackground(true);
    setBackgroundRole(backgroundRole() == QPalette::Dark ? QPalette::Light : QPalette::Dark);
  }
};

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  Window window("Quillmere");
  window.setGeometry(340, 300, 600, 420);  // in the middle of the screen, as the program's
  QTimer timers[3];
  for (QTimer& timer : timers) {
    QObject::connect(&timer, &QTimer::timeout, &window, [] {});
    timer.start(&timer == &timers[0] ? 100 : 500);
  }
  window.show();
  while (window.isVisible()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}
