#include "platform/win32/beside.h"

#include <chrono>
#include <system_error>

namespace coffrelune {

void Beside::start(const std::function<void()>& work) {
    try {
        running_ = std::async(std::launch::async, work);
    } catch (const std::system_error&) {
        work();
    }
}

bool Beside::isDone() const {
    return !running_.valid() ||
           running_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

void Beside::wait(const std::function<void()>& meanwhile) {
    constexpr auto pause = std::chrono::milliseconds(200);
    while (running_.valid() && running_.wait_for(pause) != std::future_status::ready) meanwhile();
    running_ = {};
}

}  // namespace coffrelune
