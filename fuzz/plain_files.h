#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/file_service.h"

namespace coffrelune::fuzz {

/// The least disk that there is: files by their paths, read and written whole. Whatever else is
/// asked of it fails. It costs little to make one for each input, so nothing of one input is left
/// for the next.
class PlainFiles final : public FileService {
  public:
    Status lookUp(const std::string& path, LinkRule /*links*/, FileEntry& entry) override {
        const auto found = files_.find(path);
        if (found == files_.end()) return Status::failure(error_number::fileNotFound, path);
        entry = {};
        entry.attributes = attribute::normal;
        entry.size = found->second.bytes.size();
        entry.times.lastWrite = found->second.written;
        return {};
    }
    Status readWhole(const std::string& path, std::uint64_t limit, std::string& bytes) override {
        const auto found = files_.find(path);
        if (found == files_.end()) return Status::failure(error_number::fileNotFound, path);
        bytes = found->second.bytes;
        return bytes.size() <= limit ? Status() : Status::failure(error_number::fileTooLarge, path);
    }
    Status writeWhole(const std::string& path, const std::string& bytes,
                      Durability /*durability*/) override {
        files_[path] = {bytes, ++clock_};
        return {};
    }

    Status hold(const std::string& root, std::unique_ptr<HeldTree>& /*held*/) override {
        return refused(root);
    }
    Status openDirectory(const std::string& path, LinkRule /*links*/, Wanted /*wanted*/,
                         std::unique_ptr<Directory>& /*directory*/) override {
        return refused(path);
    }
    Status identify(const std::string& path, FileId& /*id*/) override { return refused(path); }
    std::string resolve(const std::string& path) override { return path; }
    Status createDirectory(const std::string& path, DirectoryAccess /*access*/) override {
        return refused(path);
    }
    Status matchDirectory(const std::string& /*source*/, const std::string& target) override {
        return refused(target);
    }
    Status removeDirectory(const std::string& path) override { return refused(path); }
    Status copyFile(const std::string& source, const std::string& /*destination*/,
                    LinkRule /*sourceLinks*/, CopyObserver* /*observer*/) override {
        return refused(source);
    }
    std::unique_ptr<CopyBatch> startBatch(const std::string& /*root*/,
                                          AfterFailure /*afterFailure*/,
                                          CopyEvents& /*events*/) override {
        return nullptr;
    }
    std::unique_ptr<WalkAhead> startWalk() override { return nullptr; }
    void abandonCopies() override {}
    Status setAttributes(const std::string& path, std::uint32_t /*attributes*/) override {
        return refused(path);
    }
    Status setTimes(const std::string& path, const FileTimes& /*times*/) override {
        return refused(path);
    }
    Status removeFile(const std::string& path) override { return refused(path); }
    Status removeLeftovers(const std::string& directory) override { return refused(directory); }
    Status ownFiles(const std::string& directory, std::vector<std::string>& /*names*/) override {
        return refused(directory);
    }

  private:
    struct File {
        std::string bytes;
        std::uint64_t written;
    };

    static Status refused(const std::string& path) {
        return Status::failure(error_number::notSupported, path);
    }

    std::map<std::string, File> files_;
    std::uint64_t clock_ = 0;
};

}  // namespace coffrelune::fuzz
