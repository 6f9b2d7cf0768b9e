#pragma once

#if defined(__SSE__)
#include <xmmintrin.h>
#endif
#include <cstdint>

namespace quorbel {

/// Flushes denormal floats to zero on the calling thread, as operands and as results, during its
/// lifetime. Denormal arithmetic would slow a recursive filter a hundredfold once its tail falls
/// below 1e-38. Takes a few cycles, so a render callback may make one per call. [any]
class DenormalsFlushed {
  public:
    DenormalsFlushed() noexcept : saved_(read()) { write(saved_ | flags); }
    ~DenormalsFlushed() { write(saved_); }
    DenormalsFlushed(const DenormalsFlushed &) = delete;
    DenormalsFlushed &operator=(const DenormalsFlushed &) = delete;

  private:
#if defined(__SSE__)
    static constexpr std::uint64_t flags = 0x8040; // MXCSR: flush to zero, denormals are zero
    static std::uint64_t read() noexcept { return _mm_getcsr(); }
    static void write(std::uint64_t value) noexcept {
        _mm_setcsr(static_cast<std::uint32_t>(value));
    }
#elif defined(__aarch64__)
    static constexpr std::uint64_t flags = std::uint64_t{1} << 24; // FPCR: flush to zero
    static std::uint64_t read() noexcept {
        std::uint64_t value = 0;
        asm volatile("mrs %0, fpcr" : "=r"(value));
        return value;
    }
    static void write(std::uint64_t value) noexcept { asm volatile("msr fpcr, %0" : : "r"(value)); }
#else
    static constexpr std::uint64_t flags = 0;
    static std::uint64_t read() noexcept { return 0; }
    static void write(std::uint64_t) noexcept {}
#endif

    std::uint64_t saved_;
};

} // namespace quorbel
