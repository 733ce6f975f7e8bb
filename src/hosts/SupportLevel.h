// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

#include "platform/Processor.h"

/// The highest instruction-set level that can be used: 8 AVX-512, 7 AVX2, 6 AVX, 5 SSE4.2, 4 SSE4.1, 3 SSE3, 2 SSE2,
/// 1 SSE, 0 none of them.
[[nodiscard]] std::int32_t SupportLevel(const Processor& processor);
