#pragma once

/// Selects the vector targets of Highway's kernels. Every kernel and every file that lists the
/// targets includes this before Highway's headers.
///
/// SVE and RVV vectors have no size at compile time, so they cannot be members of the kernels'
/// structures (GCC 12: "member variables cannot have SVE type"). Machines with SVE run the kernels
/// on NEON's 128-bit vectors; on RVV they run as scalar code.
///
/// Sanitizer and fuzzer builds disable more targets (cmake/QuorbelTargets.cmake).
#ifndef QUORBEL_DISABLED_VECTOR_TARGETS
#define QUORBEL_DISABLED_VECTOR_TARGETS 0
#endif
#define HWY_DISABLED_TARGETS                                                                       \
    (HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128 | HWY_RVV | QUORBEL_DISABLED_VECTOR_TARGETS)
