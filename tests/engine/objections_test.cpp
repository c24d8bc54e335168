#include "engine/objections.h"

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::HasSubstr;

// C:\Data\Docs copied to F:\Save\Docs by a backup that ended well.
class Objections : public Engine {
  protected:
    Objections() {
        disk().directory("H:\\Coffrelune");  // for the settings
        disk().file(original + "\\a", "a");
        disk().directory("F:\\Save");
        disk().directory(original + "\\Mnt");
        disk().setMountPoint(original + "\\Mnt");
        EXPECT_TRUE(run(backup));
    }

    std::optional<Objection> ask(const LineRoots& roots) {
        letGo();
        EXPECT_TRUE(trees(roots).take());
        return objectionTo(faulty, trees(roots));
    }
    void expectNone(const LineRoots& roots) {
        const auto objection = ask(roots);
        EXPECT_FALSE(objection) << objection->reason;
    }
    void expect(const LineRoots& roots, const std::string& words, const std::string& path,
                bool acceptable = false, std::uint32_t number = error_number::invalidData) {
        const auto objection = ask(roots);
        ASSERT_TRUE(objection) << words;
        EXPECT_THAT(objection->reason, HasSubstr(words));
        EXPECT_EQ(objection->path, path);
        EXPECT_EQ(objection->number, number);
        EXPECT_EQ(objection->acceptable, acceptable);
        EXPECT_EQ(objection->reason.find("--confirmer-source") != std::string::npos, acceptable);
    }
    std::string putMark(const std::string& directory) {
        std::string path = joinPath(directory, ownFileName(OwnFile::restoreMark, 5));
        disk().file(path, "");
        return path;
    }
    std::string putOther(const std::string& directory, bool complete) {
        Certificate other;
        other.original = "X:\\Autre";
        other.complete = complete;
        return putCertificate(directory, other);
    }
    std::string ownPath() { return copy + "\\" + certificates(copy).begin()->first; }

    const std::string original = "C:\\Data\\Docs";
    const std::string copy = "F:\\Save\\Docs";
    const LineRoots backup = lineRoots(original, "F:\\Save", Layout::normal);
    const LineRoots back = lineRoots(original, "F:\\Save", Layout::reversed);
};

TEST_F(Objections, ABackupOfACopyOntoItsOriginalDeletesNothingThere) {
    expect(lineRoots(copy, "C:\\Data", Layout::normal), "est la copie de " + original, original);
    // Under another letter, too.
    disk().file("D:\\Data\\Docs\\a", "a");
    disk().volume("D:\\").identity = "memory:C:\\";
    expect(lineRoots(copy, "D:\\Data", Layout::normal), "est la copie de", "D:\\Data\\Docs");
}

TEST_F(Objections, AreNoneToAPairThatWasSavedWell) {
    expectNone(backup);
    expectNone(back);
}

TEST_F(Objections, NameTheFailureOfADiskThatDoesNotGiveItsMarks) {
    disk().find(ownPath())->readError = error_number::ioDevice;
    for (const LineRoots& roots : {backup, back}) {
        expect(roots, copy + " ne peut pas être examiné.", copy, false, error_number::ioDevice);
    }
}

// ---- to a backup

TEST_F(Objections, AreNoneToABackupThatHasNoCertificateYet) {
    disk().remove(ownPath());
    expectNone(backup);
}

TEST_F(Objections, SpeakOfARestoreThatDidNotEnd) {
    const std::string mark = putMark(original);
    expect(backup, "la dernière restauration dans C:\\Data\\Docs n'a pas tout remis", original,
           true);
    disk().remove(mark);
    expectNone(backup);
}

TEST_F(Objections, SpeakOfARestoreAboveTheOriginalWithAWayOutOfItsOwn) {
    for (const std::string place : {"C:\\Data", "C:\\"}) {
        const std::string mark = putMark(place);
        expect(backup, "la dernière restauration dans " + place, place);
        EXPECT_THAT(ask(backup)->reason, HasSubstr("effacez le fichier caché"));
        disk().remove(mark);
        expectNone(backup);
    }
}

TEST_F(Objections, SpeakOfARestoreThatIsMarkedInTheCopy) {
    const std::string mark = putMark(copy);
    expect(backup, "la dernière restauration de F:\\Save\\Docs n'a pas tout remis", copy, true);
    disk().remove(mark);
    expectNone(backup);
}

TEST_F(Objections, SpeakOfAnOriginalThatIsItselfAnUnfinishedCopy) {
    for (const std::string place : {original.c_str(), "C:\\Data", "C:\\"}) {
        std::string other = putOther(place, false);
        expect(backup, place + " est elle-même une copie inachevée", place);
        other = putOther(place, true);
        expectNone(backup);
        disk().file(other, "Coffrelune 1\n");
        expect(backup, "est elle-même une copie inachevée", place);
        disk().remove(other);
        expectNone(backup);
    }
}

TEST_F(Objections, SpeakOfAnOriginalThatCannotBeExamined) {
    faulty.fail("ownFiles", original, error_number::ioDevice);
    expect(backup, "C:\\Data\\Docs ne peut pas être examiné", original, false,
           error_number::ioDevice);
    faulty.restart();
    faulty.fail("ownFiles", "C:\\Data", error_number::accessDenied);
    expectNone(backup);
}

TEST_F(Objections, SpeakOfAnotherVolumeInTheOriginalsPlace) {
    disk().volume("C:\\").identity = "another disk";
    expect(backup, "n'est pas sur le même volume que lors de la dernière sauvegarde", original,
           true);
    disk().volume("C:\\").identity = "memory:C:\\";
    expectNone(backup);
    letGo();
    disk().volume("C:\\").identity = "another disk";
    EXPECT_TRUE(trees(backup).accept().ok());
    expectNone(backup);
}

