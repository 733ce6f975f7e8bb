// SPDX-License-Identifier: Apache-2.0

// Stands in for an application: runs until it is asked to end.

#include <unistd.h>

int main() {
  for (;;) ::pause();
}
