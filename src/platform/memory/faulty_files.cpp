#include "platform/memory/faulty_files.h"

#include <deque>

namespace coffrelune {
namespace {

std::string joined(const std::string& directory, const std::string& name) {
    const bool separated = !directory.empty() && directory.back() == '\\';
    return directory + (separated ? "" : "\\") + name;
}

}  // namespace

class FaultyFiles::FaultyDirectory final : public Directory {
  public:
    FaultyDirectory(FaultyFiles& files, std::string path, std::unique_ptr<Directory> inner)
        : files_(files), path_(std::move(path)), inner_(std::move(inner)) {}

    bool next(FileEntry& entry) override {
        if (!failure_.ok()) return false;
        failure_ = files_.enter("next", path_);
        return failure_.ok() && inner_->next(entry);
    }

    const Status& status() const override {
        if (!failure_.ok()) return failure_;
        return lookFailure_.ok() ? inner_->status() : lookFailure_;
    }

    std::vector<FileEntry> takeDirectories() override {
        return failure_.ok() ? inner_->takeDirectories() : std::vector<FileEntry>();
    }

    Directory& inner() { return *inner_; }

    bool lookUp(const std::string& name, FileEntry& entry) override {
        const Status failure = files_.enter("find", joined(path_, name));
        if (failure.ok()) return inner_->lookUp(name, entry);
        if (!failure.saysAbsent()) lookFailure_ = failure;
        return false;
    }

  private:
    FaultyFiles& files_;
    std::string path_;
    std::unique_ptr<Directory> inner_;
    Status failure_;      // the listing broke off
    Status lookFailure_;  // "no such entry" is not to be trusted
};

class FaultyFiles::FaultyTree final : public HeldTree {
  public:
    FaultyTree(FaultyFiles& files, std::string root, std::unique_ptr<HeldTree> inner)
        : files_(files), root_(std::move(root)), inner_(std::move(inner)) {}

    const TreePlace& place() const override { return inner_->place(); }

    Status claim(TreeUse use) override {
        Status status = files_.enter("claim", root_);
        return status.ok() ? inner_->claim(use) : status;
    }

    Status flush() override {
        Status status = files_.enter("flush", root_);
        return status.ok() ? inner_->flush() : status;
    }

    Status measureTimes(TimeGrid& grid) override {
        Status status = files_.enter("measureTimes", root_);
        return status.ok() ? inner_->measureTimes(grid) : status;
    }

  private:
    FaultyFiles& files_;
    std::string root_;
    std::unique_ptr<HeldTree> inner_;
};

// A file whose commit is to fail never reaches the inner batch, so that what bears its name is
// untouched, as after a true failure.
class FaultyFiles::FaultyBatch final : public CopyBatch, private CopyEvents {
  public:
    FaultyBatch(FaultyFiles& files, std::string root, AfterFailure afterFailure, CopyEvents& events)
        : files_(files),
          root_(std::move(root)),
          afterFailure_(afterFailure),
          events_(events),
          inner_(files.inner_.startBatch(root_, afterFailure, *this)) {}

    Status add(const CopyRequest& request, std::uint64_t& ticket) override {
        Status status = files_.enter("copyFile", request.sourcePath, request.targetPath);
        if (!status.ok()) return status;
        Status commit = files_.enter("commit", request.targetPath);
        if (commit.ok() && stopped_) {
            commit = Status::failure(error_number::requestAborted, request.targetPath);
        }
        if (commit.ok()) status = forward(request);
        if (!status.ok()) return status;
        ticket = ++last_;
        waiting_.push_back({ticket, commit});
        stopped_ = stopped_ || (!commit.ok() && afterFailure_ == AfterFailure::stop);
        return status;
    }

    Status finish() override {
        const Status status = inner_->finish();
        tellFailures();
        stopped_ = false;
        const Status chosen = files_.enter("finish", root_);
        return chosen.ok() ? status : chosen;
    }

    KeptTimes keptTimes() const override { return inner_->keptTimes(); }

  private:
    struct Waiting {
        std::uint64_t ticket;
        Status commit;  // success: the inner batch tells
    };

    Status forward(const CopyRequest& request) {
        const CopyRequest inner{inside(request.source), inside(request.target), request.entry,
                                request.sourcePath,     request.targetPath,     request.isNew,
                                request.writable,       request.allTimes,       request.observer};
        std::uint64_t ticket = 0;
        return inner_->add(inner, ticket);
    }

    // Every open directory of this service is one of its own.
    static Directory& inside(Directory& directory) {
        return static_cast<FaultyDirectory&>(directory).inner();
    }

    void committed(std::uint64_t, const Status& status) override {
        tellFailures();
        const std::uint64_t ticket = waiting_.front().ticket;
        waiting_.pop_front();
        events_.committed(ticket, status);
    }

    void waiting() override { events_.waiting(); }

    /// Those that come before the next file of the inner batch.
    void tellFailures() {
        while (!waiting_.empty() && !waiting_.front().commit.ok()) {
            const Waiting first = waiting_.front();
            waiting_.pop_front();
            events_.committed(first.ticket, first.commit);
        }
    }

