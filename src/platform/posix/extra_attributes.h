#pragma once

#include <sys/stat.h>

#include <map>
#include <string>
#include <vector>

namespace coffrelune {

/// What a new file has got beside its content, and may have to lose.
struct ExtraTarget {
    int fd;
    dev_t device;
    mode_t mode;            // that it has
    bool inherits = false;  // an access list of its directory
};

/// Which volumes know the attributes that users give (user.*) or access lists (ACL), each asked
/// once. The others are asked for nothing more: some programs that serve a volume do not survive a
/// question that they do not know.
class AttributeVolumes {
  public:
    /// `fd`: something open on the volume `device`, O_PATH will do.
    bool know(int fd, dev_t device);

  private:
    std::map<dev_t, bool> known_;
};

/// Copies those attributes and access lists, where both volumes know them. What a volume refuses,
/// in whatever words, is left out: the content is worth keeping without.
class ExtraAttributes {
  public:
    /// From one open file to another. One call where the original has none. 0 or an errno value.
    int copy(int source, dev_t sourceDevice, const ExtraTarget& target);

  private:
    int give(int source, const char* name, const ExtraTarget& target);

    AttributeVolumes volumes_;
    std::vector<char> names_;
    std::string value_;
};

/// Takes the access list away that a new file has got from its directory. 0 or an errno value.
int dropInherited(int fd);

/// True when what is made in an open directory gets an access list from it.
bool handsDownAccessList(int directory);

/// Gives an open directory (O_PATH will do) the same of another, and takes access lists away that
/// the other has not. Both volumes know them. 0 or an errno value.
int matchExtras(int source, int target);

}  // namespace coffrelune
