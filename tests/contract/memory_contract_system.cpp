#include <algorithm>

#include "contract/contract_system.h"
#include "platform/memory/memory_platform.h"

namespace coffrelune {
namespace {

class MemoryContractSystem final : public ContractSystem {
  public:
    MemoryContractSystem() {
        disk().volume("E:\\");
        disk().volume("D:\\").capacity = capacity();
        disk().volume("Q:\\").present = false;
    }

    FileService& files() override { return platform_.files(); }
    DriveService& drives() override { return platform_.drives(); }
    std::string drive() override { return "D:\\"; }
    std::string secondDrive() override { return "E:\\"; }
    std::string absentDrive() override { return "Q:\\"; }
    std::string otherSpelling(const std::string& path) override { return "d" + path.substr(1); }

    void makeDirectory(const std::string& path) override { disk().directory(path); }
    void makeFile(const std::string& path, const std::string& content,
                  std::uint64_t lastWrite) override {
        disk().file(path, content, lastWrite);
    }
    void makeLink(const std::string& path, const std::string& target) override {
        disk().link(path, target);
    }
    void makeSpecial(const std::string&) override {}
    void makeUnreadable(const std::string& path) override { disk().setUnreadable(path); }
    bool rename(const std::string& from, const std::string& to) override {
        disk().move(from, to);
        return true;
    }
    bool cutShort(const std::string& path, std::uint64_t size) override {
        disk().find(path)->content.resize(size);
        return true;
    }
    std::uint32_t claimElsewhere(const std::string& path, TreeUse use) override {
        MemoryFiles others(disk(), platform_.clock());
        std::unique_ptr<HeldTree> held;
        const Status status = others.hold(path, held);
        return status.ok() ? held->claim(use).code() : status.code();
    }
    std::uint32_t clearLeftoversElsewhere(const std::string& directory) override {
        return MemoryFiles(disk(), platform_.clock()).removeLeftovers(directory).code();
    }
    void killCopyInto(const std::string& directory) override { disk().leftover(directory); }

    std::optional<std::string> content(const std::string& path) override {
        return disk().content(path);
    }
    std::vector<std::string> names(const std::string& directory) override {
        std::vector<std::string> names;
        for (const auto& child : disk().find(directory)->children()) names.push_back(child->name());
        std::sort(names.begin(), names.end());
        return names;
    }
    std::uint64_t capacity() override { return std::uint64_t{64} << 20; }

  private:
    MemoryDisk& disk() { return platform_.disk(); }

    MemoryPlatform platform_;
};

}  // namespace

ContractParam memoryContract() {
    return {"Memory",
            [](std::string&) { return std::make_unique<MemoryContractSystem>(); },
            {Capability::unreadable, Capability::small, Capability::links, Capability::treeLinks,
             Capability::rights, Capability::deep}};
}

}  // namespace coffrelune
