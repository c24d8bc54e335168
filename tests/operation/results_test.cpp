#include "operation/results.h"

#include "operation/operation_fixture.h"

namespace coffrelune {
namespace {

using testing::ElementsAre;

struct Keys {
    OperationKind kind;
    const char* suffix;
};

class StoredResult : public OperationTest, public testing::WithParamInterface<Keys> {
  protected:
    StoredResult() {
        system.operationKind = GetParam().kind;
        system.duration = "00:01:23";
        system.errorCount = 7;
        clock().set({2025, 2, 3, 4, 5, 6, 789});
    }
    std::string last(const std::string& before, const std::string& after = {}) {
        return setting("Travail", "Last" + before + GetParam().suffix + after);
    }
    std::string wholeFile() {
        return disk().content(R"(C:\Coffrelune\Coffrelune.ini)").value_or("(none)");
    }
};

TEST_P(StoredResult, OfACleanRunIsDateAndDuration) {
    StoreResult(system, host, true);
    EXPECT_EQ(last(""), "03/02/2025 04:05:06");
    EXPECT_EQ(last("Duree"), "00:01:23");
    const std::string suffix = GetParam().suffix;
    EXPECT_EQ(wholeFile(), "[Travail]\r\nLast" + suffix + "=03/02/2025 04:05:06\r\nLastDuree" +
                               suffix + "=00:01:23\r\n");
}

TEST_P(StoredResult, OfARunWithErrorsIsDateDurationAndCount) {
    StoreResult(system, host, false);
    EXPECT_EQ(last("", "Err"), "03/02/2025 04:05:06");
    EXPECT_EQ(last("Duree", "Err"), "00:01:23");
    EXPECT_EQ(last("", "NbErr"), "7");
    const std::string suffix = GetParam().suffix;
    EXPECT_EQ(wholeFile(), "[Travail]\r\nLast" + suffix + "Err=03/02/2025 04:05:06\r\nLastDuree" +
                               suffix + "Err=00:01:23\r\nLast" + suffix + "NbErr=7\r\n");
}

TEST_P(StoredResult, IsInMemoryAsWell) {
    StoreResult(system, host, true);
    system.duration = "00:00:02";
    StoreResult(system, host, false);
    const LastResult& result = system.lastResult(GetParam().kind);
    EXPECT_EQ(result.cleanDate, "03/02/2025 04:05:06");
    EXPECT_EQ(result.cleanDuration, "00:01:23");
    EXPECT_EQ(result.errorDate, "03/02/2025 04:05:06");
    EXPECT_EQ(result.errorDuration, "00:00:02");
    EXPECT_EQ(result.errorCount, 7);
}

TEST_P(StoredResult, OfACleanRunLeavesThatOfARunWithErrors) {
    StoreResult(system, host, false);
    clock().advanceSeconds(60);
    StoreResult(system, host, true);
    EXPECT_EQ(last("", "Err"), "03/02/2025 04:05:06");
    EXPECT_EQ(last(""), "03/02/2025 04:06:06");
}

TEST_P(StoredResult, RefreshesTheSummaryOfItsKind) {
    StoreResult(system, host, true);
    EXPECT_THAT(events, ElementsAre("stored " + std::to_string(static_cast<int>(GetParam().kind))));
}

TEST_P(StoredResult, StaysInMemoryWhenTheSettingsCannotBeWritten) {
    faults.fail("writeWhole", "", error_number::writeProtect);
    StoreResult(system, host, true);
    EXPECT_EQ(wholeFile(), "(none)");
    EXPECT_EQ(system.lastResult(GetParam().kind).cleanDate, "03/02/2025 04:05:06");
    EXPECT_EQ(events.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Kinds, StoredResult,
                         testing::Values(Keys{OperationKind::backup, "Save"},
                                         Keys{OperationKind::restore, "Rest"},
                                         Keys{OperationKind::comparison, "Comp"}),
                         [](const auto& tested) { return tested.param.suffix; });

}  // namespace
}  // namespace coffrelune
