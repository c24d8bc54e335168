#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "platform/copy_batch.h"

namespace coffrelune {

/// Lets a test act once, while a file is read.
class AtFirstChunk final : public CopyObserver {
  public:
    explicit AtFirstChunk(std::function<void()> act) : act_(std::move(act)) {}

    void chunkFinished(std::uint64_t) override {
        if (act_) std::exchange(act_, nullptr)();
    }

  private:
    std::function<void()> act_;
};

}  // namespace coffrelune
