#include <algorithm>
#include <string>
#include <string_view>

#include "console/preparation.h"
#include "console/settings_commands.h"
#include "console/settings_json.h"
#include "operation/line_texts.h"
#include "settings/choices.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune::console {
namespace {

const char* modeText(ExclusionMode mode) {
    switch (mode) {
        case ExclusionMode::none:
            return "tous les sous-répertoires";
        case ExclusionMode::all:
            return "aucun sous-répertoire";
        case ExclusionMode::listed:
            return "tous les sous-répertoires sauf :";
    }
    return "tous les sous-répertoires (choix inconnu)";
}

void sayExclusions(Session& session, int line) {
    SystemMod& system = session.system();
    system.LoadExclusions(line);
    const ExclusionList& list = system.exclusions;
    session.terminal().result(std::string("     ") + modeText(list.mode));
    if (list.mode != ExclusionMode::listed) return;
    for (const std::string& directory : list.directories) {
        session.terminal().result("       " + visibleControls(directory));
    }
}

ExitStatus showExclusions(Session& session, int line, bool json) {
    if (json) {
        session.terminal().result(exclusionsAsJson(session.system(), line));
    } else {
        session.terminal().say("Ligne " + std::to_string(line + 1) + " :");
        sayExclusions(session, line);
    }
    return ExitStatus::clean;
}

ExitStatus showLines(Session& session, const Arguments& arguments) {
    SystemMod& system = session.system();
    Terminal& terminal = session.terminal();
    if (arguments.json) {
        terminal.result(linesAsJson(system));
        return ExitStatus::clean;
    }
    terminal.say("Configuration : " + visibleControls(system.configurationName));
    bool any = false;
    for (int line = 0; line <= system.maximumIndex; ++line) {
        const BackupLine& stored = system.lineAt(line);
        if (!stored.used()) continue;
        any = true;
        terminal.result(std::to_string(line + 1) + ". [" + (stored.selected != 0 ? "x" : " ") +
                        "] " + visibleControls(stored.source) + " -> " +
                        visibleControls(stored.destination));
        system.LoadExclusions(line);
        if (system.exclusions.mode != ExclusionMode::none) sayExclusions(session, line);
    }
    if (!any) terminal.say("Aucune ligne n'est remplie.");
    return ExitStatus::clean;
}

// A line that cannot be run is not ticked.
Status untickUnlessFilled(SystemMod& system, int line) {
    const BackupLine& stored = system.lineAt(line);
    if (stored.filled() || stored.selected == 0) return {};
    return chooseLine(system, line, false);
}

Status edit(SystemMod& system, int line, LineSide side, const std::string& path) {
    editLine(system, line, side, path);
    const BackupLine& stored = system.lineAt(line);
    const bool left = side == LineSide::left;
    const std::string key = (left ? "Source" : "Destination") + std::to_string(line);
    // Stored by the edit already: asked again only for how that ended.
    return system.WriteSetting(system.configurationName, key,
                               QuoteValue(left ? stored.source : stored.destination));
}

ExitStatus set(Session& session, const Arguments::SettingsEdit& wanted, int line) {
    if (!wanted.source && !wanted.destination) {
        return refuse(session, "Donnez --source, --destination, ou les deux.");
    }
    SystemMod& system = session.system();
    DriveService& drives = system.platform.drives;
    Status stored;
    if (wanted.source) {
        stored = edit(system, line, LineSide::left, drives.fromNative(*wanted.source));
    }
    if (stored.ok() && wanted.destination) {
        stored = edit(system, line, LineSide::right, drives.fromNative(*wanted.destination));
    }
    if (stored.ok()) stored = untickUnlessFilled(system, line);
    const BackupLine& now = system.lineAt(line);
    return conclude(session, stored,
                    "Ligne " + std::to_string(line + 1) + " : " + visibleControls(now.source) +
                        " -> " + visibleControls(now.destination));
}

ExitStatus clear(Session& session, const Arguments& arguments, int line) {
    const std::string question =
        "Remise à zéro de la sauvegarde " + std::to_string(line + 1) + " ?";
    if (!isConfirmed(session, arguments, question)) return ExitStatus::interrupted;
    SystemMod& system = session.system();
    Status stored = edit(system, line, LineSide::left, "");
    if (stored.ok()) stored = edit(system, line, LineSide::right, "");
    if (stored.ok()) stored = untickUnlessFilled(system, line);
    if (stored.ok()) system.ClearExclusions(line);
    return conclude(session, stored, "Ligne " + std::to_string(line + 1) + " : vide");
}

// "Ligne 1 : sélectionnée", "Lignes 1, 3 : désélectionnées".
std::string toldTicks(const std::vector<int>& lines, bool selected) {
    const std::string plural = lines.size() > 1 ? "s" : "";
    std::string told = "Ligne" + plural;
    std::string_view separator = " ";
    for (const int line : lines) {
        told.append(separator).append(std::to_string(line));
        separator = ", ";
    }
    return told + (selected ? " : sélectionnée" : " : désélectionnée") + plural;
}

ExitStatus tick(Session& session, const std::vector<int>& lines, bool selected) {
    SystemMod& system = session.system();
    for (const int line : lines) {
        if (!selected || system.lineAt(line - 1).filled()) continue;
        return refuse(session, "La ligne " + std::to_string(line) +
                                   " n'a pas de source et de destination : elle ne peut pas être "
                                   "sélectionnée.");
    }
    Status stored;
    for (const int line : lines) {
        if (stored.ok()) stored = chooseLine(system, line - 1, selected);
    }
    return conclude(session, stored, toldTicks(lines, selected));
}

/// What a line leaves out, changed as the arguments say.
class ExclusionEdit {
  public:
    ExclusionEdit(Session& session, int line)
        : session_(session), system_(session.system()), line_(line) {
        system_.LoadExclusions(line);
        list_ = system_.exclusions;
    }

