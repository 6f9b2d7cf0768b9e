// Highway's shared library measures the resolution of its benchmarks' timer whenever it is loaded,
// before main: 3 ms of a start that takes 13, for a value that nothing here asks for. A function of
// the program takes the place of a library's of the same name, so the question is answered at once.
// Where the library does not ask, this is never called.

#include <hwy/nanobenchmark.h>

#include <cstdint>

namespace hwy::platform {

std::uint64_t TimerResolution() { return 1; }

} // namespace hwy::platform