    FaultyFiles& files_;
    std::string root_;
    AfterFailure afterFailure_;
    CopyEvents& events_;
    std::deque<Waiting> waiting_;  // in the order of their tickets
    std::uint64_t last_ = 0;
    bool stopped_ = false;
    std::unique_ptr<CopyBatch> inner_;
};

void FaultyFiles::failCall(std::uint64_t number, std::uint32_t code) {
    rules_.push_back({number, {}, {}, code, 1});
}

void FaultyFiles::fail(const std::string& name, const std::string& path, std::uint32_t code,
                       int times) {
    rules_.push_back({0, name, path, code, times});
}

void FaultyFiles::restart() {
    rules_.clear();
    calls_.clear();
    failureCount_ = 0;
}

Status FaultyFiles::enter(const char* name, const std::string& path, const std::string& second) {
    calls_.push_back(std::string(name) + ' ' + path + (second.empty() ? "" : ' ' + second));
    for (Rule& rule : rules_) {
        if (rule.times == 0) continue;
        const bool named = (rule.name.empty() || rule.name == name) &&
                           (rule.path.empty() || rule.path == path || rule.path == second);
        if (rule.number == 0 ? !named : rule.number != calls_.size()) continue;
        if (rule.times > 0) --rule.times;
        ++failureCount_;
        return Status::failure(rule.code, path);
    }
    return {};
}

Status FaultyFiles::hold(const std::string& root, std::unique_ptr<HeldTree>& held) {
    Status status = enter("hold", root);
    if (!status.ok()) return status;
    std::unique_ptr<HeldTree> inner;
    status = inner_.hold(root, inner);
    if (status.ok()) held = std::make_unique<FaultyTree>(*this, root, std::move(inner));
    return status;
}

Status FaultyFiles::openDirectory(const std::string& path, LinkRule links, Wanted wanted,
                                  std::unique_ptr<Directory>& directory) {
    Status status = enter("openDirectory", path);
    if (!status.ok()) return status;
    std::unique_ptr<Directory> inner;
    status = inner_.openDirectory(path, links, wanted, inner);
    if (status.ok()) directory = std::make_unique<FaultyDirectory>(*this, path, std::move(inner));
    return status;
}

Status FaultyFiles::lookUp(const std::string& path, LinkRule links, FileEntry& entry) {
    Status status = enter("lookUp", path);
    return status.ok() ? inner_.lookUp(path, links, entry) : status;
}

Status FaultyFiles::identify(const std::string& path, FileId& id) {
    Status status = enter("identify", path);
    return status.ok() ? inner_.identify(path, id) : status;
}

Status FaultyFiles::createDirectory(const std::string& path, DirectoryAccess access) {
    Status status = enter("createDirectory", path);
    return status.ok() ? inner_.createDirectory(path, access) : status;
}

Status FaultyFiles::matchDirectory(const std::string& source, const std::string& target) {
    Status status = enter("matchDirectory", source, target);
    return status.ok() ? inner_.matchDirectory(source, target) : status;
}

Status FaultyFiles::removeDirectory(const std::string& path) {
    Status status = enter("removeDirectory", path);
    return status.ok() ? inner_.removeDirectory(path) : status;
}

Status FaultyFiles::copyFile(const std::string& source, const std::string& destination,
                             LinkRule sourceLinks, CopyObserver* observer) {
    Status status = enter("copyFile", source, destination);
    return status.ok() ? inner_.copyFile(source, destination, sourceLinks, observer) : status;
}

std::unique_ptr<CopyBatch> FaultyFiles::startBatch(const std::string& root,
                                                   AfterFailure afterFailure, CopyEvents& events) {
    return std::make_unique<FaultyBatch>(*this, root, afterFailure, events);
}

Status FaultyFiles::setAttributes(const std::string& path, std::uint32_t attributes) {
    Status status = enter("setAttributes", path);
    return status.ok() ? inner_.setAttributes(path, attributes) : status;
}

Status FaultyFiles::setTimes(const std::string& path, const FileTimes& times) {
    Status status = enter("setTimes", path);
    return status.ok() ? inner_.setTimes(path, times) : status;
}

Status FaultyFiles::removeFile(const std::string& path) {
    Status status = enter("removeFile", path);
    return status.ok() ? inner_.removeFile(path) : status;
}

Status FaultyFiles::removeLeftovers(const std::string& directory) {
    Status status = enter("removeLeftovers", directory);
    return status.ok() ? inner_.removeLeftovers(directory) : status;
}

Status FaultyFiles::ownFiles(const std::string& directory, std::vector<std::string>& names) {
    Status status = enter("ownFiles", directory);
    return status.ok() ? inner_.ownFiles(directory, names) : status;
}

Status FaultyFiles::readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) {
    Status status = enter("readWhole", path);
    return status.ok() ? inner_.readWhole(path, limit, bytes) : status;
}

Status FaultyFiles::writeWhole(const std::string& path, const std::string& bytes,
                               Durability durability) {
    Status status = enter("writeWhole", path);
    return status.ok() ? inner_.writeWhole(path, bytes, durability) : status;
}

}  // namespace coffrelune
