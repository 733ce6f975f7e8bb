#include "install/InstallProgress.h"

#include <algorithm>

void InstallProgress::start(std::uint64_t bytesCopiedBefore) {
  *this = {};
  before_ = bytesCopiedBefore;
}

void InstallProgress::plan(const std::string& source, std::uint64_t size) {
  constexpr std::uint64_t handingOver = 500'000;
  weights_[source] = size + handingOver;
  planAgain(source);
}

void InstallProgress::finish(const std::string& source) {
  const auto found = weights_.find(source);
  if (found != weights_.end()) finished_ += found->second;
}

double InstallProgress::fraction(std::uint64_t bytesCopied) {
  if (isOver_) return 1;
  const std::uint64_t done = std::max(finished_, bytesCopied - before_);
  if (planned_ > 0) {
    const double fraction = static_cast<double>(done) / static_cast<double>(planned_);
    shown_ = std::clamp(fraction, shown_, 1.0);
  }
  return shown_;
}
