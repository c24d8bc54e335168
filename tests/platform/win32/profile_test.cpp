// The settings file against the system's own profile functions: the same operations on two files,
// the same answers after each of them.
#include <gmock/gmock.h>
#include <windows.h>

#include "platform/win32/test_disk.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/win32_files.h"
#include "settings/settings_file.h"
#include "system/text.h"

namespace coffrelune {
namespace {

constexpr std::size_t bufferSize = 1024;

/// The functions on one file, for ANSI texts or for wide ones.
class Profile {
  public:
    Profile(const std::string& path, bool isWide) : path_(wide(path)), isWide_(isWide) {}

    void write(const std::string& section, const std::string* key, const std::string* value) {
        if (isWide_) {
            const std::wstring name = key == nullptr ? L"" : wide(*key);
            const std::wstring text = value == nullptr ? L"" : wide(*value);
            EXPECT_NE(WritePrivateProfileStringW(
                          wide(section).c_str(), key == nullptr ? nullptr : name.c_str(),
                          value == nullptr ? nullptr : text.c_str(), path_.c_str()),
                      0);
        } else {
            const std::string name = key == nullptr ? "" : ansi(*key);
            const std::string text = value == nullptr ? "" : ansi(*value);
            EXPECT_NE(WritePrivateProfileStringA(
                          ansi(section).c_str(), key == nullptr ? nullptr : name.c_str(),
                          value == nullptr ? nullptr : text.c_str(), ansi(narrow(path_)).c_str()),
                      0);
        }
        // What was written reaches the disk at once.
        WritePrivateProfileStringW(nullptr, nullptr, nullptr, path_.c_str());
    }

    /// Null: all keys, or all sections, each with a NUL behind it.
    std::string read(const std::string* section, const std::string* key) const {
        if (!isWide_) {
            std::string buffer(bufferSize, '\0');
            const std::string from = section == nullptr ? "" : ansi(*section);
            const std::string name = key == nullptr ? "" : ansi(*key);
            buffer.resize(GetPrivateProfileStringA(section == nullptr ? nullptr : from.c_str(),
                                                   key == nullptr ? nullptr : name.c_str(), "",
                                                   buffer.data(), bufferSize,
                                                   ansi(narrow(path_)).c_str()));
            return page_.decode(buffer);
        }
        std::wstring buffer(bufferSize, L'\0');
        const std::wstring from = section == nullptr ? L"" : wide(*section);
        const std::wstring name = key == nullptr ? L"" : wide(*key);
        buffer.resize(GetPrivateProfileStringW(section == nullptr ? nullptr : from.c_str(),
                                               key == nullptr ? nullptr : name.c_str(), L"",
                                               buffer.data(), bufferSize, path_.c_str()));
        return narrow(buffer);
    }

    std::vector<std::string> names(const std::string* section) const {
        const std::string all = read(section, nullptr);
        std::vector<std::string> found;
        for (std::size_t start = 0; start < all.size();) {
            const std::size_t end = std::min(all.find('\0', start), all.size());
            if (end > start) found.push_back(all.substr(start, end - start));
            start = end + 1;
        }
        return found;
    }

  private:
    std::string ansi(const std::string& text) const {
        std::string bytes;
        EXPECT_TRUE(page_.encode(text, bytes)) << text;
        return bytes;
    }

    std::wstring path_;
    bool isWide_;
    AnsiCodePage page_{1252};
};

/// Numbers that differ from step to step and are the same in every run.
class Choice {
  public:
    explicit Choice(std::uint32_t seed) : state_(seed * 2654435761U + 1) {}

    std::size_t below(std::size_t count) {
        state_ = state_ * 1664525U + 1013904223U;
        return (state_ >> 8) % count;
    }
    const std::string& of(const std::vector<std::string>& list) { return list[below(list.size())]; }

  private:
    std::uint32_t state_;
};

const std::vector<std::string>& sectionNames() {
    static const std::vector<std::string> names = {
        "Position", "General", "GENERAL", "Travail", "été", "a=b", "x;y", "Sous[1]", "l'été"};
    return names;
}

const std::vector<std::string>& keyNames() {
    static const std::vector<std::string> names = {
        "Source0", "source0",  "Destination10", "RepExclu0_Rep1",
        "Config",  "LastSave", "Left",          "clé",
        "a b",     "x]"};
    return names;
}

/// A text of a few pieces. `pieces` decide what it may hold.
std::string textOf(Choice& choice, const std::vector<std::string>& pieces) {
    std::string text;
    for (std::size_t count = 1 + choice.below(8); count > 0; --count) text += choice.of(pieces);
    return choice.below(40) == 0 ? text + std::string(1500, 'x') : text;
}

struct Kind {
    std::string name;
    bool isWide;
};

void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

class ProfileProperty : public testing::TestWithParam<Kind> {
  protected:
    ProfileProperty()
        : files_(),
          page_(1252),
          ours_(files_, page_, base_.at("ours.ini")),
          theirs_(base_.at("theirs.ini"), GetParam().isWide) {
        // A file in UTF-16 is known by its mark.
        const std::string start = GetParam().isWide ? "\xFF\xFE" : "";
        disk::makeFile(base_.at("ours.ini"), start);
        disk::makeFile(base_.at("theirs.ini"), start);
    }