    ExitStatus run(const Arguments::SettingsEdit& wanted, bool json) {
        if (wanted.clears) list_.directories.clear();
        for (const std::string& typed : wanted.added) {
            if (!add(typed)) return ExitStatus::wrongUse;
        }
        for (const std::string& typed : wanted.removed) {
            if (!remove(typed)) return ExitStatus::wrongUse;
        }
        if (wanted.exclusionMode) list_.mode = modeNamed(*wanted.exclusionMode);
        storeExclusionList(system_, line_, list_);
        // What is on the disk now tells whether it was stored.
        system_.LoadExclusions(line_);
        if (!(system_.exclusions == list_)) return ExitStatus::wrongUse;
        return showExclusions(session_, line_, json);
    }

  private:
    static ExclusionMode modeNamed(const std::string& word) {
        if (word == "aucun") return ExclusionMode::all;
        return word == "sauf" ? ExclusionMode::listed : ExclusionMode::none;
    }

    const std::string& source() const { return system_.lineAt(line_).source; }

    // What is no whole path lies in the source.
    std::string directoryOf(const std::string& typed) const {
        const bool whole = typed.starts_with('/') || typed.starts_with(R"(\\)") ||
                           (typed.size() > 1 && typed[1] == ':');
        if (whole) return system_.platform.drives.fromNative(typed);
        std::string rest = typed;
        std::replace(rest.begin(), rest.end(), '/', '\\');
        return joinPath(source(), withoutTrailingBackslash(rest.substr(rest[0] == '\\' ? 1 : 0)));
    }

    bool add(const std::string& typed) {
        const std::string directory = directoryOf(typed);
        const ExclusionChoice choice = chooseExclusion(source(), directory, list_.directories);
        if (choice.refusal == ExclusionChoice::Refusal::taken) return true;
        if (choice.refusal != ExclusionChoice::Refusal::none || choice.entry.empty()) {
            session_.terminal().warn(visibleControls(typed) + "\n" +
                                     textOf(ExclusionChoice::Refusal::outside));
            return false;
        }
        FileEntry entry;
        if (!system_.platform.files.lookUp(directory, LinkRule::follow, entry).ok()) {
            session_.terminal().warn("Attention : " + visibleControls(directory) +
                                     " n'existe pas ou ne peut pas être lu.");
        }
        list_.directories.push_back(choice.entry);
        // Whoever adds a directory wants it left out.
        list_.mode = ExclusionMode::listed;
        return true;
    }

    bool remove(const std::string& typed) {
        const std::string entry = chooseExclusion(source(), directoryOf(typed), {}).entry;
        auto& listed = list_.directories;
        auto found = std::find(listed.begin(), listed.end(), typed);
        if (found == listed.end()) found = std::find(listed.begin(), listed.end(), entry);
        if (found == listed.end()) {
            session_.terminal().warn(visibleControls(typed) + " n'est pas dans la liste.");
            return false;
        }
        listed.erase(found);
        return true;
    }

    Session& session_;
    SystemMod& system_;
    int line_;
    ExclusionList list_;
};

bool changesExclusions(const Arguments::SettingsEdit& edit) {
    return edit.clears || edit.exclusionMode || !edit.added.empty() || !edit.removed.empty();
}

bool areLines(Session& session, const std::vector<int>& lines) {
    const int count = session.system().maximumIndex + 1;
    for (const int line : lines) {
        if (line <= count) continue;
        session.terminal().warn("Il n'y a pas de ligne " + std::to_string(line) + " : il y en a " +
                                std::to_string(count) +
                                ". « options definir RepertMax=12 » en donne douze.");
        return false;
    }
    return true;
}

ExitStatus change(Session& session, const Arguments& arguments) {
    const Arguments::SettingsEdit& wanted = arguments.edit;
    const int line = wanted.lines.front() - 1;
    switch (wanted.action) {
        case Action::set:
            return set(session, wanted, line);
        case Action::erase:
            return clear(session, arguments, line);
        case Action::exclude:
            if (session.system().lineAt(line).source.empty()) {
                return refuse(session,
                              "Sélectionnez d'abord un disque ou répertoire à sauvegarder !");
            }
            return ExclusionEdit(session, line).run(wanted, arguments.json);
        default:
            return tick(session, wanted.lines, wanted.action == Action::select);
    }
}

}  // namespace

ExitStatus lines(Session& session, const Arguments& arguments) {
    const Arguments::SettingsEdit& wanted = arguments.edit;
    const bool shows = wanted.action == Action::show ||
                       (wanted.action == Action::exclude && !changesExclusions(wanted));
    ExitStatus refusal = ExitStatus::clean;
    const bool ready = shows ? prepareReading(session, arguments, refusal)
                             : prepareEditing(session, arguments, refusal);
    if (!ready) return refusal;
    if (!settingsUsable(session.system()) || !areLines(session, wanted.lines)) {
        return ExitStatus::wrongUse;
    }
    if (!shows) return change(session, arguments);
    if (wanted.action == Action::show) return showLines(session, arguments);
    const int line = wanted.lines.front() - 1;
    return showExclusions(session, line, arguments.json);
}

}  // namespace coffrelune::console
