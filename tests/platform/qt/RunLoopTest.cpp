#include <unistd.h>

#include <QLabel>
#include <QPaintEvent>

#include "platform/qt/WindowTest.h"

namespace {

using namespace std::chrono_literals;
using Clock = RunLoop::Clock;

class RunLoopTest : public WindowTest {
 protected:
  RunLoopTest() { EXPECT_EQ(::pipe(pipe_), 0); }
  ~RunLoopTest() override {
    ::close(pipe_[0]);
    ::close(pipe_[1]);
  }
  DescriptorRunLoop& descriptors() { return dynamic_cast<DescriptorRunLoop&>(loop()); }
  void send() { EXPECT_EQ(::write(pipe_[1], "x", 1), 1); }
  void receive() {
    char byte = 0;
    EXPECT_EQ(::read(pipe_[0], &byte, 1), 1);
  }

  int pipe_[2] = {-1, -1};
};

TEST_F(RunLoopTest, CallsTheWatcherUntilItsWatchEnds) {
  int calls = 0;
  auto watch = descriptors().watchReadable(pipe_[0], [&] {
    ++calls;
    receive();
  });
  send();
  EXPECT_TRUE(loop().runBeforeDate(RunLoop::distantFuture));
  EXPECT_EQ(calls, 1);
  send();
  loop().runUntilDate(Clock::now());
  EXPECT_EQ(calls, 2);
  watch.reset();
  send();
  loop().runUntilDate(Clock::now() + 20ms);
  EXPECT_EQ(calls, 2);
}

TEST_F(RunLoopTest, HandlersMayRunTheLoopAndEndTheirOwnWatch) {
  std::string order;
  DescriptorRunLoop::Watch watch = descriptors().watchReadable(pipe_[0], [&] {
    receive();
    order += "in ";
    watch.reset();
    QTimer::singleShot(0, qApp, [&] { order += "timer "; });
    loop().runUntilDate(Clock::now() + 10ms);
    order += "out";
  });
  send();
  loop().runUntilDate(Clock::now() + 50ms);
  EXPECT_EQ(order, "in timer out");
}

}  // namespace
