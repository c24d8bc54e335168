#include "engine/line_trees.h"

#include "engine/line_trees_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

// ---- the certificate of a copy

TEST_F(Trees, CertifyACopyThatHoldsEverything) {
    exclusions = {ExclusionMode::listed, {"\\Tmp"}};
    disk().directory("C:\\Docs\\Mnt");
    disk().setMountPoint("C:\\Docs\\Mnt");
    EXPECT_TRUE(backUp());
    const Certificate certificate = own();
    EXPECT_EQ(certificate.original, "C:\\Docs");
    EXPECT_EQ(certificate.volume, "memory:C:\\");
    EXPECT_EQ(certificate.pathOnVolume, "\\Docs");
    EXPECT_THAT(certificate.copy, StartsWith("memory:F:\\:"));
    EXPECT_EQ(certificate.exclusions, exclusions);
    EXPECT_THAT(certificate.mounts, ElementsAre("Mnt"));
    EXPECT_TRUE(certificate.complete);
}

TEST_F(Trees, HideTheCertificateAndNeverCopyIt) {
    EXPECT_TRUE(backUp());
    const std::string name = certificates("F:\\Docs").begin()->first;
    EXPECT_EQ(disk().attributes("F:\\Docs\\" + name), attribute::hidden);
    EXPECT_THAT(list("F:\\"),
                ElementsAre("F:\\Docs", "F:\\Docs\\Sub", "F:\\Docs\\Sub\\b", "F:\\Docs\\a"));
    disk().directory("C:\\Save");
    EXPECT_TRUE(run("F:\\Docs", "C:\\Save", 1));
    EXPECT_THAT(certificates("C:\\Save\\Docs"), SizeIs(1));
    EXPECT_EQ(certificate("C:\\Save\\Docs").original, "F:\\Docs");
}

TEST_F(Trees, OpenTheCertificateBeforeTheFirstChange) {
    EXPECT_TRUE(backUp());
    startAgain();
    disk().file("C:\\Docs\\New\\n", "n");
    faulty.fail("createDirectory", "F:\\Docs\\New", error_number::ioDevice);
    EXPECT_FALSE(backUp());
    EXPECT_FALSE(own().complete);
    const auto& calls = faulty.calls();
    const auto at = [&](const std::string& beginning) {
        return std::find_if(calls.begin(), calls.end(),
                            [&](const std::string& call) { return call.starts_with(beginning); });
    };
    ASSERT_NE(at("createDirectory F:\\Docs\\New"), calls.end());
    EXPECT_LT(at("writeWhole F:\\Docs\\.~"), at("createDirectory F:\\Docs\\New"));
}

TEST_F(Trees, OpenTheCertificateBeforeTheFirstDeletionAndTheFirstCopy) {
    EXPECT_TRUE(backUp());
    for (const bool deletes : {true, false}) {
        startAgain();
        if (deletes) disk().file("F:\\Docs\\gone", "x");
        if (!deletes) disk().file("C:\\Docs\\a", "newer", fileTimeAt(2024, 5, 1));
        EXPECT_TRUE(backUp());
        const std::vector<std::string> writes = changes();
        ASSERT_GE(writes.size(), 4U);
        EXPECT_THAT(writes[0], StartsWith("writeWhole F:\\Docs\\.~coffrelune-"));
        EXPECT_THAT(writes[0], Not(HasSubstr("nextFlush"))) << "safe before anything else happens";
        EXPECT_THAT(writes[1], StartsWith("setAttributes F:\\Docs\\.~coffrelune-"));
        EXPECT_EQ(writes[2].substr(0, 8), deletes ? "removeFi" : "copyFile");
        EXPECT_TRUE(own().complete);
    }
}

TEST_F(Trees, CompleteTheCertificateBetweenTwoFlushes) {
    EXPECT_TRUE(backUp());
    const auto& calls = faulty.calls();
    ASSERT_GE(calls.size(), 4U);
    const std::size_t end = calls.size();
    EXPECT_EQ(calls[end - 1], "flush F:\\Docs");
    EXPECT_THAT(calls[end - 2], StartsWith("setAttributes F:\\Docs\\.~coffrelune-"));
    EXPECT_THAT(calls[end - 3], StartsWith("writeWhole F:\\Docs\\.~coffrelune-"));
    EXPECT_EQ(calls[end - 4], "flush F:\\Docs");
    EXPECT_THAT(memory.files().calls("writeWhole").back(), HasSubstr("nextFlush"));
}

