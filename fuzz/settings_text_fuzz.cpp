// The settings file against a plain model of it: a file, then edits, each with a section, a key and
// a value.

#include <algorithm>

#include "feed.h"
#include "plain_settings.h"
#include "platform/characters.h"
#include "settings/settings_text.h"
#include "system/text.h"

namespace coffrelune::fuzz {
namespace {

void expectSame(const SettingsText& text, const PlainSettings& model) {
    std::vector<std::string> names;
    for (const PlainSettings::Section& section : model.sections()) names.push_back(section.name);
    expect(text.sections() == names, "the same sections");
    for (const PlainSettings::Section& section : model.sections()) {
        expect(text.hasSection(section.name), "a section that is listed is found");
        for (const auto& [key, value] : section.values) {
            expect(text.value(section.name, key) == model.value(section.name, key),
                   "the same value");
        }
    }
}

// At most one piece of the file has changed, and nothing but a whole line has gone.
void expectOtherLinesKept(const std::string& before, const std::string& after) {
    if (before.substr(0, 2) != after.substr(0, 2)) return;  // new encoding, or new first line
    const auto start = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto kept = static_cast<std::size_t>(start.first - before.begin());
    std::size_t end = 0;
    while (end < before.size() - kept && end < after.size() - kept &&
           before[before.size() - 1 - end] == after[after.size() - 1 - end]) {
        ++end;
    }
    const std::string gone = before.substr(kept, before.size() - kept - end);
    const bool wide = before.starts_with("\xFF\xFE");
    expect(wide || gone.find('\n') == std::string::npos, "other lines stay as they are");
}

// A section gets another name, or its keys go into a new one: every value stays, under its new
// name.
void nameOrCopy(SettingsText& text, PlainSettings& model, bool names, const std::string& from,
                const std::string& to) {
    const PlainSettings before = model;
    const SettingsText::Edit done =
        names ? text.renameSection(from, to)
              : text.copySection(from, to, [](const std::string&) { return false; });
    model = PlainSettings::read(text.serialise());
    if (done != SettingsText::Edit::made) {
        expect(model == before, "what is refused changes nothing");
        return;
    }
    for (const PlainSettings::Section& section : before.sections()) {
        const bool concerned = equalIgnoringCase(section.name, from);
        for (const auto& [key, value] : section.values) {
            const std::string expected = before.value(section.name, key);
            expect(text.value(concerned ? to : section.name, key) == expected, "no value changes");
            if (!names) expect(text.value(section.name, key) == expected, "the first one stays");
        }
    }
}

void edit(SettingsText& text, PlainSettings& model, Feed& feed) {
    const std::string action = feed.text();
    const std::string section = feed.text();
    const std::string key = feed.text();
    const std::string value = feed.text();
    expect(text.value(section, key) == model.value(section, key), "the same value");
    expect(text.hasSection(section) == model.hasSection(section), "the same sections");
    const std::string before = text.serialise();
    if (action.starts_with("k")) {
        model.deleteKey(section, key);
        expect(text.deleteKey(section, key) != SettingsText::Edit::refused, "a key goes");
    } else if (action.starts_with("s")) {
        model.deleteSection(section);
        expect(text.deleteSection(section) != SettingsText::Edit::refused, "a section goes");
    } else if (action.starts_with("r") || action.starts_with("c")) {
        nameOrCopy(text, model, action.front() == 'r', section, key);
    } else {
        const bool possible = model.setValue(section, key, value);
        const SettingsText::Edit done = text.setValue(section, key, value);
        expect(possible == (done != SettingsText::Edit::refused), "the same keys are refused");
        expectOtherLinesKept(before, text.serialise());
    }
}

void run(Feed& feed) {
    const Windows1252 ansi;
    SettingsText text(ansi);
    const std::string bytes = feed.text();
    if (!text.parse(bytes)) {
        expect(text.serialise().empty() && text.sections().empty(), "no text, no settings");
        return;
    }
    expect(text.serialise() == bytes, "reading changes nothing");
    PlainSettings model = PlainSettings::read(bytes);
    expectSame(text, model);
    for (int edits = 0; edits < 4 && !feed.ends(); ++edits) {
        edit(text, model, feed);
        expectSame(text, model);
        expect(PlainSettings::read(text.serialise()) == model, "the file says what the edits said");
        SettingsText again(ansi);
        expect(again.parse(text.serialise()), "what is written is text");
        expectSame(again, model);
    }
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    coffrelune::fuzz::Feed feed(bytes, size);
    coffrelune::fuzz::run(feed);
    return 0;
}
