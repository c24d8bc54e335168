#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>

#include "platform/copy_batch.h"
#include "platform/win32/beside.h"
#include "platform/win32/file_copier.h"
#include "platform/win32/win32_places.h"

namespace coffrelune {

/// What waits at most before the disk is asked to make it safe.
struct GroupLimits {
    std::size_t files = 1000;
    std::uint64_t bytes = std::uint64_t{256} << 20;
    std::uint64_t milliseconds = 1000;
};

/// A batch of a Windows system. The temporaries stay open until they have their names, which keeps
/// others from clearing them, and spares opening them again. A group is flushed on another thread
/// while the next one is copied; it gets its names on this one, at the start of a call, so that
/// each ticket is known before it is told.
class Win32Batch final : public CopyBatch {
  public:
    /// All but the root outlive this.
    Win32Batch(Win32Places& places, Win32FileCopier& copier, std::string root,
               AfterFailure afterFailure, CopyEvents& events, const GroupLimits& limits = {})
        : places_(places),
          copier_(copier),
          root_(std::move(root)),
          afterFailure_(afterFailure),
          events_(events),
          limits_(limits) {}

    Status add(const CopyRequest& request, std::uint64_t& ticket) override;
    Status finish() override;
    KeptTimes keptTimes() const override { return stamps_.kept(); }

  private:
    struct Waiting {
        std::uint64_t ticket = 0;
        std::string path;  // as the caller spells it
        Win32Place place;
        WrittenCopy copy;
        VolumeFlush* volume = nullptr;  // whose flush makes it safe; null: its own does
        std::uint32_t error = 0;        // of that flush
    };
    using Group = std::deque<std::unique_ptr<Waiting>>;

    bool isDue() const;
    Status write(const CopyRequest& request, Waiting& one);
    void handOver();
    void nameFlushed();
    void commitAll();
    static void makeSafe(Group& group);
    void tellLostFlushes();
    Status giveName(Waiting& one);
    std::uint32_t takeName(Waiting& one);
    std::uint32_t flushNames();

    Win32Places& places_;
    Win32FileCopier& copier_;
    std::string root_;
    AfterFailure afterFailure_;
    CopyEvents& events_;
    GroupLimits limits_;
    Group waiting_;
    std::uint64_t waitingBytes_ = 0;
    std::uint64_t waitingSince_ = 0;                            // the first of them
    Group flushing_;                                            // handed over, without their names
    std::map<VolumeFlush*, std::shared_ptr<Win32Hold>> named_;  // names that are not safe yet
    std::uint32_t lateError_ = 0;                               // of a name outside every hold
    std::uint64_t last_ = 0;
    bool stopped_ = false;
    TimeStamps stamps_;
    Beside beside_;  // the last member: nothing else goes while it works
};

}  // namespace coffrelune