TEST_F(Trees, LeaveTheCertificateOpenAfterAFailedFlush) {
    faulty.fail("flush", "F:\\Docs", error_number::ioDevice);
    (void)backUp();
    EXPECT_FALSE(own().complete);
    EXPECT_EQ(statistics.errorCount, 1);
}

TEST_F(Trees, LeaveTheCertificateOpenAfterAnError) {
    system.options.ContinueOnError = -1;
    EXPECT_TRUE(backUp());
    disk().file("C:\\Docs\\a", "newer", fileTimeAt(2024, 5, 1));
    disk().setUnreadable("C:\\Docs\\a");
    EXPECT_FALSE(backUp());
    EXPECT_FALSE(own().complete);
    disk().setUnreadable("C:\\Docs\\a", false);
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(own().complete);
}

TEST_F(Trees, LeaveTheCertificateOpenAfterAStop) {
    memory.files().copyHook = [this](const CopyMoment&) { control.interruptionRequested = true; };
    EXPECT_FALSE(backUp());
    EXPECT_FALSE(own().complete);
}

TEST_F(Trees, LeaveTheCertificateOpenInTreeMode) {
    system.options.ArbreMode = -1;
    EXPECT_FALSE(backUp());
    EXPECT_FALSE(own().complete);
    EXPECT_FALSE(disk().exists("F:\\Docs\\a"));
}

TEST_F(Trees, OpenTheCertificateOfACopyThatLacksSomethingThoughNothingIsCopied) {
    EXPECT_TRUE(backUp());
    disk().file("C:\\Docs\\empty", "");  // no bytes: no copy pass
    EXPECT_FALSE(backUp());
    EXPECT_FALSE(disk().exists("F:\\Docs\\empty"));
    EXPECT_FALSE(own().complete);
}

TEST_F(Trees, OpenTheCertificateOfACopyOfWhatCannotBeRead) {
    EXPECT_TRUE(backUp());
    disk().setUnreadable("C:\\Docs\\Sub");
    EXPECT_FALSE(backUp());
    EXPECT_FALSE(own().complete);
}

TEST_F(Trees, WriteNothingInARunThatChangesNothing) {
    EXPECT_TRUE(backUp());
    startAgain();
    EXPECT_TRUE(backUp());
    EXPECT_THAT(changes(), IsEmpty());
    EXPECT_THAT(memory.files().calls("flush"), IsEmpty());
}

TEST_F(Trees, CertifyACopyThatWasMadeWithoutOne) {
    EXPECT_TRUE(backUp());
    disk().remove("F:\\Docs\\" + certificates("F:\\Docs").begin()->first);
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(own().complete);
}

TEST_F(Trees, CertifyWhatTheLineLeavesOutNow) {
    EXPECT_TRUE(backUp());
    exclusions = {ExclusionMode::listed, {"\\Tmp"}};
    EXPECT_TRUE(backUp());
    EXPECT_EQ(own().exclusions, exclusions);
}

TEST_F(Trees, GoOnWithoutAnyCertificateWhereNoneCanBeWritten) {
    faulty.fail("writeWhole", "", error_number::accessDenied);
    (void)backUp();
    EXPECT_EQ(disk().content("F:\\Docs\\Sub\\b"), "b");
    EXPECT_THAT(certificates("F:\\Docs"), IsEmpty());
}

TEST_F(Trees, TakeAwayACertificateThatSaysTooMuchAndCannotBeRewritten) {
    EXPECT_TRUE(backUp());
    startAgain();
    disk().file("C:\\Docs\\new", "n");
    faulty.fail("writeWhole", "", error_number::diskFull);
    (void)backUp();
    EXPECT_THAT(certificates("F:\\Docs"), IsEmpty());
    EXPECT_EQ(disk().content("F:\\Docs\\new"), "n");
}

