#include "operation/run_reasons.h"

#include <algorithm>

#include "engine/line_roots.h"
#include "operation/errors.h"
#include "system/text.h"

namespace coffrelune {
namespace {

using Texts = std::vector<std::string>;

const char* doneTo(OperationKind kind) {
    switch (kind) {
        case OperationKind::backup:
            return "sauvegardée";
        case OperationKind::restore:
            return "restaurée";
        case OperationKind::comparison:
            break;
    }
    return "comparée";
}

void addMissing(const SystemMod& system, const RunStatistics& statistics, Texts& texts) {
    for (std::size_t line = 0; line < statistics.tallies.size(); ++line) {
        const LineTally& tally = statistics.tallies[line];
        const LineRoots roots = rootsOfLine(system, static_cast<int>(line));
        const std::string name = "Ligne " + std::to_string(line + 1);
        if (tally.sourceMissing) {
            texts.push_back(name + " : la source " + roots.source + " est introuvable.");
        }
        if (tally.destinationMissing) {
            texts.push_back(name + " : la destination " + roots.destination + " est introuvable.");
        }
    }
}

// "1", "1 et 3", "1, 3 et 4"
std::string enumerated(const Texts& words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool last = i + 1 == words.size();
        text += (i == 0 ? "" : last ? " et " : ", ") + words[i];
    }
    return text;
}

void addUnticked(const SystemMod& system, Texts& texts) {
    Texts lines;
    for (int line = 0; line <= system.maximumIndex; ++line) {
        const BackupLine& shown = system.lineAt(line);
        if (shown.filled() && shown.selected == 0) lines.push_back(std::to_string(line + 1));
    }
    if (lines.empty()) return;
    const std::string done = doneTo(system.operationKind);
    texts.push_back(lines.size() == 1
                        ? "Ligne " + lines.front() +
                              " : remplie mais pas cochée, elle n'a pas été " + done + "."
                        : "Lignes " + enumerated(lines) +
                              " : remplies mais pas cochées, elles n'ont pas été " + done + "s.");
}

// A source that is not there stops a run without a number.
std::string interruption(const SystemMod& system, const RunStatistics& statistics,
                         const RunControl& control) {
    const std::string title = wordsOf(system.operationKind).title;
    const std::string cause = errorCause(control.lastErrorNumber, control.sharingPath);
    if (!cause.empty()) return title + " interrompue, incomplète : " + cause;
    const bool missing = std::any_of(statistics.tallies.begin(), statistics.tallies.end(),
                                     [](const LineTally& tally) { return tally.sourceMissing; });
    if (missing) return title + " interrompue, incomplète : une source manque.";
    return title + " interrompue à votre demande, incomplète.";
}

std::string nothing(const SystemMod& system, const RunStatistics& statistics) {
    const bool any = std::any_of(system.lines.begin(), system.lines.end(), [](const auto& line) {
        return line.filled() && line.selected != 0;
    });
    if (!any) return "Aucune ligne n'est à la fois remplie et cochée : rien n'a été lu.";
    std::uint64_t lacking = 0;
    bool trouble = statistics.errorCount > 0 || statistics.filesRemoved > 0;
    for (const LineTally& tally : statistics.tallies) {
        lacking += tally.filesToCopy;
        trouble = trouble || tally.sourceMissing || tally.incomplete;
    }
    // What is in the way, and what has been deleted, is told for itself.
    if (trouble) return {};
    if (lacking > 0) return "Seuls des fichiers vides manquent : ils n'ont pas été copiés.";
    return "Tout est à jour : les lignes cochées n'ont aucun fichier à copier.";
}

}  // namespace

std::vector<std::string> runReasons(const SystemMod& system, const RunStatistics& statistics,
                                    const RunControl& control, RunEnd end) {
    Texts texts;
    if (end == RunEnd::interrupted) texts.push_back(interruption(system, statistics, control));
    if (end == RunEnd::nothing) {
        std::string text = nothing(system, statistics);
        if (!text.empty()) texts.push_back(std::move(text));
    }
    addMissing(system, statistics, texts);
    addUnticked(system, texts);
    return texts;
}

}  // namespace coffrelune
