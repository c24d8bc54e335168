#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "platform/platform.h"
#include "settings/configuration.h"
#include "settings/copy_options.h"
#include "settings/program_context.h"
#include "settings/settings_file.h"

namespace coffrelune {

/// Results of the last runs of one kind: dates "dd/mm/yyyy hh:nn:ss", durations "hh:nn:ss".
struct LastResult {
    std::string cleanDate;
    std::string cleanDuration;
    std::string errorDate;
    std::string errorDuration;
    std::int32_t errorCount = 0;
};

/// The shared state: everything that the settings file mirrors, and what windows hand each other.
/// One object for the whole run, passed down by reference; two may live side by side in a test.
class SystemMod {
  public:
    SystemMod(Platform& platform, const ProgramContext& context);

    Platform& platform;

    // ---- the settings file -------------------------------------------------------------------
    std::string ReadSetting(const std::string& section, const std::string& key);
    /// Tested in this order: an empty section flushes (nothing to do: every write is on the disk
    /// when it returns), an empty key deletes the section, an empty value deletes the key.
    Status WriteSetting(const std::string& section, const std::string& key,
                        const std::string& value);
    /// The same where nothing depends on the outcome: the state in memory holds for this run, and
    /// `tellWriteFailure` tells the user once that it will not be there at the next start.
    void keep(const std::string& section, const std::string& key, const std::string& value);
    /// Another name for a configuration, and another configuration that has its settings but has
    /// never run. Both fail with 87 where the name is taken.
    Status renameSection(const std::string& from, const std::string& to);
    Status copySection(const std::string& from, const std::string& to);
    /// Appends the configuration names that fit into `longestValue` with one separator each.
    void ListConfigurations(std::vector<std::string>& list);
    /// Never true of the reserved section, in any case.
    bool configurationExists(const std::string& name);
    Status settingsStatus() { return file_.status(); }
    /// `tell` gets one line for the user, once: at the first setting that cannot be written, or now
    /// when that has been already. Empty: nobody listens any more.
    void tellWriteFailure(std::function<void(const std::string&)> tell);
    /// Stores the current name for the next start, unless it was only tried: asked for at this
    /// start, without a section.
    void rememberConfiguration();

    bool asksForAuto() const;  // on the command line, before the settings are loaded as well
    void LoadSettings();
    void LoadConfiguration();

    // ---- exclusions of one line --------------------------------------------------------------
    void LoadExclusions(int line);  // into `exclusions`
    std::string PackExclusions(int line);
    void StoreExclusions(const std::string& packed, int line);
    void ClearExclusions(int line);
    void writeExclusionMode(int line, ExclusionMode mode);
    /// `number` counts from 1.
    void writeExcludedDirectory(int line, std::size_t number, const std::string& directory);
    /// Highest index of a line with a source or a destination; 0 when none has (line 0 is not
    /// looked at, a configuration keeps at least one line).
    int LastUsedLine() const;
    /// The same over every configuration of the file, among the lines that exist now.
    int lastUsedLineAnywhere();

    /// Lines that stay keep their contents.
    void resizeLines(int maximumIndex);
    BackupLine& lineAt(int line) { return lines[static_cast<std::size_t>(line)]; }
    const BackupLine& lineAt(int line) const { return lines[static_cast<std::size_t>(line)]; }

    // ---- state -------------------------------------------------------------------------------
    std::string programTitle;    // "Coffrelune Version 3.05"
    std::string programVersion;  // "3.05"
    std::string executablePath;
    std::string homeDirectory;
    bool AutoMode = false;
    std::int16_t maximumIndex = 5;
    std::int16_t pendingMaximumIndex = 5;
    std::string configurationName;
    std::string askedConfiguration;     // named at the start, the reserved name included, or empty
    std::string selectedConfiguration;  // chosen in ConfigForm, not yet loaded
    std::string takenConfiguration;     // chosen last, now or before this start; or empty
    std::string description;
    std::vector<BackupLine> lines;  // one more than `maximumIndex`
    std::int16_t SelectP = 0;
    std::string ProgToRun;
    std::string PrmToRun;
    std::int32_t Confirmation = 0;
    std::int32_t Modifie = 0;
    std::int32_t AutoSave = 0;
    std::string AutoTime = "00:00";
    std::string nextDate;                   // "dd/mm/yyyy"
    std::array<LastResult, 3> lastResults;  // by OperationKind
    /// End of the last backup that did all that it was asked for; or empty.
    std::string lastGoodBackup;
    std::string duration;         // of the run that just ended, "hh:nn:ss"
    std::int32_t errorCount = 0;  // of that run
    CopyOptions options;
    std::array<std::string, 2> soundNames;  // 0 success, 1 error
    std::int32_t SuiviAnalyse = 0;
    std::int16_t AutoStart = 0;
    ExclusionList exclusions;  // of the line loaded last
    /// 1 or more: the system copies with progress; 0: plain copies only.
    std::int16_t OsLevel = newestSystemLevel;
    OperationKind operationKind = OperationKind::backup;
    bool comparisonReversed = false;  // comparison from destination to source
    std::string dialogText;           // between a window and its small dialogs

    LastResult& lastResult(OperationKind kind) {
        return lastResults[static_cast<std::size_t>(kind)];
    }

  private:
    Status store(const std::string& section, const std::string& key, const std::string& value);
    Status noted(Status status);  // of a write
    void tellOnce();
    void readCommandLine();
    void readOptions();
    void readLastResults();

    SettingsFile file_;
    Status writeFailure_;  // the first one
    std::function<void(const std::string&)> tellWriteFailure_;
    std::string commandLine_;
    std::int16_t systemLevel_;
    bool writeFailureTold_ = false;
};

}  // namespace coffrelune
