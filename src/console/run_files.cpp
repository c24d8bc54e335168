#include "console/run_files.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <vector>

#include "engine/line_roots.h"
#include "platform/native/native_platform.h"
#include "system/date_time.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune::console {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* textMark = "Coffrelune, rapport";
constexpr const char* jsonMark = "{\"coffrelune\":";

std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

struct OutcomeWords {
    const char* key;
    const char* word;
};

OutcomeWords wordsOf(FileOutcome outcome) {
    switch (outcome) {
        case FileOutcome::copied:
            return {"copied", "copié"};
        case FileOutcome::replaced:
            return {"replaced", "remplacé"};
        case FileOutcome::deleted:
            return {"deleted", "effacé"};
        case FileOutcome::skipped:
            return {"skipped", "laissé"};
        case FileOutcome::failed:
            return {"failed", "échec"};
        case FileOutcome::differs:
            return {"differs", "diffère"};
        case FileOutcome::verified:
            return {"verified", "vérifié"};
    }
    return {"", ""};
}

std::string asText(const FileRecord& file) {
    std::string line = wordsOf(file.outcome).word;
    if (!file.reason.empty()) line += " (" + std::string(file.reason) + ")";
    if (file.outcome == FileOutcome::failed)
        line += " (erreur " + std::to_string(file.number) + ")";
    return line + " : " + visibleControls(file.path);
}

std::string asJsonLine(const FileRecord& file) {
    Json line;
    line["outcome"] = wordsOf(file.outcome).key;
    line["line"] = file.line + 1;
    line["path"] = file.path;
    if (file.outcome == FileOutcome::failed) {
        line["number"] = file.number;
    } else {
        line["size"] = file.size;
    }
    if (!file.reason.empty()) line["reason"] = file.reason;
    return dump(line);
}

bool endsWith(const std::string& path, std::string_view suffix) {
    return path.size() >= suffix.size() &&
           equalIgnoringCase(path.substr(path.size() - suffix.size()), std::string(suffix));
}

const char* commandWord(Command command) {
    switch (command) {
        case Command::restore:
            return "restaurer";
        case Command::compare:
            return "comparer";
        case Command::verify:
            return "verifier";
        default:
            return "sauvegarder";
    }
}

const char* endWord(ExitStatus end) {
    switch (end) {
        case ExitStatus::clean:
            return "sans erreur";
        case ExitStatus::errors:
            return "erreurs ou différences";
        case ExitStatus::wrongUse:
            return "mauvais usage";
        case ExitStatus::interrupted:
            break;
    }
    return "interrompu";
}

/// True when the file may be written over: it is not there, is empty, or begins so.
bool mayReplace(Session& session, const std::string& path, const std::vector<std::string>& marks) {
    FileService& files = session.system().platform.files;
    FileEntry entry;
    const Status found = files.lookUp(path, LinkRule::follow, entry);
    if (found.saysAbsent() || (found.ok() && !entry.isDirectory() && entry.size == 0)) return true;
    std::unique_ptr<Content> content;
    std::string start(64, '\0');
    std::size_t length = 0;
    const auto reader = makeContentReader(session.native());
    Status read = reader->open(path, LinkRule::follow, content);
    if (read.ok()) read = content->read(start, length);
    start.resize(length);
    for (const std::string& mark : marks) {
        if (read.ok() && start.starts_with(mark)) return true;
    }
    session.terminal().warn(
        "« " + visibleControls(path) +
        " » existe et n'a pas été écrit par cette commande : il est laissé tel quel.");
    return false;
}

void tellFailure(Session& session, const std::string& path, const Status& status) {
    session.terminal().warn("« " + visibleControls(path) + " » n'a pas pu être écrit (erreur " +
                            std::to_string(status.code()) + ").");
}

}  // namespace

RunReport::RunReport(Session& session, const Arguments& arguments)
    : session_(session),
      arguments_(arguments),
      asJson_(endsWith(arguments.report, ".json") || endsWith(arguments.report, ".jsonl")) {}

