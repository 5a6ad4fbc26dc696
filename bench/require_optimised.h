// Included ahead of each benchmark: figures of an unoptimised build say nothing.
#pragma once

#ifndef __OPTIMIZE__
#error "Build the benchmarks optimised, with the preset bench"
#endif
