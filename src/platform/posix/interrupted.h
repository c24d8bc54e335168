#pragma once

#include <cerrno>

namespace coffrelune {

/// Makes a system call again as long as it is interrupted (EINTR), but not for ever: a program that
/// serves a volume may answer so each time, and the last answer stands then. `call` returns a
/// negative number when it has failed.
template <typename Call>
auto uninterrupted(Call call) {
    constexpr int most = 100;
    auto result = call();
    for (int times = 1; times < most && result < 0 && errno == EINTR; ++times) result = call();
    return result;
}

}  // namespace coffrelune
