#include "contract/contract_fixture.h"

#include <algorithm>

namespace coffrelune {

void Contract::SetUp() {
    std::string reason;
    system_ = GetParam().make(reason);
    if (system_ == nullptr) GTEST_SKIP() << reason;
    directory_ = system_->drive() + "travail";
    system_->makeDirectory(directory_);
}

std::string Contract::make(const std::string& name, const std::string& content,
                           std::uint64_t lastWrite) {
    system_->makeFile(at(name), content, lastWrite);
    return at(name);
}

std::uint32_t Contract::copy(const std::string& from, const std::string& to, LinkRule links,
                             CopyObserver* observer) {
    return files().copyFile(from, to, links, observer).code();
}

testing::AssertionResult Contract::holds(const std::string& path, const std::string& expected) {
    const std::optional<std::string> found = system_->content(path);
    if (found == expected) return testing::AssertionSuccess();
    if (!found) return testing::AssertionFailure() << path << " is no file";
    const auto wrong =
        std::mismatch(found->begin(), found->end(), expected.begin(), expected.end()).first;
    return testing::AssertionFailure()
           << path << " holds " << found->size() << " bytes, expected are " << expected.size()
           << "; the first " << (wrong - found->begin()) << " are right";
}

FileEntry Contract::entry(const std::string& path) {
    FileEntry found;
    const Status status = files().lookUp(path, LinkRule::refuse, found);
    EXPECT_EQ(status.code(), 0U) << path;
    return found;
}

bool Contract::exists(const std::string& path) {
    FileEntry ignored;
    return files().lookUp(path, LinkRule::refuse, ignored).ok();
}

FileId Contract::identity(const std::string& path) {
    FileId id;
    EXPECT_EQ(files().identify(path, id).code(), 0U) << path;
    return id;
}

std::vector<std::string> Contract::listed(const std::string& path, Wanted wanted) {
    std::unique_ptr<Directory> opened;
    EXPECT_EQ(files().openDirectory(path, LinkRule::refuse, wanted, opened).code(), 0U) << path;
    std::vector<std::string> names;
    FileEntry found;
    while (opened && opened->next(found)) {
        if (found.name != "." && found.name != "..") names.push_back(found.name);
    }
    if (opened) {
        EXPECT_TRUE(opened->status().ok()) << path;
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::unique_ptr<Directory> Contract::open(const std::string& path, LinkRule links) {
    std::unique_ptr<Directory> opened;
    EXPECT_EQ(files().openDirectory(path, links, Wanted::everything, opened).code(), 0U) << path;
    return opened;
}

std::uint32_t Contract::openCode(const std::string& path, LinkRule links) {
    std::unique_ptr<Directory> opened;
    return files().openDirectory(path, links, Wanted::everything, opened).code();
}

std::uint32_t commonAttributes(const FileEntry& entry) {
    constexpr std::uint32_t common =
        attribute::readOnly | attribute::hidden | attribute::directory | attribute::link;
    const std::uint32_t kept = entry.attributes & common;
    return kept == 0 ? attribute::normal : kept;
}

std::string patternOf(std::size_t size) {
    std::string text(size, '\0');
    std::uint32_t state = 12345;
    for (char& c : text) {
        state = state * 1664525U + 1013904223U;
        c = static_cast<char>(state >> 24);
    }
    return text;
}

void PrintTo(const ContractParam& param, std::ostream* out) {
    *out << param.name;
}

std::string contractName(const testing::TestParamInfo<ContractParam>& info) {
    return info.param.name;
}

std::vector<ContractParam> contractSystems(Capability capability) {
    std::vector<ContractParam> all = nativeContracts();
    all.insert(all.begin(), memoryContract());
    std::vector<ContractParam> chosen;
    for (const ContractParam& param : all) {
        const auto& has = param.capabilities;
        if (capability == Capability::none || std::count(has.begin(), has.end(), capability) > 0) {
            chosen.push_back(param);
        }
    }
    return chosen;
}

}  // namespace coffrelune
