// SPDX-License-Identifier: Apache-2.0

#include <unistd.h>

#include "platform/window/qt/WindowTest.h"

namespace {

using namespace std::chrono_literals;
using RunLoopTest = WindowTest;

TEST_F(RunLoopTest, HandlersMayRunTheLoopAndEndTheirOwnWatch) {
  const auto soon = [] { return RunLoop::Clock::now() + 20ms; };
  int ends[2] = {-1, -1};
  ASSERT_EQ(::pipe(ends), 0);
  ASSERT_EQ(::write(ends[1], "x", 1), 1);
  std::string order;
  DescriptorRunLoop::Watch watch = dynamic_cast<DescriptorRunLoop&>(loop()).watchReadable(ends[0], [&] {
    order += "in ";
    watch.reset();  // there is still something to read, which nobody is told any more
    QTimer::singleShot(0, qApp, [&] { order += "timer "; });
    loop().runUntilDate(soon());
    order += "out";
  });
  EXPECT_TRUE(loop().runBeforeDate(RunLoop::distantFuture));
  loop().runUntilDate(soon());
  EXPECT_EQ(order, "in timer out");
  for (const int end : ends) ::close(end);
}

}  // namespace
