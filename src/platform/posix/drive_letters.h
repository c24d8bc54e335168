#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace coffrelune {

/// Which volume has which drive letter, remembered in a file from run to run:
///
///     [Lecteurs]
///     D=uuid:1234-ABCD
///     E=path:/mnt/x
///
/// A letter never changes its volume. While the file is damaged the letters that it still tells
/// hold, no other is given (it might have been another volume's) and the file is left alone.
class DriveLetters {
  public:
    /// `file`: native path; need not exist.
    explicit DriveLetters(std::string file) : file_(std::move(file)) {}

    /// Letters (D to Z) by identity; an identity that gets none is left out. A first sight is
    /// written to the file at once; when that fails the letter holds as long as this object.
    std::map<std::string, char> assign(const std::vector<std::string>& identities);

    /// Every letter with the identity of its volume, present or not.
    const std::map<char, std::string>& remembered() const { return volumes_; }

  private:
    using Volumes = std::map<char, std::string>;  // by letter; "" for one whose volume is in doubt

    void load();
    static bool parse(const std::string& bytes, Volumes& volumes);
    char freeLetter() const;
    std::string text() const;  // what the file is to hold

    std::string file_;
    Volumes volumes_;
    bool damaged_ = false;  // the file cannot be trusted or cannot be read
};

}  // namespace coffrelune
