#include "engine/objections.h"

#include <algorithm>

#include "system/paths.h"

namespace coffrelune {
namespace {

using Verdict = std::optional<Objection>;

const std::string confirmation =
    " Si tout est en ordre, confirmez la source (bouton « Confirmer la source », ou "
    "--confirmer-source).";

const std::string unlock =
    " Si elle est sans objet, effacez le fichier caché « .~coffrelune-….restauration » qui s'y "
    "trouve.";

Objection unreadable(const Status& status, const std::string& path) {
    return {path + " ne peut pas être examiné.", status.code(), path};
}

bool holdsOpenCertificate(const DirectoryMarks& marks) {
    return std::any_of(marks.certificates.begin(), marks.certificates.end(),
                       [](const DirectoryMarks::Named& one) { return !one.certificate.complete; });
}

// What is read may lack files that exist elsewhere alone: those of a restore or of a backup into it
// that was never finished. That is written in its root, or in a root above it.
Verdict unfinishedOriginal(FileService& files, const std::string& original) {
    std::vector<std::string> places = ancestorsOf(files.resolve(original));
    places.insert(places.begin(), original);
    for (const std::string& place : places) {
        DirectoryMarks marks;
        const Status read = readMarks(files, place, marks);
        // A directory above that may not be listed belongs to somebody else.
        if (!read.ok() && place != original) continue;
        if (!read.ok()) return unreadable(read, place);
        if (!marks.failure.ok()) return unreadable(marks.failure, place);
        if (!marks.restoreMarks.empty()) {
            // What the user confirms is this original, not a tree that reaches beyond it.
            const bool isOwn = place == original;
            return Objection{"la dernière restauration dans " + place +
                                 " n'a pas tout remis. Recommencez-la jusqu'au bout." +
                                 (isOwn ? confirmation : unlock),
                             error_number::invalidData, place, isOwn};
        }
        if (holdsOpenCertificate(marks) || !marks.unreadable.empty()) {
            return Objection{place +
                                 " est elle-même une copie inachevée. Recommencez d'abord la "
                                 "sauvegarde dont elle est la copie.",
                             error_number::invalidData, place};
        }
    }
    return {};
}

// Source and destination taken for each other: what is written is the user's own.
Verdict swappedPair(FileService& files, const LineTrees& trees) {
    const std::string& copy = trees.roots().original();
    DirectoryMarks marks;
    const Status read = readMarks(files, copy, marks);
    if (!read.ok()) return unreadable(read, copy);
    const std::string& tree = trees.roots().target;
    const std::string path = files.resolve(tree);
    const HeldTree* held = trees.copyTree();
    const auto isOriginal = [&](const DirectoryMarks::Named& one) {
        const Certificate& certificate = one.certificate;
        return certificate.original == path || (held != nullptr && !certificate.volume.empty() &&
                                                certificate.volume == held->place().volume &&
                                                certificate.pathOnVolume == held->place().path);
    };
    const auto& all = marks.certificates;
    if (std::none_of(all.begin(), all.end(), isOriginal)) return {};
    return Objection{copy + " est la copie de " + tree +
                         ". Pour la remettre à sa place, lancez une restauration. Si elle n'en est "
                         "pas la copie, effacez le fichier caché « .~coffrelune-….copie » qui s'y "
                         "trouve.",
                     error_number::invalidData, tree};
}

// The files of another pair lie among those of the tree, or the tree among those of another pair.
Verdict othersFiles(FileService& files, const LineTrees& trees) {
    const std::string& tree = trees.roots().target;
    const std::string wayOut =
        " Donnez à chaque sauvegarde une destination à elle. Si l'autre n'existe plus, effacez le "
        "fichier caché « .~coffrelune-….copie » qui en reste.";
    if (trees.isShared()) {
        const std::string why =
            trees.backsUp() ? "une autre sauvegarde a sa copie au même endroit."
                            : trees.roots().copy() + " est aussi la copie d'une autre sauvegarde.";
        return Objection{why + wayOut, error_number::invalidData, tree};
    }
    std::vector<std::string> places = ancestorsOf(files.resolve(tree));
    if (!trees.backsUp()) places.insert(places.begin(), tree);
    for (const std::string& place : places) {
        DirectoryMarks marks;
        if (!readMarks(files, place, marks).ok()) continue;
        if (marks.certificates.empty() && marks.unreadable.empty()) continue;
        std::string reason = place;
        reason.append(" est la copie d'une autre sauvegarde.").append(wayOut);
        return Objection{reason, error_number::invalidData, tree};
    }
    return {};
}

Verdict otherOriginal(const LineTrees& trees) {
    const std::string& original = trees.roots().original();
    if (trees.originalOnOtherVolume()) {
        return Objection{original +
                             " n'est pas sur le même volume que lors de la dernière "
                             "sauvegarde : un disque est peut-être absent." +
                             confirmation,
                         error_number::invalidData, original, true};
    }
    if (trees.missingMounts().empty()) return {};
    const std::string mount = joinPath(original, trees.missingMounts().front());
    return Objection{"rien n'est monté dans " + mount +
                         ", où la dernière sauvegarde a vu un volume." + confirmation,
                     error_number::invalidData, mount, true};
}

Verdict noProof(const LineTrees& trees) {
    const std::string& copy = trees.roots().copy();
    const std::string wayOut = " Une sauvegarde menée jusqu'au bout le permettra.";
    const Certificate* certificate = trees.certificate();
    const HeldTree* original = trees.originalTree();
    const HeldTree* tree = trees.copyTree();
    const auto kept = [&](const std::string& why) {
        return Objection{why + wayOut, error_number::invalidData, copy};
    };
    if (certificate == nullptr || tree == nullptr || original == nullptr) {
        return kept("rien ne dit que " + copy + " est la copie complète de " +
                    trees.roots().original() + ".");
    }
    if (!certificate->complete) {
        return kept("la dernière sauvegarde dans " + copy + " n'a pas tout copié.");
    }
    if (trees.copyIsHalfRestored()) {
        return Objection{"la dernière restauration dans " + copy +
                             " n'a pas tout remis. Recommencez-la jusqu'au bout.",
                         error_number::invalidData, copy};
    }
    if (certificate->copy.empty() || certificate->copy != tree->place().self) {
        return kept(copy + " n'est pas le répertoire où la sauvegarde a été faite.");
    }
    if (trees.originalOnOtherVolume()) {
        return kept(trees.roots().original() +
                    " n'est pas sur le volume qui a été sauvegardé dans " + copy + ".");
    }
    return {};
}

}  // namespace

bool mayDeleteExcess(RunState& run) {
    SystemMod& system = run.system;
    return system.options.SynchroCopie != 0 && system.options.ArbreMode == 0 &&
           !run.switches.keepExisting &&
           (system.homeDirectory.empty() || system.settingsStatus().ok());
}

Verdict objectionTo(FileService& files, const LineTrees& trees) {
    // Marks that the disk does not give say nothing of whose they are.
    const Status& failure = trees.copyMarks().failure;
    if (!failure.ok()) return unreadable(failure, trees.roots().copy());
    if (!trees.backsUp()) {
        Verdict answer = noProof(trees);
        return answer ? answer : othersFiles(files, trees);
    }
    Verdict answer = unfinishedOriginal(files, trees.roots().original());
    if (!answer && !trees.copyMarks().restoreMarks.empty()) {
        answer = Objection{"la dernière restauration de " + trees.roots().copy() +
                               " n'a pas tout remis. Recommencez-la jusqu'au bout." + confirmation,
                           error_number::invalidData, trees.roots().copy(), true};
    }
    if (!answer) answer = swappedPair(files, trees);
    if (!answer) answer = otherOriginal(trees);
    return answer ? answer : othersFiles(files, trees);
}

}  // namespace coffrelune
