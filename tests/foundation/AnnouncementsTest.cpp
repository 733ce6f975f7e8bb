#include <gtest/gtest.h>

#include <string>

#include "foundation/KeyValueObserving.h"
#include "foundation/NotificationCenter.h"

namespace {

TEST(KeyValueObserving, NestsAndStandsChangesOfItsObservers) {
  KeyValueObserving object;
  std::string told;
  KeyValueObserving::Observation second;
  const auto first = object.observe([&](std::string_view key, KeyValueObserving::Moment moment) {
    told += (moment == KeyValueObserving::Moment::willChange ? " will-" : " did-") + std::string(key);
    if (told == " will-outer") {
      object.willChangeValueForKey("inner");
      object.didChangeValueForKey("inner");
      second.reset();
    }
  });
  second = object.observe([&](std::string_view, auto) { told += "!"; });
  object.willChangeValueForKey("outer");
  object.didChangeValueForKey("outer");
  EXPECT_EQ(told, " will-outer will-inner! did-inner! did-outer");
}

TEST(NotificationCenter, DeliversByNameAndObject) {
  NotificationCenter center;
  const int one = 1;
  const int two = 2;
  std::string told;
  NotificationCenter::Observation any = center.addObserver("end", nullptr, [&](const Notification& notification) {
    told += "any:" + notification.userInfo.at("who").text() + " ";
  });
  const auto ofOne = center.addObserver("end", &one, [&](const Notification&) {
    told += "one ";
    any.reset();
  });
  center.post({"end", &one, {{"who", "first"}}});
  center.post({"end", &two, {{"who", "second"}}});
  center.post({"start", &one, {}});
  EXPECT_EQ(told, "any:first one ");
}

}  // namespace
