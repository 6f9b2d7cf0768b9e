#pragma once

/// Which vector targets Highway compiles the kernels for. To be included before any of Highway's
/// own headers, by every kernel and by what lists their targets.
///
/// Vectors of SVE and RVV have a size that the compiler does not know, so they cannot be members of
/// the kernels' structures (GCC 12: "member variables cannot have SVE type"). Machines with SVE run
/// the kernels on NEON's 128-bit vectors instead; on RVV they run as scalar code.
#define HWY_DISABLED_TARGETS (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV)
