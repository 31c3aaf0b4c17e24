#pragma once

namespace virlo::test
{

/// While it lives, name look-ups of "slow.invalid" wait for its end and then fail; all others are the
/// system's. The program's `getaddrinfo` replaces the C library's.
class SlowResolver
{
public:
    SlowResolver();
    ~SlowResolver();
    SlowResolver(const SlowResolver&) = delete;
    SlowResolver& operator=(const SlowResolver&) = delete;

    [[nodiscard]] bool wasAsked() const;
};

} // namespace virlo::test
