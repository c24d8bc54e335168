// Copies that are read alone, for a list of what they hold.
#include "engine/hash_list.h"
#include "operation/memory_contents.h"
#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A hash that a reader of the test can compute: the length and the last byte.
class PlainHash final : public ContentHash {
  public:
    void start() override { text_.clear(); }
    void add(std::span<const char> bytes) override { text_.append(bytes.data(), bytes.size()); }
    std::string text() override {
        return std::to_string(text_.size()) + (text_.empty() ? "" : text_.substr(text_.size() - 1));
    }

  private:
    std::string text_;
};

class Hashing : public OperationTest {
  protected:
    Hashing() {
        system.Confirmation = 1;
        (void)launch(RunMode::unattended);
        system.operationKind = OperationKind::comparison;
        events.clear();
    }

    RunEnd run(bool checks) {
        work_.checks = checks;
        launcher = std::make_unique<OperationLauncher>(system, host, stage);
        return launcher->launchHashing(contents_, work_);
    }
    Events found() {
        Events lines;
        for (std::size_t i = 0; i < host.comparisonList().lineCount(); ++i) {
            const std::string line(host.comparisonList().line(i));
            if (!line.starts_with("*")) lines.push_back(line);
        }
        return lines;
    }
    std::string hashOf(int line, const std::string& path) {
        const auto file = list_[line].files.find(path);
        return file == list_[line].files.end() ? "(none)" : file->second.hash;
    }
    /// Other bytes with the date that the file has.
    void damage(const std::string& path, const std::string& content) {
        FileEntry entry;
        ASSERT_TRUE(memory.files().lookUp(path, LinkRule::refuse, entry).ok());
        disk().file(path, content, entry.times.lastWrite);
    }

    HashList list_;

  private:
    MemoryContents contents_{memory.files()};
    PlainHash hash_;

  protected:
    HashWork work_{hash_, list_, false, {}};
};

TEST_F(Hashing, ListsEveryFileOfEveryCopy) {
    EXPECT_EQ(run(false), RunEnd::finished);
    EXPECT_EQ(list_.at(0).root, R"(F:\Save\Docs\)");
    EXPECT_EQ(list_.at(0).files.size(), 2U);
    EXPECT_EQ(list_.at(1).files.size(), 1U);
    EXPECT_EQ(hashOf(0, R"(Sub\b.txt)").front(), '3');
    EXPECT_EQ(launcher->statistics().errorCount, 0);
}

TEST_F(Hashing, FindsNothingInACopyThatIsAsItWas) {
    (void)run(false);
    EXPECT_EQ(run(true), RunEnd::finished);
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_EQ(host.comparisonSummary().caption(), "3 fichier(s) lu(s), 0 différence(s)");
}

TEST_F(Hashing, FindsWhatIsOtherOrGone) {
    (void)run(false);
    damage(R"(F:\Save\Docs\Sub\b.txt)", "b0X");
    ASSERT_TRUE(memory.files().removeFile(R"(F:\Save\Docs\a.txt)").ok());
    disk().file(R"(F:\Save\Docs\new.txt)", "new");
    (void)run(true);
    EXPECT_THAT(found(), ElementsAre(R"(F:\Save\Docs\Sub\b.txt est différent, à la même date)",
                                     R"(F:\Save\Docs\a.txt n'existe pas)"));
    EXPECT_EQ(launcher->statistics().errorCount, 2);
}

TEST_F(Hashing, NeedsNoOriginal) {
    (void)run(false);
    disk().remove(R"(C:\Docs)");
    (void)run(true);
    EXPECT_THAT(found(), IsEmpty());
    EXPECT_THAT(launcher->statistics().errors, IsEmpty());
}

TEST_F(Hashing, DoesNotTakeADamageOfTheSameDateForRight) {
    (void)run(false);
    const std::string before = hashOf(0, R"(Sub\b.txt)");
    damage(R"(F:\Save\Docs\Sub\b.txt)", "b0X");
    (void)run(false);
    EXPECT_EQ(hashOf(0, R"(Sub\b.txt)"), before);
}

TEST_F(Hashing, ReadsAgainWhatHasAnotherDate) {
    (void)run(false);
    disk().file(R"(F:\Save\Docs\Sub\b.txt)", "12345Z");
    (void)run(false);
    EXPECT_EQ(hashOf(0, R"(Sub\b.txt)"), "6Z");
}

TEST_F(Hashing, ForgetsWhatTheCopyHasLost) {
    (void)run(false);
    ASSERT_TRUE(memory.files().removeFile(R"(F:\Save\Docs\a.txt)").ok());
    (void)run(false);
    EXPECT_EQ(hashOf(0, "a.txt"), "(none)");
}

TEST_F(Hashing, VouchesForNothingThatWasFoundDifferent) {
    work_.suspects.insert(R"(F:\Save\Docs\a.txt)");
    (void)run(false);
    EXPECT_EQ(hashOf(0, "a.txt"), "(none)");
}

TEST_F(Hashing, KeepsWhatItKnowsOfACopyThatIsNotThere) {
    (void)run(false);
    disk().remove(R"(F:\Save\Docs)");
    (void)run(false);
    EXPECT_EQ(list_.at(0).files.size(), 2U);
    EXPECT_EQ(launcher->statistics().errors.size(), 1U);
}

TEST_F(Hashing, LeavesNoResultAndChangesNothing) {
    const Events before = filesBelow(R"(F:\)");
    (void)run(false);
    (void)run(true);
    EXPECT_EQ(filesBelow(R"(F:\)"), before);
    EXPECT_EQ(setting("Travail", "LastComp"), "");
    EXPECT_EQ(setting("Travail", "LastCompErr"), "");
}

}  // namespace
}  // namespace coffrelune
