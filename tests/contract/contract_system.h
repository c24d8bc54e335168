#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/file_service.h"
#include "platform/services.h"

namespace coffrelune {

/// One implementation of the file and drive services, fresh for one test, and the hand of somebody
/// else on the same disk: what it makes and reads does not pass through the services.
class ContractSystem {
  public:
    virtual ~ContractSystem() = default;

    virtual FileService& files() = 0;
    virtual DriveService& drives() = 0;

    /// Two drives that are there and hold nothing yet, and one that is not there ("D:\").
    virtual std::string drive() = 0;
    virtual std::string secondDrive() = 0;
    virtual std::string absentDrive() = 0;

    /// The same place as `path`, which lies on drive(), written otherwise.
    virtual std::string otherSpelling(const std::string& path) = 0;

    virtual void makeDirectory(const std::string& path) = 0;
    /// `lastWrite` in units of 100 ns since 1601. The directory exists.
    virtual void makeFile(const std::string& path, const std::string& content,
                          std::uint64_t lastWrite) = 0;
    /// `target` is one name, beside the link.
    virtual void makeLink(const std::string& path, const std::string& target) = 0;
    /// Something in the directory that is neither file, directory nor link. Capability::special.
    virtual void makeSpecial(const std::string& path) = 0;
    /// The file or directory may no longer be read. Capability::unreadable. The services are called
    /// without the privileges that would read it all the same from here on.
    virtual void makeUnreadable(const std::string& path) = 0;

    /// A directory gets another name. False when the system does not let it go.
    virtual bool rename(const std::string& from, const std::string& to) = 0;
    /// A file ends after `size` bytes from here on. False when the system does not let it be
    /// changed.
    virtual bool cutShort(const std::string& path, std::uint64_t size) = 0;

    /// What another process is told that takes hold of the directory, claims it and ends.
    virtual std::uint32_t claimElsewhere(const std::string& path, TreeUse use) = 0;

    /// What another process is told that clears the leftovers in the directory and ends.
    virtual std::uint32_t clearLeftoversElsewhere(const std::string& directory) = 0;

    /// What a copy leaves behind in `directory` whose process is killed half-way.
    virtual void killCopyInto(const std::string& directory) = 0;

    virtual std::optional<std::string> content(const std::string& path) = 0;
    /// Every name in a directory, leftovers too, sorted, without "." and "..".
    virtual std::vector<std::string> names(const std::string& directory) = 0;

    /// Bytes that drive() holds at most. Capability::small.
    virtual std::uint64_t capacity() = 0;
};

/// What not every implementation can show.
enum class Capability {
    none,
    special,     // things in a directory that are neither file, directory nor link
    unreadable,  // files and directories that may not be read
    small,       // a volume that can be filled
    links,       // every link is an entry of its own, also one to a directory or to nothing
    treeLinks,   // links to directories, which makeLink() can make
    rights,      // directories bear rights of their own
    deep,        // paths of more than 4096 bytes
};

struct ContractParam {
    std::string name;
    /// Null, with the reason, when this machine does not let the test have such a system.
    std::function<std::unique_ptr<ContractSystem>(std::string& reason)> make;
    std::vector<Capability> capabilities;
};

/// The implementations that have a capability.
std::vector<ContractParam> contractSystems(Capability capability = Capability::none);

// Each in a source of its own; the second is that of the system that the tests run on.
ContractParam memoryContract();
std::vector<ContractParam> nativeContracts();

}  // namespace coffrelune
