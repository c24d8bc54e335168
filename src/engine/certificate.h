#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What lies in the root of a copy and says what it is a copy of. It travels with the copy, so that
/// nothing depends on the settings of one computer. One file for each pair of original and copy.
struct Certificate {
    std::string original;             // resolved, in the core's form
    std::string volume;               // of the original; see TreePlace, like the next two
    std::string pathOnVolume;         // of the original
    std::string copy;                 // TreePlace::self of the copy's root
    ExclusionList exclusions;         // what the backup left out
    std::vector<std::string> mounts;  // mount points met below the original, relative to it
    /// The copy holds everything of the original that was not left out. False from before the first
    /// change of the copy until the backup has ended well and is safe on the disk.
    bool complete = false;
    TimeGrid times{};  // that the copy's volume holds, where rounding is accepted

    bool operator==(const Certificate&) const = default;
};

/// The file's bytes: a line for each fact, the last one "fin".
std::string certificateText(const Certificate& certificate);

/// Nothing for what is no whole certificate of a kind that this program knows.
std::optional<Certificate> readCertificate(const std::string& text);

/// Names the file of a pair: the same number for the same text in every run.
std::uint64_t placeNumber(const std::string& path);

/// What the program's own files in one directory say.
struct DirectoryMarks {
    struct Named {
        std::string name;  // of its file
        Certificate certificate;
    };
    std::vector<Named> certificates;
    std::vector<std::string> unreadable;    // names of certificates that say nothing
    std::vector<std::string> restoreMarks;  // names of the marks of unfinished restores
    Status failure;                         // of the disk, in reading one of them

    bool empty() const {
        return certificates.empty() && unreadable.empty() && restoreMarks.empty();
    }
};

/// Reads the own files of a directory. Fails when they cannot be listed.
Status readMarks(FileService& files, const std::string& directory, DirectoryMarks& marks);

/// The directories above a resolved path, nearest first, up to the root of its drive or share.
std::vector<std::string> ancestorsOf(const std::string& path);

}  // namespace coffrelune
