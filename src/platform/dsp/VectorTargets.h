#pragma once

/// The vector targets for which Highway compiles the kernels. Every kernel, and every file that
/// lists the targets, includes this before any of Highway's headers.
///
/// The compiler does not know the size of SVE's and RVV's vectors, so they cannot be members of the
/// kernels' structures (GCC 12: "member variables cannot have SVE type"). Machines with SVE run the
/// kernels on NEON's 128-bit vectors; on RVV they run as scalar code.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
