#include "operation/error_list.h"

#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::IsEmpty;

class ErrorList : public OperationTest {
  protected:
    ErrorList() {
        system.options.ContinueOnError = -1;
        system.AutoMode = true;  // the window closes by itself
    }
    std::string pathFor(const std::string& configuration, OperationKind kind) {
        system.configurationName = configuration;
        return errorListPath(system, kind);
    }
};

TEST_F(ErrorList, IsNamedAfterTheKindAndTheConfiguration) {
    EXPECT_EQ(pathFor("Travail", OperationKind::backup), R"(C:\Coffrelune\S_Travail.err)");
    EXPECT_EQ(pathFor("Travail", OperationKind::restore), R"(C:\Coffrelune\R_Travail.err)");
    EXPECT_EQ(pathFor("Travail", OperationKind::comparison), R"(C:\Coffrelune\C_Travail.err)");
}

TEST_F(ErrorList, ReplacesWhatAFileNameCannotHold) {
    EXPECT_EQ(pathFor("Travail/Maison", OperationKind::backup),
              R"(C:\Coffrelune\S_Travail_Maison.err)");
    EXPECT_EQ(pathFor("??", OperationKind::backup), R"(C:\Coffrelune\S___.err)");
    EXPECT_EQ(pathFor(R"(<>|\/*:?")", OperationKind::backup), R"(C:\Coffrelune\S__________.err)");
    EXPECT_EQ(pathFor(" Travail ", OperationKind::backup), R"(C:\Coffrelune\S_Travail.err)");
}

TEST_F(ErrorList, HoldsTheWholeJournalInTheCodePage) {
    disk().file(R"(C:\Docs\été €.txt)", "x");
    failCopyOf(R"(C:\Docs\été €.txt)", 32);
    runCopie();
    EXPECT_EQ(errorList("S_Travail.err"),
              "D\xE9"
              "but de la Sauvegarde ...\r\nErreur: 32 - Fichier: C:\\Docs\\\xE9t\xE9 \x80.txt\r\n");
}

TEST_F(ErrorList, EndsWithTheLinesThatTheUserSaw) {
    system.AutoMode = false;
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    user().stepIn<Copie>([](Copie& window) { window.Cmd.click(); });
    runCopie();
    EXPECT_EQ(errorList("S_Travail.err"),
              "D\xE9"
              "but de la Sauvegarde ...\r\nErreur: 5 - Fichier: C:\\Docs\\a.txt\r\n"
              "Fin de la Sauvegarde ... 1 erreur(s).\r\n"
              "Dur\xE9"
              "e de la Sauvegarde ... : 00:00:00\r\n");
}

TEST_F(ErrorList, ReplacesWhatTheCodePageLacksByAQuestionMark) {
    EXPECT_TRUE(EcritErreurs(system, "日本 a\u0301 \xFF\r\n").ok());
    EXPECT_EQ(errorList("S_Travail.err"), "?? a? ?\r\n");
}

TEST_F(ErrorList, ShorterJournalReplacesALongerOneCompletely) {
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    failCopyOf(R"(D:\Photos\c.jpg)", 5);
    runCopie();
    faults.restart();
    failCopyOf(R"(D:\Photos\c.jpg)", 5);
    runCopie();
    EXPECT_EQ(errorList("S_Travail.err"),
              "D\xE9"
              "but de la Sauvegarde ...\r\nErreur: 5 - Fichier: D:\\Photos\\c.jpg\r\n");
}

TEST_F(ErrorList, OfAnEarlierRunStaysAfterARunWithoutError) {
    disk().file(R"(C:\Coffrelune\S_Travail.err)", "earlier");
    runCopie();
    EXPECT_EQ(errorList("S_Travail.err"), "earlier");
    EXPECT_THAT(memory.files().calls("removeFile"), IsEmpty());
}

TEST_F(ErrorList, OfARestoreIsAFileOfItsOwn) {
    system.operationKind = OperationKind::restore;
    EXPECT_TRUE(EcritErreurs(system, "journal\r\n").ok());
    EXPECT_EQ(errorList("R_Travail.err"), "journal\r\n");
    EXPECT_EQ(errorList("S_Travail.err"), "(none)");
}

TEST_F(ErrorList, ThatCannotBeWrittenIsToldAndTheRunGoesOn) {
    disk().file(R"(C:\Coffrelune\S_Travail.err)", "earlier");
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    faults.fail("writeWhole", R"(C:\Coffrelune\S_Travail.err)", error_number::diskFull);
    const RunEnd end = launch(RunMode::unattended);
    EXPECT_EQ(end, RunEnd::finished);
    EXPECT_THAT(user().notices(),
                testing::Contains("La liste des erreurs n'a pas pu être écrite dans "
                                  R"(C:\Coffrelune\S_Travail.err (erreur 112).)"));
    EXPECT_EQ(errorList("S_Travail.err"), "earlier");
    EXPECT_EQ(setting("Travail", "LastSaveNbErr"), "1");
}

TEST_F(ErrorList, IsNotWrittenByARunWithoutASettingsDirectory) {
    system.homeDirectory.clear();
    failCopyOf(R"(C:\Docs\a.txt)", 5);
    runCopie();
    EXPECT_EQ(statistics.errorCount, 1);
    EXPECT_THAT(user().notices(), IsEmpty());
    for (const std::string& call : faults.calls()) EXPECT_EQ(call.find(".err"), std::string::npos);
}

}  // namespace
}  // namespace coffrelune
