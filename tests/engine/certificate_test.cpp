#include "engine/certificate.h"

#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

Certificate sample() {
    return {R"(C:\Docs)",
            "uuid:1234-ABCD",
            R"(\Docs)",
            "uuid:5678:42",
            {ExclusionMode::listed, {R"(\Tmp)", "Été"}},
            {R"(Mnt)", R"(Sub\Mnt)"},
            true};
}

// ---- the text

TEST(CertificateText, ComesBackWhole) {
    for (const bool complete : {true, false}) {
        Certificate certificate = sample();
        certificate.complete = complete;
        EXPECT_EQ(readCertificate(certificateText(certificate)), certificate);
    }
}

TEST(CertificateText, HasALineForEachFactAndAnEnd) {
    EXPECT_EQ(certificateText(sample()),
              "Coffrelune 1\netat=complete\noriginal=C:\\Docs\nvolume=uuid:1234-ABCD\n"
              "chemin=\\Docs\ncopie=uuid:5678:42\nsous-repertoires=2\nexclu=\\Tmp\nexclu=Été\n"
              "montage=Mnt\nmontage=Sub\\Mnt\nfin\n");
}

TEST(CertificateText, HoldsWhatSystemsTellNothingStableOf) {
    Certificate certificate;
    certificate.original = "C:\\";
    EXPECT_EQ(readCertificate(certificateText(certificate)), certificate);
}

TEST(CertificateText, HoldsLineEndsEqualsSignsAndRawBytes) {
    const std::string odd = std::string("C:\\a\nfin\r\nb=c\0d\xFF\xE9", 17) + " é ";
    Certificate certificate = sample();
    certificate.original = certificate.pathOnVolume = certificate.volume = odd;
    certificate.copy = odd;
    certificate.exclusions.directories = {odd, "", "=", "\n"};
    certificate.mounts = {odd, "fin", "\nfin\n"};
    EXPECT_EQ(readCertificate(certificateText(certificate)), certificate);
}

TEST(CertificateText, KeepsAModeOfExclusionsThatNobodyKnows) {
    for (const int mode : {0, 1, 3, 255, -1}) {
        Certificate certificate = sample();
        certificate.exclusions.mode = static_cast<ExclusionMode>(mode);
        EXPECT_EQ(readCertificate(certificateText(certificate)), certificate) << mode;
    }
}

TEST(CertificateText, SaysNothingWhenItIsCutShortAnywhere) {
    const std::string text = certificateText(sample());
    for (std::size_t size = 0; size + 1 < text.size(); ++size) {
        EXPECT_EQ(readCertificate(text.substr(0, size)), std::nullopt) << size;
    }
}

TEST(CertificateText, SaysNothingWithLinesThatThisProgramDoesNotKnow) {
    const std::string text = certificateText(sample());
    const std::string end = "fin\n";
    const std::string whole = text.substr(0, text.size() - end.size());
    for (const char* line : {"quota=12\n", "Etat=complete\n", "=x\n", "\n", "montage\n", " \n"}) {
        EXPECT_EQ(readCertificate(std::string(whole).append(line).append(end)), std::nullopt)
            << line;
    }
    for (const char* more : {"x", "\n", "fin\n", "exclu=Sub\n"}) {
        EXPECT_EQ(readCertificate(text + more), std::nullopt) << more;
    }
}

TEST(CertificateText, SaysNothingUnderAnotherHeading) {
    const std::string text = certificateText(sample());
    const std::string facts = text.substr(text.find('\n'));
    for (const char* heading :
         {"", "Coffrelune", "Coffrelune 2", "Coffrelune 1\r", "coffrelune 1"}) {
        EXPECT_EQ(readCertificate(heading + facts), std::nullopt) << heading;
    }
    EXPECT_EQ(readCertificate(""), std::nullopt);
}

TEST(CertificateText, SaysNothingWithoutAnOriginal) {
    EXPECT_EQ(readCertificate("Coffrelune 1\netat=complete\nfin\n"), std::nullopt);
    EXPECT_EQ(readCertificate(certificateText({})), std::nullopt);
}

TEST(CertificateText, SaysNothingWithAModeThatIsNoNumber) {
    for (const char* mode : {"", "x", "2x", " 2", "99999999999"}) {
        EXPECT_EQ(readCertificate("Coffrelune 1\noriginal=C:\\\nsous-repertoires=" +
                                  std::string(mode) + "\nfin\n"),
                  std::nullopt)
            << mode;
    }
}

TEST(CertificateText, IsCompleteOnlyByThatVeryWord) {
    for (const char* state : {"", "inachevee", "Complete", "complete ", "completee"}) {
        const auto read =
            readCertificate("Coffrelune 1\noriginal=C:\\\netat=" + std::string(state) + "\nfin\n");
        ASSERT_TRUE(read) << state;
        EXPECT_FALSE(read->complete) << state;
    }
    const auto untold = readCertificate("Coffrelune 1\noriginal=C:\\\nfin\n");
    ASSERT_TRUE(untold);
    EXPECT_FALSE(untold->complete);
}