bool RunReport::open() {
    if (!wanted()) return true;
    SystemMod& system = session_.system();
    path_ = system.platform.drives.fromNative(arguments_.report);
    if (!mayReplace(session_, path_, {textMark, jsonMark})) return false;
    const Status created = createOutputFile(session_.native(), path_, file_);
    if (!created.ok()) {
        tellFailure(session_, path_, created);
        return false;
    }
    const std::string word = commandWord(arguments_.command);
    const std::string name = arguments_.direct() ? std::string() : system.configurationName;
    const std::string date = formatDateTime(system.platform.clock.now());
    if (asJson_) {
        const Json line = {
            {"coffrelune", "rapport"}, {"command", word}, {"configuration", name}, {"date", date}};
        write(dump(line));
    } else {
        write(std::string(textMark) + " de « " + word + " »" +
              (name.empty() ? "" : ", configuration " + visibleControls(name)) + ", " + date);
    }
    flush();
    return true;
}

void RunReport::add(const FileRecord& file) {
    if (file.outcome == FileOutcome::differs && arguments_.command == Command::verify) {
        // The counterpart, whichever of the two the verification has walked.
        const LineRoots roots = rootsOfLine(session_.system(), file.line);
        if (file.path.starts_with(roots.source)) {
            suspects_.insert(roots.target + file.path.substr(roots.source.size()));
        }
        suspects_.insert(file.path);
    }
    if (file_ != nullptr) write(asJson_ ? asJsonLine(file) : asText(file));
}

void RunReport::write(const std::string& line) {
    constexpr std::size_t most = std::size_t{64} << 10;
    buffer_.append(line).append("\n");
    if (buffer_.size() >= most) flush();
}

// What follows a line that is missing would only mislead.
void RunReport::flush() {
    if (failure_.ok()) failure_ = file_->write(buffer_);
    buffer_.clear();
}

ExitStatus RunReport::close(ExitStatus end) {
    if (file_ == nullptr) return end;
    const int number = static_cast<int>(end);
    if (asJson_) {
        write(dump(Json{{"end", endWord(end)}, {"exitStatus", number}}));
    } else {
        write(std::string("Fin : ") + endWord(end) + " (état " + std::to_string(number) + ")");
    }
    flush();
    file_.reset();
    if (failure_.ok()) return end;
    tellFailure(session_, path_, failure_);
    return std::max(end, ExitStatus::errors);
}

HashFile::HashFile(Session& session, const Arguments& arguments)
    : session_(session), checks_(!arguments.hashes.empty()) {
    const std::string& named = checks_ ? arguments.hashes : arguments.writtenHashes;
    if (!named.empty()) path_ = session.system().platform.drives.fromNative(named);
}

bool HashFile::read() {
    constexpr std::uint64_t limit = std::uint64_t{4} << 30;
    if (!wanted()) return true;
    std::string text;
    const Status status = session_.system().platform.files.readWhole(path_, limit, text);
    if (!checks_ && (status.saysAbsent() || (status.ok() && text.empty()))) return true;
    const std::string name = "« " + visibleControls(path_) + " »";
    if (!status.ok()) {
        session_.terminal().warn("La liste d'empreintes " + name +
                                 " ne peut pas être lue (erreur " + std::to_string(status.code()) +
                                 ").");
        return false;
    }
    std::optional<HashList> list = readHashList(text);
    if (!list) {
        session_.terminal().warn(name +
                                 (text.starts_with(hashListMark)
                                      ? " est une liste d'empreintes abîmée ou incomplète."
                                      : " n'est pas une liste d'empreintes.") +
                                 " Ce fichier est laissé tel quel.");
        return false;
    }
    list_ = std::move(*list);
    return true;
}

bool HashFile::write() {
    const Status written =
        session_.system().platform.files.writeWhole(path_, hashListText(list_), Durability::now);
    if (!written.ok()) tellFailure(session_, path_, written);
    return written.ok();
}

}  // namespace coffrelune::console
