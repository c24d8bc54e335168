#pragma once

#include <string>
#include <utility>
#include <vector>

namespace coffrelune::fuzz {

/// What a settings file means, read in the plainest way there is: the whole text is decoded, cut at
/// its line ends, and every key is noted with its value. No position in a file is kept, so an edit
/// is an edit of this list.
class PlainSettings {
  public:
    struct Section {
        std::string name;
        std::vector<std::pair<std::string, std::string>> values;  // duplicates included

        bool operator==(const Section&) const = default;
    };

    /// The bytes of a file that is text.
    static PlainSettings read(const std::string& bytes);

    std::string value(const std::string& section, const std::string& key) const;
    const std::vector<Section>& sections() const { return sections_; }
    bool hasSection(const std::string& section) const;

    /// Nothing changes when the key is one that no line can hold.
    bool setValue(const std::string& section, const std::string& key, const std::string& value);
    void deleteKey(const std::string& section, const std::string& key);
    void deleteSection(const std::string& section);

    bool operator==(const PlainSettings&) const = default;

  private:
    Section* find(const std::string& section);
    void takeLine(const std::string& line);

    std::vector<Section> sections_;
};

}  // namespace coffrelune::fuzz