// ---- the number of a place

TEST(PlaceNumber, IsTheSameInEveryRun) {
    EXPECT_EQ(placeNumber(""), 0xCBF29CE484222325U);
    EXPECT_EQ(placeNumber("a"), 0xAF63DC4C8601EC8CU);
    EXPECT_EQ(placeNumber("foobar"), 0x85944171F73967E8U);
}

TEST(PlaceNumber, TellsPlacesApart) {
    EXPECT_NE(placeNumber("C:\\Docs"), placeNumber("C:\\docs"));
    EXPECT_NE(placeNumber("C:\\Docs"), placeNumber("D:\\Docs"));
    EXPECT_NE(placeNumber("\xE9"), placeNumber("\x69"));
}

// ---- the directories above

TEST(Ancestors, AreAllDirectoriesAboveUpToTheDrive) {
    EXPECT_THAT(ancestorsOf(R"(C:\A\B\C)"), ElementsAre(R"(C:\A\B)", R"(C:\A)", R"(C:\)"));
    EXPECT_THAT(ancestorsOf(R"(C:\A\)"), ElementsAre(R"(C:\)"));
}

TEST(Ancestors, EndAtTheShare) {
    EXPECT_THAT(ancestorsOf(R"(\\nas\photos\Mai)"), testing::Contains(R"(\\nas\photos)"));
    for (const std::string& path : ancestorsOf(R"(\\nas\photos\Mai)")) {
        EXPECT_GT(path.size(), 2U) << path;
    }
}

TEST(Ancestors, AreNoneOfWhatIsARootOrNoPath) {
    for (const char* path : {R"(C:\)", "C:", "", R"(\)", R"(\\)", "name"}) {
        EXPECT_THAT(ancestorsOf(path), testing::Each(testing::Not(testing::StrEq(path)))) << path;
    }
    EXPECT_THAT(ancestorsOf(R"(C:\)"), IsEmpty());
}

// ---- the marks of a directory

class Marks : public Engine {
  protected:
    DirectoryMarks read() {
        DirectoryMarks marks;
        EXPECT_TRUE(readMarks(faulty, R"(F:\Docs)", marks).ok());
        return marks;
    }
    std::string put(OwnFile kind, std::uint64_t number, const std::string& content) {
        std::string name = ownFileName(kind, number);
        disk().file(R"(F:\Docs\)" + name, content);
        return name;
    }
};

TEST_F(Marks, AreNoneAmongTheFilesOfOthers) {
    disk().file(R"(F:\Docs\a.txt)", certificateText(sample()));
    disk().file(R"(F:\Docs\.~coffrelune-12.copie)", certificateText(sample()));
    disk().leftover(R"(F:\Docs)");
    put(OwnFile::lock, 1, "");
    EXPECT_TRUE(read().empty());
}

TEST_F(Marks, AreToldByTheirKinds) {
    const std::string whole = put(OwnFile::certificate, 1, certificateText(sample()));
    const std::string broken = put(OwnFile::certificate, 2, "Coffrelune 1\n");
    const std::string mark = put(OwnFile::restoreMark, 3, "whatever");
    const DirectoryMarks marks = read();
    ASSERT_THAT(marks.certificates, SizeIs(1));
    EXPECT_EQ(marks.certificates[0].name, whole);
    EXPECT_EQ(marks.certificates[0].certificate, sample());
    EXPECT_THAT(marks.unreadable, ElementsAre(broken));
    EXPECT_THAT(marks.restoreMarks, ElementsAre(mark));
    EXPECT_FALSE(marks.empty());
}

TEST_F(Marks, AreUnreadableWhenTheFileCannotBeReadOrIsTooLarge) {
    const std::string denied = put(OwnFile::certificate, 1, certificateText(sample()));
    disk().setUnreadable(R"(F:\Docs\)" + denied);
    const std::string large = put(OwnFile::certificate, 2, certificateText(sample()));
    disk().find(R"(F:\Docs\)" + large)->hole = std::uint64_t{1} << 40;
    EXPECT_THAT(read().unreadable, ElementsAre(denied, large));
}

TEST_F(Marks, FailWhenTheDirectoryCannotBeListed) {
    put(OwnFile::certificate, 1, certificateText(sample()));
    DirectoryMarks marks = read();
    faulty.fail("ownFiles", R"(F:\Docs)", error_number::ioDevice);
    EXPECT_EQ(readMarks(faulty, R"(F:\Docs)", marks).code(), error_number::ioDevice);
    EXPECT_TRUE(marks.empty()) << "nothing is left of what was read before";
}

}  // namespace
}  // namespace coffrelune