TEST_F(Trees, ChangeNothingUnderACertificateThatCanNeitherBeRewrittenNorRemoved) {
    EXPECT_TRUE(backUp());
    startAgain();
    disk().file("C:\\Docs\\new", "n");
    disk().file("F:\\Docs\\gone", "g");
    const std::string path = "F:\\Docs\\" + certificates("F:\\Docs").begin()->first;
    disk().find(path)->writeError = error_number::accessDenied;
    system.options.ContinueOnError = -1;
    EXPECT_FALSE(backUp());
    EXPECT_TRUE(own().complete);
    EXPECT_FALSE(disk().exists("F:\\Docs\\new"));
    EXPECT_TRUE(disk().exists("F:\\Docs\\gone"));
    EXPECT_THAT(window.journal, ElementsAre("Erreur: 5 - Fichier: C:\\Docs"));
}

// ---- which certificate is the line's own

TEST_F(Trees, KnowTheirCertificateUnderAnotherLetter) {
    EXPECT_TRUE(backUp());
    disk().file("D:\\Docs\\a", "a");
    disk().file("D:\\Docs\\Sub\\b", "b");
    disk().volume("D:\\").identity = "memory:C:\\";
    EXPECT_TRUE(run("D:\\Docs", "F:\\"));
    EXPECT_EQ(own().original, "D:\\Docs") << "one file, under the name of the new path";
    EXPECT_TRUE(own().complete);
    EXPECT_EQ(statistics.errorCount, 0);
}

TEST_F(Trees, KnowTheirCertificateThroughALink) {
    EXPECT_TRUE(backUp());
    disk().directory("D:\\Vers");
    disk().link("D:\\Vers\\Docs", "C:\\Docs");
    EXPECT_TRUE(run("D:\\Vers\\Docs", "F:\\"));
    EXPECT_EQ(own().original, "C:\\Docs");
}

TEST_F(Trees, LetTheOpenOneOfTwoCertificatesOfOnePairSpeak) {
    EXPECT_TRUE(backUp());
    disk().file("D:\\Docs\\a", "a");
    disk().file("D:\\Docs\\new\\n", "n");
    disk().volume("D:\\").identity = "memory:C:\\";
    const LineRoots moved = lineRoots("D:\\Docs", "F:\\", Layout::normal);
    faulty.fail("removeFile", "F:\\Docs\\" + certificates("F:\\Docs").begin()->first, 5);
    (void)run(moved);
    EXPECT_EQ(statistics.errorCount, 1);
    ASSERT_THAT(certificates("F:\\Docs"), SizeIs(2));
    ASSERT_TRUE(trees(moved).take());
    EXPECT_FALSE(trees(moved).certificate()->complete);
    startAgain();
    EXPECT_TRUE(run(moved)) << "the next run takes the former one away";
    EXPECT_EQ(own().original, "D:\\Docs");
    EXPECT_TRUE(own().complete);
}

TEST_F(Trees, TakeTheCertificateOfAnotherPairForNoneOfTheirs) {
    Certificate other;
    other.original = "C:\\Autre";
    other.volume = "memory:C:\\";
    other.pathOnVolume = "\\Autre";
    disk().directory("F:\\Docs");
    putCertificate("F:\\Docs", other);
    ASSERT_TRUE(backupTrees().take());
    EXPECT_EQ(backupTrees().certificate(), nullptr);
    EXPECT_TRUE(backupTrees().isShared());
    EXPECT_TRUE(backUp());
    EXPECT_THAT(certificates("F:\\Docs"), SizeIs(2));
}

TEST_F(Trees, AreSharedBesideACertificateThatSaysNothing) {
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(backupTrees().take());
    EXPECT_FALSE(backupTrees().isShared());
    letGo();
    disk().file("F:\\Docs\\" + ownFileName(OwnFile::certificate, 7), "Coffrelune 9\n");
    EXPECT_TRUE(backupTrees().take());
    EXPECT_TRUE(backupTrees().isShared());
}

TEST_F(Trees, AreSharedWhenTheMarksOfTheCopyCannotBeListed) {
    EXPECT_TRUE(backUp());
    faulty.fail("ownFiles", "F:\\Docs", error_number::ioDevice);
    EXPECT_TRUE(backupTrees().take());
    EXPECT_TRUE(backupTrees().isShared());
}

// ---- an original in doubt