TEST_F(Objections, SpeakOfAMountPointThatShowsNothing) {
    disk().setMountPoint(original + "\\Mnt", false);
    expect(backup, "rien n'est monté dans C:\\Data\\Docs\\Mnt", original + "\\Mnt", true);
    disk().remove(original + "\\Mnt");
    expect(backup, "rien n'est monté dans C:\\Data\\Docs\\Mnt", original + "\\Mnt", true);
    EXPECT_TRUE(trees(backup).accept().ok());
    expectNone(backup);
}

TEST_F(Objections, SpeakOfAnotherPairInTheSameCopy) {
    const std::string other = putOther(copy, true);
    expect(backup, "une autre sauvegarde a sa copie au même endroit", copy);
    EXPECT_THAT(ask(backup)->reason, HasSubstr("effacez le fichier caché"));
    disk().file(other, "no certificate");
    expect(backup, "une autre sauvegarde a sa copie au même endroit", copy);
    disk().remove(other);
    expectNone(backup);
}

TEST_F(Objections, SpeakOfACopyInsideThatOfAnotherPair) {
    for (const std::string place : {"F:\\Save", "F:\\"}) {
        const std::string other = putOther(place, true);
        expect(backup, place + " est la copie d'une autre sauvegarde", copy);
        disk().remove(other);
        expectNone(backup);
    }
}

// ---- to a restore

TEST_F(Objections, AskARestoreForItsCertificate) {
    disk().remove(ownPath());
    expect(back, "rien ne dit que F:\\Save\\Docs est la copie complète de C:\\Data\\Docs", copy);
    const std::string other = putOther(copy, true);
    expect(back, "rien ne dit que", copy);
    EXPECT_TRUE(run(backup));
    disk().remove(other);
    expectNone(back);
}

TEST_F(Objections, SpeakOfARestoreFromACopyThatIsAnotherPairsToo) {
    const std::string other = putOther(copy, true);
    expect(back, copy + " est aussi la copie d'une autre sauvegarde", original);
    disk().remove(other);
    expectNone(back);
}

TEST_F(Objections, AskARestoreForACompleteCertificate) {
    Certificate open = certificate(copy);
    open.complete = false;
    putCertificate(copy, open);
    expect(back, "la dernière sauvegarde dans F:\\Save\\Docs n'a pas tout copié", copy);
    EXPECT_TRUE(run(backup));
    expectNone(back);
}

TEST_F(Objections, AskARestoreForTheVeryDirectoryOfTheBackup) {
    const Certificate good = certificate(copy);
    for (const char* self : {"", "memory:F:\\:999"}) {
        Certificate elsewhere = good;
        elsewhere.copy = self;
        putCertificate(copy, elsewhere);
        expect(back, "n'est pas le répertoire où la sauvegarde a été faite", copy);
    }
    putCertificate(copy, good);
    expectNone(back);
}

TEST_F(Objections, AskARestoreForTheVolumeThatWasSaved) {
    disk().volume("C:\\").identity = "another disk";
    expect(back, "n'est pas sur le volume qui a été sauvegardé dans F:\\Save\\Docs", copy);
    disk().volume("C:\\").identity = "memory:C:\\";
    expectNone(back);
}

TEST_F(Objections, SpeakOfARestoreIntoTheCopyOfAnotherPair) {
    for (const std::string place : {original.c_str(), "C:\\Data", "C:\\"}) {
        const std::string other = putOther(place, true);
        expect(back, place + " est la copie d'une autre sauvegarde", original);
        disk().remove(other);
        expectNone(back);
    }
}

TEST_F(Objections, AreNoneToARestoreForAMountPointThatShowsNothing) {
    disk().setMountPoint(original + "\\Mnt", false);
    expectNone(back);  // what lies below is kept by the walk
}

// ---- what becomes of them in a run

TEST_F(Objections, KeepExcessFilesAndTellTheReasonOnce) {
    system.options.SynchroCopie = -1;
    disk().file(copy + "\\gone", "x");
    disk().volume("C:\\").identity = "another disk";
    window.journal.clear();
    (void)run(backup);
    EXPECT_TRUE(disk().exists(copy + "\\gone"));
    EXPECT_TRUE(statistics.originalInDoubt);
    EXPECT_THAT(window.journal,
                testing::ElementsAre(HasSubstr("Fichiers excédentaires conservés dans " + copy),
                                     "Erreur: 13 - Fichier: " + original));
}

TEST_F(Objections, AreNotToldWhereNothingIsToBeKept) {
    system.options.SynchroCopie = -1;
    disk().volume("C:\\").identity = "another disk";
    (void)run(backup);
    EXPECT_FALSE(statistics.originalInDoubt);
    EXPECT_EQ(statistics.errorCount, 0);
}

// ---- whether excess files are deleted at all

TEST_F(Objections, AreNotEvenAskedWhereNothingIsToBeDeleted) {
    EXPECT_FALSE(mayDeleteExcess(state));
    system.options.SynchroCopie = -1;
    EXPECT_TRUE(mayDeleteExcess(state));
    system.options.ArbreMode = -1;
    EXPECT_FALSE(mayDeleteExcess(state));
    system.options.ArbreMode = 0;
    switches.keepExisting = true;
    EXPECT_FALSE(mayDeleteExcess(state));
}

}  // namespace
}  // namespace coffrelune
