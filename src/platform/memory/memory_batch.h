#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "platform/copy_batch.h"
#include "platform/memory/memory_copy.h"

namespace coffrelune {

class MemoryFiles;

/// A batch on the in-memory disk. Its files get their names when as many wait as the service was
/// told (MemoryFiles::setBatchSize), at the next call, and in finish().
class MemoryBatch final : public CopyBatch {
  public:
    /// Both outlive this.
    MemoryBatch(MemoryFiles& files, std::string root, AfterFailure afterFailure, CopyEvents& events)
        : files_(files), root_(std::move(root)), afterFailure_(afterFailure), events_(events) {}
    MemoryBatch(const MemoryBatch&) = delete;
    MemoryBatch& operator=(const MemoryBatch&) = delete;
    ~MemoryBatch() override;

    Status add(const CopyRequest& request, std::uint64_t& ticket) override;
    Status finish() override;
    KeptTimes keptTimes() const override { return kept_; }

  private:
    struct Waiting {
        std::uint64_t ticket;
        bool isNew;
        MemoryCopy copy;
    };

    Status write(const CopyRequest& request, MemoryCopy& copy);
    void commit();
    Status commitOne(const Waiting& one);
    Status checkName(const Waiting& one) const;

    MemoryFiles& files_;
    std::string root_;
    AfterFailure afterFailure_;
    CopyEvents& events_;
    std::vector<Waiting> waiting_;
    std::set<const MemoryVolume*> named_;  // where files have got their names since finish()
    std::uint64_t last_ = 0;
    KeptTimes kept_ = KeptTimes::exactly;
    bool stopped_ = false;
};

}  // namespace coffrelune
