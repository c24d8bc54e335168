#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/input_controls.h"
#include "platform/long_lists.h"
#include "settings/system_mod.h"

namespace coffrelune {

/// What the user does with a long list: show only the lines that hold a text, copy lines, save
/// them, open the folder that a line speaks of.
class LogSearch {
  public:
    /// `log` outlives this. `fileName` is proposed for what is saved.
    LogSearch(SystemMod& system, TextLog& log, std::string fileName);
    LogSearch(const LogSearch&) = delete;
    LogSearch& operator=(const LogSearch&) = delete;
    ~LogSearch();

    TextBox FilterTxt;
    Button CopyCmd{"Copier"};
    Button SaveCmd{"Enregistrer..."};
    Button FolderCmd{"Ouvrir le dossier"};
    Label MeaningLbl;  // of the number in the selected error line

    /// A folder that is there. Without it none can be opened.
    std::function<void(const std::string& folder)> onOpenFolder;

    void setVisible(bool visible);

  private:
    void filter();
    void picked();
    std::string_view firstPicked() const;
    std::string folder();
    std::string text(const char* lineEnd) const;
    void save();

    SystemMod& system_;
    TextLog& log_;
    std::string fileName_;
};

/// The folder of the path that a line holds, with no "\" at its end; empty when it holds none.
std::string folderOfLine(std::string_view line);

}  // namespace coffrelune
