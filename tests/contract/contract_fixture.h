#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "contract/contract_system.h"

namespace coffrelune {

/// An odd count of 100 ns units on 2023-07-05, so that a rounding anywhere shows.
inline constexpr std::uint64_t oldTime = 133330464001234567;
inline constexpr std::uint64_t newTime = oldTime + 36'000'000'000 + 1;

/// Base of the suites: a system, and an empty working directory on its first drive.
class Contract : public testing::TestWithParam<ContractParam> {
  protected:
    void SetUp() override;

    FileService& files() { return system_->files(); }
    ContractSystem& system() { return *system_; }

    /// A path in the working directory, which itself is `at("")` without its backslash.
    std::string at(const std::string& name) const { return directory_ + "\\" + name; }
    const std::string& directory() const { return directory_; }

    /// A file in the working directory, made by somebody else.
    std::string make(const std::string& name, const std::string& content,
                     std::uint64_t lastWrite = oldTime);

    std::uint32_t copy(const std::string& from, const std::string& to,
                       LinkRule links = LinkRule::refuse, CopyObserver* observer = nullptr);
    /// A file's bytes, compared without printing them: some files here are large.
    testing::AssertionResult holds(const std::string& path, const std::string& expected);
    /// What a look-up gives, the link itself for a link; an empty name and a failure when nothing.
    FileEntry entry(const std::string& path);
    bool exists(const std::string& path);
    FileId identity(const std::string& path);
    /// Names that a listing gives, sorted, without "." and "..".
    std::vector<std::string> listed(const std::string& path, Wanted wanted = Wanted::everything);
    std::unique_ptr<Directory> open(const std::string& path, LinkRule links = LinkRule::refuse);
    std::uint32_t openCode(const std::string& path, LinkRule links = LinkRule::refuse);

  private:
    std::unique_ptr<ContractSystem> system_;
    std::string directory_;
};

/// The attribute word with what every system keeps: Windows marks new files for archiving.
std::uint32_t commonAttributes(const FileEntry& entry);

/// Text that repeats at no convenient distance, with zero bytes in it.
std::string patternOf(std::size_t size);

/// The system's name, in a test's name and in its messages.
void PrintTo(const ContractParam& param, std::ostream* out);
std::string contractName(const testing::TestParamInfo<ContractParam>& info);

}  // namespace coffrelune
