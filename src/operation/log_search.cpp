#include "operation/log_search.h"

#include <algorithm>
#include <utility>

#include "operation/errors.h"
#include "platform/characters.h"
#include "system/paths.h"
#include "system/text.h"

namespace coffrelune {
namespace {

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

// A million lines are looked through at every key: those of ASCII alone without a copy of each.
TextLog::Test testFor(const std::string& wanted) {
    const std::string lower = lowerCase(wanted);
    const bool plain = ascii::isShownText(lower);
    return [lower, plain](std::string_view line) {
        if (!plain) return lowerCase(line).find(lower) != std::string::npos;
        return std::search(line.begin(), line.end(), lower.begin(), lower.end(),
                           [](char a, char b) { return lowered(a) == b; }) != line.end();
    };
}

}  // namespace

LogSearch::LogSearch(SystemMod& system, TextLog& log, std::string fileName)
    : system_(system), log_(log), fileName_(std::move(fileName)) {
    FilterTxt.setToolTip("Filtrer les lignes");
    CopyCmd.setToolTip("Copier les lignes sélectionnées, ou toutes celles qui sont affichées");
    SaveCmd.setToolTip("Enregistrer les lignes affichées dans un fichier");
    FolderCmd.setToolTip("Ouvrir le dossier de la ligne sélectionnée");
    FilterTxt.onType = [this] { filter(); };
    CopyCmd.onClick = [this] { system_.platform.windows.copyText(text("\n")); };
    SaveCmd.onClick = [this] { save(); };
    FolderCmd.onClick = [this] {
        const std::string path = folder();
        if (!path.empty() && onOpenFolder) onOpenFolder(path);
    };
    log_.onPick = [this] { picked(); };
    picked();
}

LogSearch::~LogSearch() {
    log_.onPick = nullptr;
}

void LogSearch::setVisible(bool visible) {
    FilterTxt.setVisible(visible);
    MeaningLbl.setVisible(visible);
    for (Button* button : {&CopyCmd, &SaveCmd, &FolderCmd}) button->setVisible(visible);
}

void LogSearch::filter() {
    log_.showOnly(FilterTxt.text().empty() ? nullptr : testFor(FilterTxt.text()));
}

void LogSearch::picked() {
    const std::string_view line = firstPicked();
    FolderCmd.setEnabled(!folderOfLine(line).empty());
    const std::string meaning = meaningOfErrorLine(line);
    MeaningLbl.setCaption(meaning.empty() ? meaning : "Cette erreur signifie : " + meaning + ".");
}

// Empty without a selection.
std::string_view LogSearch::firstPicked() const {
    const auto& selection = log_.selection();
    return selection.empty() ? std::string_view() : log_.shownLine(selection.front());
}

// The nearest one that is there: a copy that is missing may miss with its folder.
std::string LogSearch::folder() {
    std::string path = folderOfLine(firstPicked());
    while (!path.empty() && !isDriveRoot(withTrailingBackslash(path))) {
        FileEntry entry;
        const Status found = system_.platform.files.lookUp(path, LinkRule::follow, entry);
        if (found.ok() && entry.isDirectory()) return path;
        const std::string parent = withoutTrailingBackslash(splitPath(path).parent);
        if (parent.size() >= path.size()) return {};
        path = parent;
    }
    return path.empty() ? path : withTrailingBackslash(path);
}

std::string LogSearch::text(const char* lineEnd) const {
    std::string lines;
    const auto add = [&](std::size_t shown) {
        lines.append(log_.shownLine(shown)).append(lineEnd);
    };
    if (log_.selection().empty()) {
        for (std::size_t i = 0; i < log_.shownCount(); ++i) add(i);
    } else {
        std::for_each(log_.selection().begin(), log_.selection().end(), add);
    }
    return lines;
}

// In UTF-8 after its mark, which the editors of every system understand.
void LogSearch::save() {
    WindowService& windows = system_.platform.windows;
    const std::string path = windows.chooseNewFile("Enregistrer les lignes affichées", fileName_);
    if (path.empty()) return;
    std::string lines = "\xEF\xBB\xBF";
    for (std::size_t i = 0; i < log_.shownCount(); ++i)
        lines.append(log_.shownLine(i)).append("\r\n");
    const Status written = system_.platform.files.writeWhole(path, lines, Durability::now);
    if (written.ok()) return;
    (void)windows.showMessage({"La liste n'a pas pu être enregistrée dans " +
                                   visibleControls(path) + " (erreur " +
                                   std::to_string(written.code()) + ").",
                               system_.programTitle, MessageIcon::exclamation});
}

std::string folderOfLine(std::string_view line) {
    for (std::size_t i = 0; i + 2 < line.size(); ++i) {
        const bool drive = ascii::isLetter(line[i]) && line[i + 1] == ':' && line[i + 2] == '\\' &&
                           (i == 0 || !ascii::isLetter(line[i - 1]));
        const bool share = line[i] == '\\' && line[i + 1] == '\\';
        if (!drive && !share) continue;
        const std::string_view path = line.substr(i);
        return std::string(path.substr(0, path.rfind('\\')));
    }
    return {};
}

}  // namespace coffrelune