TEST_F(Trees, KeepTheVolumeOfTheOriginalThatWasSavedWhileAnotherIsInItsPlace) {
    EXPECT_TRUE(backUp());
    disk().volume("C:\\").identity = "another disk";
    disk().file("C:\\Docs\\new", "n");
    (void)backUp();
    EXPECT_EQ(own().volume, "memory:C:\\");
    EXPECT_FALSE(own().complete);
    disk().volume("C:\\").identity = "memory:C:\\";
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(own().complete);
}

TEST_F(Trees, KeepTheMountPointsThatWereSavedWhileOneIsMissing) {
    disk().directory("C:\\Docs\\Mnt");
    disk().setMountPoint("C:\\Docs\\Mnt");
    EXPECT_TRUE(backUp());
    disk().setMountPoint("C:\\Docs\\Mnt", false);
    disk().file("C:\\Docs\\new", "n");
    (void)backUp();
    EXPECT_THAT(own().mounts, ElementsAre("Mnt"));
    EXPECT_FALSE(own().complete);
    disk().setMountPoint("C:\\Docs\\Mnt");
    EXPECT_TRUE(backUp());
    EXPECT_TRUE(own().complete);
}

// Windows walks through links, and what is mounted behind one is no more looked for from the root.
TEST_F(Trees, MissNoMountPointBehindALink) {
    disk().file("C:\\Docs\\Sub\\Mnt\\p", "photo");
    disk().setMountPoint("C:\\Docs\\Sub\\Mnt");
    EXPECT_TRUE(backUp());
    disk().remove("C:\\Docs\\Sub");
    disk().link("C:\\Docs\\Sub", "C:\\Ailleurs");
    disk().file("C:\\Ailleurs\\Mnt\\p", "photo");
    disk().file("F:\\Docs\\gone", "x");
    (void)backUp();  // the link finds a directory where it would be copied
    EXPECT_FALSE(disk().exists("F:\\Docs\\gone"));
    EXPECT_TRUE(disk().exists("F:\\Docs\\Sub\\Mnt\\p"));
}

TEST_F(Trees, TakeTheOriginalForTheRightOneWhenTheUserSaysSo) {
    disk().directory("C:\\Docs\\Mnt");
    disk().setMountPoint("C:\\Docs\\Mnt");
    EXPECT_TRUE(backUp());
    disk().setMountPoint("C:\\Docs\\Mnt", false);
    disk().volume("C:\\").identity = "another disk";
    disk().file("F:\\Docs\\gone", "x");
    disk().file("C:\\Docs\\" + ownFileName(OwnFile::restoreMark, 1), "");
    disk().file("F:\\Docs\\" + ownFileName(OwnFile::restoreMark, 2), "");
    switches.acceptOriginal = true;
    EXPECT_TRUE(backUp());
    EXPECT_FALSE(disk().exists("F:\\Docs\\gone"));
    EXPECT_EQ(statistics.errorCount, 0);
    EXPECT_EQ(own().volume, "another disk");
    EXPECT_THAT(own().mounts, IsEmpty());
    EXPECT_TRUE(own().complete);
    EXPECT_EQ(restoreMarks("C:\\Docs"), 0U);
    EXPECT_EQ(restoreMarks("F:\\Docs"), 0U);
}

TEST_F(Trees, SayWhatCouldNotBeWrittenOfAConfirmation) {
    EXPECT_TRUE(backUp());
    disk().volume("C:\\").identity = "another disk";
    faulty.fail("writeWhole", "", error_number::diskFull);
    faulty.fail("removeFile", "", error_number::accessDenied);
    EXPECT_EQ(backupTrees().accept().code(), error_number::diskFull);
    EXPECT_EQ(own().volume, "memory:C:\\");
}

TEST_F(Trees, SettleNoDoubtsInARestore) {
    EXPECT_TRUE(backUp());
    disk().volume("C:\\").identity = "another disk";
    disk().file("C:\\Docs\\" + ownFileName(OwnFile::restoreMark, 1), "");
    LineTrees& line = trees(lineRoots("C:\\Docs", "F:\\", Layout::reversed));
    EXPECT_TRUE(line.accept().ok());
    EXPECT_EQ(restoreMarks("C:\\Docs"), 1U);
    EXPECT_TRUE(own().complete);
}

}  // namespace
}  // namespace coffrelune