    /// One operation on both.
    void act(Choice& choice, const std::string& value) {
        const std::string section = choice.of(sectionNames());
        const std::string key = choice.of(keyNames());
        switch (choice.below(12)) {
            case 0:
                EXPECT_TRUE(ours_.deleteSection(section).ok());
                theirs_.write(section, nullptr, nullptr);
                break;
            case 1:
            case 2:
                // As an edit of a section that is not there would otherwise leave its header.
                if (!ours_.hasSection(section)) break;
                EXPECT_TRUE(ours_.deleteKey(section, key).ok());
                theirs_.write(section, &key, nullptr);
                break;
            default:
                EXPECT_TRUE(ours_.write(section, key, value).ok());
                theirs_.write(section, &key, &value);
                break;
        }
    }

    void expectSameReads() {
        EXPECT_EQ(ours_.sections(), theirs_.names(nullptr));
        for (const std::string& section : sectionNames()) {
            EXPECT_EQ(ours_.keys(section), theirs_.names(&section)) << section;
            for (const std::string& key : keyNames()) {
                EXPECT_EQ(ours_.read(section, key), theirs_.read(&section, &key))
                    << section << "/" << key;
            }
        }
    }

    disk::Temporary base_;
    Win32Files files_;
    AnsiCodePage page_;
    SettingsFile ours_;
    Profile theirs_;
};

INSTANTIATE_TEST_SUITE_P(On, ProfileProperty,
                         testing::Values(Kind{"Ansi", false}, Kind{"Utf16", true}),
                         [](const auto& made) { return made.param.name; });

// What the program writes: numbers, dates, and texts in quotes.
TEST_P(ProfileProperty, WhatTheProgramWritesGivesTheSameFileByteForByte) {
    const std::vector<std::string> pieces = {"C:\\", "Mes documents", "é",   "œ", "=", ";",
                                             "[x]",  "\\été",         "a.b", "1", "-"};
    for (std::uint32_t seed = 1; seed <= 10; ++seed) {
        Choice choice(seed);
        for (int step = 0; step < 30; ++step) {
            const std::string text = textOf(choice, pieces);
            act(choice, choice.below(2) == 0 ? "\"" + text + " \"" : text);
            ASSERT_EQ(disk::content(base_.at("ours.ini")), disk::content(base_.at("theirs.ini")))
                << "seed " << seed << ", step " << step;
        }
        expectSameReads();
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
}

// Values that only a hand would write. How blanks round them are stored is not compared: ours
// keeps them as they were given, because no reader sees them.
TEST_P(ProfileProperty, AnyValueIsReadTheSame) {
    const std::vector<std::string> pieces = {" ", "\t", "\"", "'", "=", ";", "[", "]", "a", "é"};
    for (std::uint32_t seed = 100; seed < 115; ++seed) {
        Choice choice(seed);
        for (int step = 0; step < 20; ++step) act(choice, textOf(choice, pieces));
        expectSameReads();
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
}

// What another program or a hand left in the file. A line without a name before its "=" is not
// among these: Wine's list of keys ends at one, ours passes over it.
TEST_P(ProfileProperty, AnyFileIsReadTheSame) {
    const std::vector<std::string> lines = {
        "[General]", "[Travail]", "[GENERAL]",  "[été]",
        "; remark",  "",          "Source0=1",  " Left = 2",
        "Config=",   "clé='x'",   "a b=\"y\"",  "LastSave=a;b",
        "no equals", "x]=1",      "source0==2", "Destination10=\"",
        "\tLeft=3\t"};
    for (std::uint32_t seed = 200; seed < 230; ++seed) {
        Choice choice(seed);
        std::string text;
        for (std::size_t count = choice.below(15); count > 0; --count) {
            text += choice.of(lines) + (choice.below(3) == 0 ? "\n" : "\r\n");
        }
        std::string bytes;
        if (GetParam().isWide) {
            const std::wstring units = L"\xFEFF" + wide(text);
            bytes.assign(reinterpret_cast<const char*>(units.data()), units.size() * 2);
        } else {
            page_.encode(text, bytes);
        }
        disk::makeFile(base_.at("ours.ini"), bytes);
        disk::makeFile(base_.at("theirs.ini"), bytes);
        WritePrivateProfileStringW(nullptr, nullptr, nullptr, wide(base_.at("theirs.ini")).c_str());
        expectSameReads();
        ASSERT_FALSE(HasFailure()) << "seed " << seed << "\n" << text;
    }
}

// Where ours differs on purpose, because a setting or a user's remark would be lost: those
// functions store "?" for what the code page cannot hold, leave the second of two equal keys to
// come back when the first is deleted, and take the remark above the next section away with a
// section.
TEST(ProfileDifference, NothingIsLostThatTheProfileFunctionsWouldLose) {
    const disk::Temporary base;
    Win32Files files;
    const AnsiCodePage page(1252);
    const std::string path = base.at("a.ini");
    disk::makeFile(path, "[A]\r\nk=1\r\nk=2\r\nj=3\r\n; about B\r\n[B]\r\nk=4\r\n");
    SettingsFile settings(files, page, path);
    ASSERT_TRUE(settings.deleteKey("A", "k").ok());
    EXPECT_EQ(settings.read("A", "k"), "");
    ASSERT_TRUE(settings.deleteSection("A").ok());
    EXPECT_EQ(disk::content(path), "; about B\r\n[B]\r\nk=4\r\n");
    ASSERT_TRUE(settings.write("B", "k", "\"D:\\日本\"").ok());

    // The file is UTF-16 from here on, and those functions read it.
    EXPECT_EQ(settings.read("B", "k"), "D:\\日本");
    const std::string section = "B";
    const std::string key = "k";
    EXPECT_EQ(Profile(path, true).read(&section, &key), "D:\\日本");
}

}  // namespace
}  // namespace coffrelune
