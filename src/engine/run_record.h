#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace coffrelune {

/// What became of one file.
enum class FileOutcome {
    copied,    // nothing bore its name
    replaced,  // in the place of another file
    deleted,   // an excess file
    skipped,   // left alone, for a reason
    failed,    // an error, by its number
    differs,   // a comparison would copy it, or its contents are not the same
    verified,  // its contents have been read, and are the same
};

/// Of a file that somebody chose to keep.
inline constexpr std::string_view keptReason = "conservé";

struct FileRecord {
    FileOutcome outcome = FileOutcome::copied;
    int line = 0;  // index of the backup line
    /// The file that is read; the one of the written tree when it was deleted.
    std::string path;
    std::uint64_t size = 0;     // bytes; 0 with an error
    std::uint32_t number = 0;   // of an error
    std::string_view reason{};  // of one that was skipped or that differs, in French
};

/// Told of each file, once its fate is known, for whoever keeps an account of the run.
class RunRecord {
  public:
    virtual ~RunRecord() = default;
    virtual void add(const FileRecord& file) = 0;
};

}  // namespace coffrelune
