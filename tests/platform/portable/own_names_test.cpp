#include "platform/own_names.h"

#include <gtest/gtest.h>

#include <string>

namespace coffrelune {
namespace {

constexpr OwnFile everyKind[] = {OwnFile::temporary, OwnFile::certificate, OwnFile::restoreMark,
                                 OwnFile::lock};

TEST(OwnFileName, HoldsItsNumberInSixteenDigits) {
    EXPECT_EQ(ownFileName(OwnFile::temporary, 0), ".~coffrelune-0000000000000000.tmp");
    EXPECT_EQ(ownFileName(OwnFile::temporary, 0x0123456789ABCDEF),
              ".~coffrelune-0123456789abcdef.tmp");
    EXPECT_EQ(ownFileName(OwnFile::temporary, ~std::uint64_t{0}),
              ".~coffrelune-ffffffffffffffff.tmp");
}

TEST(OwnFileName, EndsAsItsKindDoes) {
    EXPECT_EQ(ownFileName(OwnFile::certificate, 10), ".~coffrelune-000000000000000a.copie");
    EXPECT_EQ(ownFileName(OwnFile::restoreMark, 10), ".~coffrelune-000000000000000a.restauration");
    EXPECT_EQ(ownFileName(OwnFile::lock, 10), ".~coffrelune-000000000000000a.verrou");
}

TEST(OwnFileName, TellsItsKind) {
    for (const OwnFile kind : everyKind) {
        const std::string name = ownFileName(kind, 0xFEDCBA9876543210);
        EXPECT_EQ(ownFileKind(name), kind) << name;
        EXPECT_EQ(isTemporaryName(name), kind == OwnFile::temporary) << name;
    }
}

TEST(OwnFileName, IsRecognisedAndNothingLikeItIs) {
    for (const OwnFile kind : everyKind) {
        const std::string name = ownFileName(kind, 0xFEDCBA9876543210);
        EXPECT_FALSE(ownFileKind(name + "x"));
        EXPECT_FALSE(ownFileKind("x" + name));
        EXPECT_FALSE(ownFileKind(name.substr(1)));
        EXPECT_FALSE(ownFileKind(name.substr(0, name.size() - 1)));
        for (std::size_t i = 0; i < name.size(); ++i) {
            std::string changed = name;
            changed[i] = 'Z';
            EXPECT_FALSE(ownFileKind(changed)) << changed;
        }
    }
}

TEST(OwnFileName, IsNoShorterText) {
    for (const char* text : {"", ".~coffrelune-", ".~coffrelune-.tmp", ".~coffrelune-0123.copie",
                             ".~coffrelune-0123456789abcdef"}) {
        EXPECT_FALSE(ownFileKind(text)) << text;
    }
}

}  // namespace
}  // namespace coffrelune
