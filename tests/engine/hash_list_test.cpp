#include "engine/hash_list.h"

#include <gtest/gtest.h>

namespace coffrelune {
namespace {

HashList someList() {
    HashList list;
    list[0] = {R"(F:\Save\Docs\)",
               {{"a.txt", {"0123456789abcdef", 5, 133000000000000000}},
                {"Sub\\b\nc%.txt", {"ffffffffffffffff", 0, 1}}}};
    list[2] = {R"(G:\)", {}};
    return list;
}

TEST(HashList, ComesBackAsItWas) {
    EXPECT_EQ(readHashList(hashListText(someList())), someList());
    EXPECT_EQ(readHashList(hashListText({})), HashList());
}

TEST(HashList, IsATextWithOneFileALine) {
    EXPECT_EQ(hashListText(someList()),
              "Coffrelune, empreintes 1\n"
              "ligne 1 F:\\Save\\Docs\\\n"
              "ffffffffffffffff 0 1 Sub\\b%0ac%25.txt\n"
              "0123456789abcdef 5 133000000000000000 a.txt\n"
              "ligne 3 G:\\\n"
              "fin 2\n");
}

TEST(HashList, IsNotReadInPart) {
    const std::string whole = hashListText(someList());
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_FALSE(readHashList(whole.substr(0, size))) << size;
    }
    EXPECT_FALSE(readHashList(whole + "x"));
}

TEST(HashList, IsNothingElse) {
    const std::string start = "Coffrelune, empreintes 1\n";
    EXPECT_FALSE(readHashList("mon journal\n"));
    EXPECT_FALSE(readHashList(start + "0123456789abcdef 5 1 a\nfin 1\n")) << "of no line";
    EXPECT_FALSE(readHashList(start + "ligne 0 F:\\\nfin 0\n"));
    EXPECT_FALSE(readHashList(start + "ligne 1 F:\\\nligne 1 F:\\\nfin 0\n"));
    EXPECT_FALSE(readHashList(start + "ligne 1 F:\\\n0123456789ABCDEF 5 1 a\nfin 1\n"));
    EXPECT_FALSE(readHashList(start + "ligne 1 F:\\\n0123456789abcdef -5 1 a\nfin 1\n"));
    EXPECT_FALSE(readHashList(start + "ligne 1 F:\\\n0123456789abcdef 5 1 a%2\nfin 1\n"));
    EXPECT_FALSE(readHashList(start + "ligne 1 F:\\\nfin 1\n")) << "a file is missing";
}

}  // namespace
}  // namespace coffrelune
