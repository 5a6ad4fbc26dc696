// Small round trips on one processor: on several they measure how fast an idle one wakes.
#pragma once

#include <sched.h>

namespace bench {

// Keeps this process, and those it starts from now on, to the processor it runs on.
inline void UseOneProcessor() {
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(sched_getcpu(), &one);
  sched_setaffinity(0, sizeof one, &one);
}

}  // namespace bench
