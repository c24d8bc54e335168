#include "engine/hash_walk.h"

#include "engine/rules.h"
#include "platform/content_reader.h"
#include "system/paths.h"

namespace coffrelune {

HashWalk::HashWalk(RunState& run, CopyErrors& errors, HashWork& work)
    : run_(run), errors_(errors), work_(work) {}

void HashWalk::walkLine(const RunLine& line) {
    line_ = line.index;
    errors_.startLine(line_);
    const std::string copy = withoutTrailingBackslash(line.roots.copy());
    FileEntry entry;
    const Status found = run_.files().lookUp(copy, LinkRule::follow, entry);
    if (!found.ok()) return errors_.unread(found.code(), copy);
    const bool single = !entry.isDirectory();
    root_ = withTrailingBackslash(single ? splitPath(copy).parent : copy);
    const auto listed = work_.list.find(line_);
    known_ = listed == work_.list.end() ? HashedCopy{} : listed->second;
    current_ = {root_, {}};
    if (single) {
        entry.name = splitPath(copy).last;
        handle(entry, root_);
    } else {
        walk(root_, LinkRule::follow);
    }
    if (run_.stopped()) return;
    if (work_.checks) {
        tellMissing();
    } else {
        work_.list[line_] = current_;
    }
}

void HashWalk::walk(const std::string& directory, LinkRule links) {
    std::unique_ptr<Directory> listing;
    Status listed = run_.files().openDirectory(directory, links, Wanted::everything, listing);
    std::vector<std::string> names;
    if (listed.ok()) {
        for (FileEntry entry; !run_.stopped() && listing->next(entry);) {
            if (entry.name == "." || entry.name == "..") continue;
            if (!entry.isDirectory()) {
                handle(entry, directory);
            } else if (!entry.isLink() && !entry.mountPoint) {
                names.push_back(entry.name);
            }
            run_.display.runPendingEvents();
        }
        listed = listing->status();
    }
    listing.reset();  // a deep tree must not hold a descriptor for every level
    if (!listed.ok()) {
        errors_.unread(listed.code(), withoutTrailingBackslash(directory));
        keepBelow(directory);
    }
    for (const std::string& name : names) {
        if (run_.stopped()) return;
        walk(directory + name + "\\", LinkRule::refuse);
    }
}

// Of what cannot be read nothing new is known.
void HashWalk::keepBelow(const std::string& directory) {
    for (const auto& [path, file] : known_.files) {
        if ((root_ + path).starts_with(directory)) current_.files.emplace(path, file);
    }
}

void HashWalk::keepKnown(const std::string& path) {
    const auto known = known_.files.find(below(path));
    if (known != known_.files.end()) current_.files.insert(*known);
}

void HashWalk::handle(const FileEntry& entry, const std::string& directory) {
    if (isSystemFile(entry.name)) return;
    const std::string path = directory + entry.name;
    run_.display.showFile(path);
    if (entry.isUnreadable()) {
        errors_.unread(entry.failure, path);
        keepKnown(path);
    } else if (work_.checks) {
        check(entry, path);
    } else {
        renew(entry, path);
    }
}

// A file of the date and size that the list knows keeps its line: reading it again would make a
// damage that has come since look right.
void HashWalk::renew(const FileEntry& entry, const std::string& path) {
    const auto known = known_.files.find(below(path));
    const bool isKnown = known != known_.files.end();
    const bool same = isKnown && known->second.size == entry.size &&
                      known->second.lastWrite == entry.times.lastWrite;
    if (same || work_.suspects.contains(path)) return keepKnown(path);
    std::string hash;
    const Status status = read(entry, path, hash);
    if (run_.stopped()) return;
    if (!status.ok()) {
        errors_.unread(status.code(), path);
        return keepKnown(path);
    }
    current_.files[below(path)] = describe(entry, hash);
}

void HashWalk::check(const FileEntry& entry, const std::string& path) {
    std::string hash;
    const auto known = known_.files.find(below(path));
    if (known == known_.files.end()) {
        run_.record({FileOutcome::skipped, line_, path, entry.size, 0, "absent de la liste"});
        return;
    }
    const Status status = read(entry, path, hash);
    if (run_.stopped()) return;
    current_.files[below(path)] = describe(entry, hash);
    if (!status.ok()) return errors_.unread(status.code(), path);
    if (hash == known->second.hash && entry.size == known->second.size) {
        return run_.record({FileOutcome::verified, line_, path, entry.size});
    }
    const bool sameDate = known->second.lastWrite == entry.times.lastWrite;
    tellDifference(path, entry.size,
                   sameDate ? "est différent, à la même date" : "a changé depuis la liste");
}

Status HashWalk::read(const FileEntry& entry, const std::string& path, std::string& hash) {
    constexpr std::size_t chunk = std::size_t{256} << 10;
    std::unique_ptr<Content> content;
    Status status = run_.switches.contents->open(path, LinkRule::refuse, content);
    if (!status.ok()) return status;
    work_.hash.start();
    std::vector<char> buffer(chunk);
    for (std::size_t length = chunk; length == chunk && !run_.stopped();) {
        status = content->read(buffer, length);
        if (!status.ok()) return status;
        work_.hash.add(std::span(buffer).first(length));
        run_.display.runPendingEvents();
    }
    hash = work_.hash.text();
    LineTally& tally = run_.tally(line_);
    ++tally.files;
    tally.bytes += entry.size;
    run_.display.showCount(std::to_string(tally.files) + " fichier(s) lu(s)");
    return {};
}

HashedFile HashWalk::describe(const FileEntry& entry, std::string hash) {
    return {std::move(hash), entry.size, entry.times.lastWrite};
}

void HashWalk::tellDifference(const std::string& path, std::uint64_t size,
                              std::string_view status) {
    const std::string line = path + " " + std::string(status);
    run_.display.addToComparison(line);
    run_.display.AjouteECTxt(line);
    ++run_.statistics.filesToCopy;
    ++run_.tally(line_).filesToCopy;
    run_.record({FileOutcome::differs, line_, path, size, 0, status});
}

// What lies where nobody could look has been told as an error.
void HashWalk::tellMissing() {
    for (const auto& [path, file] : known_.files) {
        if (current_.files.contains(path)) continue;
        tellDifference(root_ + path, file.size, "n'existe pas");
        run_.display.runPendingEvents();
        if (run_.stopped()) return;
    }
}

}  // namespace coffrelune
