#include "engine/copy_queue.h"

#include "engine/locked_entries.h"

namespace coffrelune {

CopyQueue::CopyQueue(RunState& run, CopyErrors& errors, Progress& progress, FileCopier& copier)
    : run_(run), files_(run.files()), errors_(errors), progress_(progress), copier_(copier) {}

void CopyQueue::open(int line, const std::string& root) {
    line_ = line;
    root_ = root;
    const bool goesOn = run_.system.options.ContinueOnError != 0;
    batch_ = files_.startBatch(root, goesOn ? AfterFailure::goOn : AfterFailure::stop, *this);
}

bool CopyQueue::add(const Wish& wish) {
    const std::string source = wish.sourceDirectory + wish.entry.name;
    const std::string target = wish.targetDirectory + wish.entry.name;
    std::uint64_t ticket = 0;
    ++added_;
    Status copied = copyOnce(wish, source, target, ticket);
    if (!copied.ok() && copied.code() != error_number::requestAborted) {
        copier_.setAttributes(target, attribute::normal);
        copied = copyOnce(wish, source, target, ticket);
    }
    if (copied.code() == error_number::requestAborted) return false;
    // A file that failed counts too: the percentage measures how far the run has come.
    addBytes(run_.statistics.bytesDone, wish.entry.size);
    if (copied.ok()) {
        if (directory_ == nullptr || *directory_ != wish.sourceDirectory) {
            directory_ = std::make_shared<const std::string>(wish.sourceDirectory);
        }
        waiting_.push_back({ticket, directory_, wish.entry.name, wish.entry.size, wish.found, {}});
    } else {
        if (copied.code() == error_number::accessDenied) explain(target, wish.targetDirectory);
        errors_.failed(copied.code(), source, wish.sourceDirectory);
    }
    return true;
}

// A locked directory is told once for all that cannot be copied into it.
void CopyQueue::explain(const std::string& target, const std::string& directory) {
    if (explained_.contains(directory)) return;
    const std::string lock = lockOn(files_, target);
    if (lock.empty()) return;
    if (lock.find(target) == std::string::npos) explained_.insert(directory);
    run_.display.AjouteECTxt(lock);
}

Status CopyQueue::copyOnce(const Wish& wish, const std::string& source, const std::string& target,
                           std::uint64_t& ticket) {
    const CopyOptions& options = run_.system.options;
    CopyRequest request{wish.source, wish.target, wish.entry, source, target};
    request.isNew = !wish.found;
    request.writable = wish.entry.isReadOnly() && options.DelReadOnly != 0;
    request.allTimes = options.SynchroDate != 0;
    const bool withProgress = run_.system.OsLevel >= 1 && options.AltCopie == 0;
    request.observer = withProgress ? &progress_ : nullptr;
    return batch_->add(request, ticket);
}

void CopyQueue::committed(std::uint64_t, const Status& status) {
    // In the order in which they were added, one call each.
    const Waiting copy = std::move(waiting_.front());
    const std::string& directory = *copy.directory;
    waiting_.pop_front();
    if (status.ok()) {
        LineTally& tally = run_.tally(line_);
        ++tally.files;
        tally.bytes += copy.size;
        run_.record({copy.replaces ? FileOutcome::replaced : FileOutcome::copied, line_,
                     directory + copy.name, copy.size});
    } else if (status.code() == error_number::requestAborted) {
        run_.control.interruptionRequested = true;
    } else {
        errors_.failed(status.code(), directory + copy.name, directory);
    }
    // A volume that refuses keeps its own rights.
    for (const auto& [source, target] : copy.matches) (void)files_.matchDirectory(source, target);
}

void CopyQueue::matchDirectory(const std::string& source, const std::string& target) {
    if (waiting_.empty()) {
        (void)files_.matchDirectory(source, target);  // as above
    } else {
        waiting_.back().matches.emplace_back(source, target);
    }
}

void CopyQueue::settle() {
    if (batch_ == nullptr) return;
    const Status finished = batch_->finish();
    if (!finished.ok()) errors_.failed(finished.code(), root_, root_);
}

KeptTimes CopyQueue::close() {
    settle();
    const KeptTimes kept = batch_ == nullptr ? KeptTimes::exactly : batch_->keptTimes();
    batch_.reset();
    return kept;
}

}  // namespace coffrelune
