// SPDX-License-Identifier: Apache-2.0

// Takes the place of the installer's Window.so and measures its real window from inside. BENCH_MODE says what.

#include <QAbstractButton>
#include <QAction>
#include <QTimer>
#include <chrono>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "Painting.h"
#include "WindowDriver.h"

namespace {

using Clock = Painting::Clock;

QAbstractButton& button(const char* name) {
  waitUntil(name, [name] { return shownWidget<QAbstractButton>(name) != nullptr; });
  return *shownWidget<QAbstractButton>(name);
}

void closeWindow() { shownWidget<QWidget>("mainWindow")->close(); }

/// Handles events until nothing has been painted for a while; when the turn of the loop ended that painted last.
Clock::time_point endOfPainting(const Painting& painting, Clock::time_point start) {
  constexpr std::chrono::milliseconds calm(30);
  Clock::time_point end = start;
  Clock::time_point seen = start;
  while (Clock::now() - std::max(end, start) < calm) {
    QApplication::processEvents();
    if (painting.last() <= seen) continue;
    seen = painting.last();
    end = Clock::now();
  }
  return end;
}

/// Goes from page to page, all over and over, and tells how long each took to be there.
class Walk {
 public:
  explicit Walk(const Painting& painting) : painting_(painting) {}

  void run() {
    constexpr int rounds = 20;
    Clock::time_point start;
    agreeToLicence([&start] { start = Clock::now(); });
    arrived(start, "foundHostsController");
    pick("customInstallItem");
    for (int round = 0; round < rounds; ++round) {
      press("customInstallButton", "customPathField");
      press("backwardButton", "foundHostsController");
      press("forwardButton", "rtfTextView");  // an application that is running holds it there
      press("backwardButton", "foundHostsController");
      press("backwardButton", "licenseTextView");
      press("forwardButton", "foundHostsController");
    }
    closeWindow();
  }

 private:
  static void pick(const char* item) {
    for (QWidget* const top : QApplication::topLevelWidgets()) {
      if (auto* const action = top->findChild<QAction*>(item)) action->trigger();
    }
  }

  void press(const char* name, const char* there) {
    QAbstractButton& pressed = button(name);
    const auto start = Clock::now();
    pressed.click();
    arrived(start, there);
  }

  void arrived(Clock::time_point start, const char* there) {
    const auto end = endOfPainting(painting_, start);
    if (shownWidget<QWidget>(there) == nullptr || end == start) giveUp(there);
    report("page", milliseconds(end - start));
  }

  const Painting& painting_;
};

/// Installs, and when it is to be watched, tells how long the window was left alone at most.
void install(Painting& painting, bool isWatched) {
  agreeToLicence();
  endOfPainting(painting, Clock::now());
  Clock::duration longestTurn{};
  QTimer beat;
  beat.setTimerType(Qt::PreciseTimer);
  const auto start = Clock::now();
  Clock::time_point turn = start;
  QObject::connect(&beat, &QTimer::timeout, [&] {
    const auto now = Clock::now();
    longestTurn = std::max(longestTurn, now - std::exchange(turn, now));
  });
  constexpr int everyMilliseconds = 2;
  if (isWatched) beat.start(everyMilliseconds);
  painting.startMeasuringGaps();
  button("forwardButton").click();
  const auto done = Clock::now();
  const auto longestGap = painting.longestGap();
  beat.stop();
  longestTurn = std::max(longestTurn, done - turn);
  waitForPage("registerView");
  report("install", milliseconds(endOfPainting(painting, done) - start));
  if (isWatched) {
    report("longest-turn", milliseconds(longestTurn));
    report("longest-gap", milliseconds(longestGap));
  }
  button("forwardButton").click();
}

}  // namespace

void startDriving() {
  static Painting painting;
  const char* const wanted = std::getenv("BENCH_MODE");
  const std::string_view mode = wanted == nullptr ? "" : wanted;
  painting.onFirst = [mode] {
    report("first-paint", milliseconds(painting.last().time_since_epoch()));
    QTimer::singleShot(0, qApp, [mode] {
      if (mode == "walk") {
        Walk(painting).run();
      } else if (mode == "install" || mode == "watched-install") {
        install(painting, mode == "watched-install");
      } else {
        closeWindow();
      }
    });
  };
}
