#include "operation/log_search.h"

#include "operation/errors.h"
#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Search : public OperationTest {
  protected:
    Search() {
        log.append("Début de la Sauvegarde ...");
        log.append("Erreur: 5 - Fichier: C:\\Docs\\Sub\\b.txt");
        log.append("Erreur: 32 - Fichier: C:\\Docs\\Été\\a.txt");
        search.onOpenFolder = [this](const std::string& folder) { opened.push_back(folder); };
    }
    std::vector<std::string> shown() {
        std::vector<std::string> lines;
        for (std::size_t i = 0; i < log.shownCount(); ++i) lines.emplace_back(log.shownLine(i));
        return lines;
    }

    TextLog log;
    LogSearch search{system, log, "Liste.txt"};
    std::vector<std::string> opened;
};

TEST_F(Search, ShowsTheLinesThatHoldTheTextWhateverItsCase) {
    search.FilterTxt.type("ERREUR: 3");
    EXPECT_THAT(shown(), ElementsAre("Erreur: 32 - Fichier: C:\\Docs\\Été\\a.txt"));
    search.FilterTxt.type("éTé");
    EXPECT_EQ(shown().size(), 1U);
    search.FilterTxt.type("absent");
    EXPECT_THAT(shown(), IsEmpty());
    search.FilterTxt.type("");
    EXPECT_EQ(shown().size(), 3U);
    EXPECT_EQ(log.lineCount(), 3U) << "nothing has gone from the list itself";
}

TEST_F(Search, KeepsTheFilterForLinesThatComeLaterAndForAnotherList) {
    search.FilterTxt.type("erreur");
    log.append("Effacé : C:\\x");
    log.append("Erreur: 2 - Fichier: C:\\y");
    EXPECT_EQ(shown().size(), 3U);
    log.clear();
    log.append("Erreur: 3 - Fichier: C:\\z");
    EXPECT_THAT(shown(), ElementsAre("Erreur: 3 - Fichier: C:\\z"));
}

TEST_F(Search, CopiesTheSelectedLinesOrAllThatAreShown) {
    search.FilterTxt.type("erreur");
    search.CopyCmd.click();
    EXPECT_EQ(user().copied(),
              "Erreur: 5 - Fichier: C:\\Docs\\Sub\\b.txt\n"
              "Erreur: 32 - Fichier: C:\\Docs\\Été\\a.txt\n");
    log.pick({1});
    search.CopyCmd.click();
    EXPECT_EQ(user().copied(), "Erreur: 32 - Fichier: C:\\Docs\\Été\\a.txt\n");
}

TEST_F(Search, SavesTheLinesThatAreShown) {
    search.FilterTxt.type("été");
    user().chooseNextFile("F:\\liste.txt");
    search.SaveCmd.click();
    EXPECT_EQ(disk().content("F:\\liste.txt"),
              "\xEF\xBB\xBF"
              "Erreur: 32 - Fichier: C:\\Docs\\Été\\a.txt\r\n");
}

TEST_F(Search, ACancelledSavingWritesNothing) {
    user().chooseNextFile("");
    search.SaveCmd.click();
    EXPECT_THAT(user().messages(), IsEmpty());
}

TEST_F(Search, TellsThatALineListCouldNotBeSaved) {
    user().chooseNextFile("F:\\absent\\liste.txt");
    user().answer(Answer::ok);
    search.SaveCmd.click();
    EXPECT_EQ(user().messages().back().text,
              "La liste n'a pas pu être enregistrée dans F:\\absent\\liste.txt (erreur 3).");
}

TEST_F(Search, OpensTheFolderOfTheSelectedLineOrTheNearestOneThatIsThere) {
    EXPECT_FALSE(search.FolderCmd.enabled());
    log.pick({0});
    EXPECT_FALSE(search.FolderCmd.enabled()) << "the line holds no path";
    log.pick({1});
    search.FolderCmd.click();
    log.pick({2});
    search.FolderCmd.click();
    EXPECT_THAT(opened, ElementsAre("C:\\Docs\\Sub", "C:\\Docs"));
}

TEST_F(Search, SaysWhatTheNumberOfTheSelectedErrorMeans) {
    log.pick({2});
    EXPECT_EQ(search.MeaningLbl.caption(),
              "Cette erreur signifie : fichier utilisé par un autre programme.");
    log.pick({0});
    EXPECT_EQ(search.MeaningLbl.caption(), "");
}

TEST_F(Search, ForgetsTheSelectionWhenOtherLinesAreShown) {
    log.pick({2});
    search.FilterTxt.type("sub");
    EXPECT_THAT(log.selection(), IsEmpty());
    EXPECT_FALSE(search.FolderCmd.enabled());
}

TEST(FolderOfLine, IsThatOfThePathInIt) {
    EXPECT_EQ(folderOfLine("F:\\Save\\a b.txt n'existe pas"), "F:\\Save");
    EXPECT_EQ(folderOfLine("Effacé : \\\\nas\\part\\x.txt"), "\\\\nas\\part");
    EXPECT_EQ(folderOfLine("C:\\a.txt est plus récent"), "C:");
    EXPECT_EQ(folderOfLine("Fin de la Sauvegarde ... 2 erreur(s)."), "");
}

TEST(MeaningOfErrorLine, IsKnownForErrorLinesAlone) {
    EXPECT_EQ(meaningOfErrorLine("Erreur: 112 - Fichier: C:\\a"), "disque plein");
    EXPECT_EQ(meaningOfErrorLine("Erreur: 4711 - Fichier: C:\\a"), "");
    EXPECT_EQ(meaningOfErrorLine("Erreur: 5"), "");
    EXPECT_EQ(meaningOfErrorLine("Erreur: 5x - Fichier: C:\\a"), "");
    EXPECT_EQ(meaningOfErrorLine("Non effacé : C:\\a (erreur 5)."), "");
}

}  // namespace
}  // namespace coffrelune
