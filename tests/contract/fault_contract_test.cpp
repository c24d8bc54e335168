// Every call of a real disk fails once, in each of many runs: nothing is damaged, nothing is missed
// in silence, and the next run makes all right.
#include "contract/contract_fixture.h"
#include "engine/engine_fixture.h"

namespace coffrelune {
namespace {

const std::vector<std::string> files = {"a", "b", "Sub\\c", "Sub\\Deep\\d"};

std::string contentOf(const std::string& path, bool isNew) {
    return (isNew ? "new content of " : "old ") + path;
}

class FaultContract : public Contract {
  protected:
    /// The trees of one run, at a place of their own; gives the root of the original.
    std::string plant(std::uint64_t number, bool inStep) {
        const std::string place = std::to_string(number) + (inStep ? "s" : "n");
        destination_ = system().secondDrive() + place;
        copy_ = destination_ + "\\Docs";
        std::string original = at(place) + "\\Docs";
        system().makeDirectory(at(place));
        system().makeDirectory(destination_);
        plantTree(original, true);
        if (!inStep) return original;
        plantTree(copy_, false);
        system().makeDirectory(copy_ + "\\Gone");
        system().makeFile(copy_ + "\\Gone\\g", "gone", oldTime);
        return original;
    }

    void plantTree(const std::string& root, bool isNew) {
        for (const char* below : {"", "\\Sub", "\\Sub\\Deep"}) system().makeDirectory(root + below);
        for (const std::string& path : ::coffrelune::files) {
            system().makeFile(joinPath(root, path), contentOf(path, isNew),
                              isNew ? newTime : oldTime);
        }
    }

    std::size_t missingCopies() {
        std::size_t missing = 0;
        for (const std::string& path : ::coffrelune::files) {
            missing += system().content(joinPath(copy_, path)) != contentOf(path, true) ? 1 : 0;
        }
        return missing;
    }

    void expectWhole(const std::string& original, bool inStep) {
        for (const std::string& path : ::coffrelune::files) {
            EXPECT_EQ(system().content(joinPath(original, path)), contentOf(path, true));
            const std::string copy = joinPath(copy_, path);
            const std::optional<std::string> content = system().content(copy);
            EXPECT_TRUE(content || !inStep) << copy << " is gone";
            if (!content) continue;
            const bool isNew = content == contentOf(path, true);
            EXPECT_TRUE(isNew || (inStep && content == contentOf(path, false))) << *content;
            EXPECT_EQ(entry(copy).times.lastWrite, isNew ? newTime : oldTime) << copy;
        }
    }

    void expectNoProof() {
        DirectoryMarks marks;
        ASSERT_TRUE(readMarks(Contract::files(), copy_, marks).ok());
        for (const auto& one : marks.certificates) {
            EXPECT_FALSE(one.certificate.complete) << "says more than the copy holds";
        }
    }

    std::unique_ptr<EngineBench> bench(bool inStep) {
        auto made = std::make_unique<EngineBench>(Contract::files(), system().drives());
        made->system.options.ContinueOnError = -1;
        made->system.options.SynchroCopie = inStep ? -1 : 0;
        return made;
    }

    /// Fails one call of a run; false when the run has no call of that number.
    bool failOne(std::uint64_t number, std::uint32_t code, bool inStep) {
        const std::string original = plant(number, inStep);
        const auto run = bench(inStep);
        run->faulty.failCall(number, code);
        const bool settled = run->run(original, destination_);
        if (run->faulty.failureCount() == 0) return false;
        SCOPED_TRACE(std::to_string(number) + ": " + run->faulty.calls()[number - 1]);
        expectWhole(original, inStep);
        if (missingCopies() > 0) {
            EXPECT_FALSE(settled);
            EXPECT_TRUE(run->statistics.errorCount > 0 || run->control.interruptionRequested)
                << "missed in silence";
            if (exists(copy_)) expectNoProof();
        }
        const auto next = bench(inStep);
        EXPECT_TRUE(next->run(original, destination_));
        EXPECT_EQ(next->statistics.errorCount, 0);
        EXPECT_EQ(missingCopies(), 0U);
        return true;
    }

    /// Every call, with one code and then with another.
    void sweep(bool inStep) {
        constexpr std::uint32_t codes[] = {error_number::accessDenied, error_number::ioDevice};
        std::uint64_t number = 1;
        while (failOne(number, codes[number % 2], inStep)) ++number;
        EXPECT_GT(number, 60U) << "the last call that could fail was among the first";
        RecordProperty("calls", static_cast<int>(number - 1));
    }

    std::string destination_;
    std::string copy_;
};

TEST_P(FaultContract, ANewCopyIsNeverDamagedNorMissedInSilence) {
    sweep(false);
}

TEST_P(FaultContract, ACopyThatIsReplacedIsNeverDamagedNorMissedInSilence) {
    sweep(true);
}

INSTANTIATE_TEST_SUITE_P(On, FaultContract, testing::ValuesIn(contractSystems()), contractName);

}  // namespace
}  // namespace coffrelune
