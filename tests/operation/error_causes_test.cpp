#include "operation/error_causes.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

TEST(ErrorCause, OfAStopByTheUserIsEmpty) {
    EXPECT_EQ(errorCause(0, ""), "");
}

TEST(ErrorCause, TellsWhatIsWrongWithTheDestination) {
    EXPECT_EQ(errorCause(3, ""), "Répertoire non trouvé.");
    EXPECT_EQ(errorCause(5, ""), "Accès disque destination refusé.");
    EXPECT_EQ(errorCause(19, ""),
              "Ce disque est protégé en écriture.\n"
              "Retirez la protection en écriture ou utilisez un autre disque.");
    EXPECT_EQ(errorCause(21, ""), "Il n'y a pas de disque dans le lecteur destination.");
    EXPECT_EQ(errorCause(31, ""), "Le disque destination n'est pas formaté.");
    EXPECT_EQ(errorCause(55, ""), "Le disque destination n'existe pas.");
    EXPECT_EQ(errorCause(112, ""), "Le disque destination est plein.");
}

TEST(ErrorCause, NamesThePlaceOfASharingOrLockViolation) {
    const std::string text =
        "Impossible de copier: C:\\Docs\\, Violation de partage.\n"
        "Le fichier source ou destination est peut-être en cours d'utilisation.";
    EXPECT_EQ(errorCause(32, R"(C:\Docs\)"), text);
    EXPECT_EQ(errorCause(33, R"(C:\Docs\)"), text);
}

TEST(ErrorCause, GivesTheNumberOfEveryOtherError) {
    EXPECT_EQ(errorCause(2, ""), "Erreur 2");
    EXPECT_EQ(errorCause(1117, R"(C:\Docs\)"), "Erreur 1117");
}

TEST(ErrorCause, ShowsControlCharactersInsteadOfObeyingThem) {
    EXPECT_EQ(errorCause(32, "C:\\a\n\x1b[2J\\"),
              "Impossible de copier: C:\\a␊␛[2J\\, Violation de partage.\n"
              "Le fichier source ou destination est peut-être en cours d'utilisation.");
}

}  // namespace
}  // namespace coffrelune
