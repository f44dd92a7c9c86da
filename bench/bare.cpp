#include <poll.h>

#include <QApplication>
#include <QTimer>
#include <QWidget>

// A window that does nothing, in the manner of the program: two timers of 500 milliseconds, and a
// loop that waits 100 milliseconds and then hands out events. What it costs, the toolkit costs.
int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QWidget window;
  window.resize(600, 400);
  QTimer timers[2];
  for (QTimer& timer : timers) {
    QObject::connect(&timer, &QTimer::timeout, &window, [] {});
    timer.start(500);
  }
  window.show();
  while (window.isVisible()) {
    constexpr int Milliseconds = 100;
    poll(nullptr, 0, Milliseconds);
    QCoreApplication::processEvents();
  }
}
