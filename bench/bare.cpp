#include <QApplication>
#include <QLabel>
#include <QTimer>

// A window with a line of text that does nothing, in the manner of the program: two timers of 500
// milliseconds, and a wait of 100 milliseconds that also ends for window events. What it costs, the
// toolkit costs.
int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QLabel window("Quillmere");
  window.resize(600, 400);
  QTimer timers[3];
  for (QTimer& timer : timers) {
    QObject::connect(&timer, &QTimer::timeout, &window, [] {});
    timer.start(&timer == &timers[0] ? 100 : 500);
  }
  window.show();
  while (window.isVisible()) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}
