#include "operation/results.h"

#include <algorithm>
#include <array>
#include <optional>

#include "system/date_time.h"

namespace coffrelune {
namespace {

struct SummaryTexts {
    const char* clean;
    const char* problem;
    const char* count;
    const char* duration;
    const char* link;
};

constexpr std::array<SummaryTexts, 3> summaryTexts = {{
    {"Dernière sauvegarde sans erreur le ", "Dernière sauvegarde avec erreur le ", " erreur(s)",
     "Durée de la sauvegarde: ", "Voir les erreurs"},
    {"Dernière restauration sans erreur le ", "Dernière restauration avec erreur le ", " erreur(s)",
     "Durée de la restauration: ", "Voir les erreurs"},
    {"Dernière comparaison sans copie le ", "Dernière comparaison avec copie le ", " copie(s)",
     "Durée de la comparaison: ", "Voir les copies"},
}};

std::string dated(const char* prefix, const std::string& stored) {
    const std::optional<LocalTime> date = parseDateTime(stored);
    // A date that is none says nothing of when a run was: it counts as never.
    return date ? prefix + formatLongDate(*date) : std::string();
}

bool isEarlier(const std::string& a, const std::string& b) {
    const std::optional<LocalTime> first = parseDateTime(a);
    const std::optional<LocalTime> second = parseDateTime(b);
    return first && second && toMilliseconds(*first) < toMilliseconds(*second);
}

}  // namespace

ResultSummary summarize(const SystemMod& system, OperationKind kind) {
    const SummaryTexts& texts = summaryTexts[static_cast<std::size_t>(kind)];
    const LastResult& result = system.lastResults[static_cast<std::size_t>(kind)];
    ResultSummary summary;
    summary.cleanLine = dated(texts.clean, result.cleanDate);
    summary.problemLine = dated(texts.problem, result.errorDate);
    if (isEarlier(result.errorDate, result.cleanDate)) summary.problemLine.clear();
    if (!summary.problemLine.empty()) {
        summary.countLine = std::to_string(std::max(result.errorCount, 0)) + texts.count;
    }
    summary.cleanToolTip = texts.duration + result.cleanDuration;
    summary.problemToolTip = texts.duration + result.errorDuration;
    summary.linkText = texts.link;
    return summary;
}

void StoreResult(SystemMod& system, OperationHost& host, bool clean) {
    const OperationKind kind = system.operationKind;
    const std::string suffix = wordsOf(kind).key;
    const std::string date = formatDateTime(system.platform.clock.now());
    // A settings file that cannot be written leaves the memory right: outcomes are ignored.
    const auto write = [&](const std::string& key, const std::string& value) {
        (void)system.WriteSetting(system.configurationName, key, value);
    };
    LastResult& result = system.lastResult(kind);
    if (clean) {
        result.cleanDate = date;
        result.cleanDuration = system.duration;
        write("Last" + suffix, result.cleanDate);
        write("LastDuree" + suffix, result.cleanDuration);
    } else {
        result.errorDate = date;
        result.errorDuration = system.duration;
        result.errorCount = system.errorCount;
        write("Last" + suffix + "Err", result.errorDate);
        write("LastDuree" + suffix + "Err", result.errorDuration);
        write("Last" + suffix + "NbErr", std::to_string(result.errorCount));
    }
    host.resultStored(kind);
}

void noteGoodBackup(SystemMod& system, const RunStatistics& statistics, RunEnd end) {
    const bool ended = end == RunEnd::finished || end == RunEnd::nothing;
    const bool copies =
        system.operationKind == OperationKind::backup && system.options.ArbreMode == 0;
    const bool any = std::any_of(system.lines.begin(), system.lines.end(), [](const auto& line) {
        return line.filled() && line.selected != 0;
    });
    const bool lacks =
        std::any_of(statistics.tallies.begin(), statistics.tallies.end(),
                    [](const LineTally& tally) { return tally.sourceMissing || tally.incomplete; });
    if (!ended || !copies || !any || lacks) return;
    if (statistics.errorCount > 0 || !statistics.errors.empty()) return;
    system.lastGoodBackup = formatDateTime(system.platform.clock.now());
    system.keep(system.configurationName, "LastSaveOk", system.lastGoodBackup);
}

BackupAge ageOfBackup(const SystemMod& system, int days) {
    constexpr std::int64_t day = 24LL * 60 * 60 * 1000;
    BackupAge age;
    // A settings file that has known no such date yet.
    const std::string& clean = system.lastResults[0].cleanDate;
    const std::string& stored = system.lastGoodBackup.empty() ? clean : system.lastGoodBackup;
    const std::optional<LocalTime> date = parseDateTime(stored);
    age.tooOld = true;
    if (!date) return age;
    const std::int64_t span = toMilliseconds(system.platform.clock.now()) - toMilliseconds(*date);
    age.date = stored;
    age.days = std::max<std::int64_t>(span, 0) / day;
    // One that lies in the future says nothing, but for the hour that summer time takes back.
    age.tooOld = span > days * day || span < -day;
    return age;
}

std::string staleBackup(const SystemMod& system, int days) {
    const BackupAge age = ageOfBackup(system, days);
    if (!age.tooOld) return {};
    if (age.date.empty()) {
        return system.lastResults[0].errorDate.empty()
                   ? std::string()
                   : "Aucune sauvegarde de cette configuration ne s'est encore faite sans erreur.";
    }
    return dated("Dernière sauvegarde complète et sans erreur le ", age.date) + ", il y a " +
           std::to_string(age.days) + " jours.";
}

}  // namespace coffrelune
