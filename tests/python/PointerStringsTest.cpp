// Pointer strings: encoding, decoding with a type check, and which type names stand for others.
//
// The table of types is the process's: under ctest each test has a process of its own, and each uses names that no
// other one does.
#include "wrapping/PointerStrings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

struct Decoded {
    bool accepted;
    std::uintptr_t address;
};

Decoded decoded(const std::string& text, const char* expected)
{
    void* address = &address;
    const bool accepted = pointers::decode(text.c_str(), expected, address);
    return {accepted, reinterpret_cast<std::uintptr_t>(address)};
}

bool accepts(const std::string& text, const char* expected)
{
    return decoded(text, expected).accepted;
}

void stands(const char* type, const std::string& equivalent, pointers::Conversion conversion = nullptr)
{
    pointers::registerType(type, equivalent.c_str(), conversion);
}

void* plus8(void* address)
{
    return static_cast<char*>(address) + 8;
}
void* plus16(void* address)
{
    return static_cast<char*>(address) + 16;
}

TEST(PointerStrings, NullHasNoTypeUnlessItIsKept)
{
    EXPECT_EQ(pointers::encode(nullptr, "_int_p"), "NULL");
    EXPECT_EQ(pointers::encodeTyped(0, "_int_p"), "_0_int_p");
    EXPECT_EQ(pointers::encodeTyped(0x1A2B3C, "_int_p"), "_1a2b3c_int_p");
}

TEST(PointerStrings, AddressIsReadWhateverTheTypeIs)
{
    EXPECT_TRUE(accepts("_1A", nullptr));
    EXPECT_EQ(decoded("_1A", nullptr).address, 26u);
    EXPECT_TRUE(accepts("NULL", "_any_p"));
    EXPECT_EQ(decoded("NULL", "_any_p").address, 0u);
    EXPECT_FALSE(accepts("_1a_x_p", "_y_p"));
    EXPECT_EQ(decoded("_1a_x_p", "_y_p").address, 26u);
    EXPECT_FALSE(accepts("x", nullptr));
    EXPECT_EQ(decoded("x", nullptr).address, 0u);
}

TEST(PointerStrings, AnEquivalentStandsForItsTypeOneWayAndOneStepOnly)
{
    stands("_n0a", "_n0b");
    stands("_n0b", "_n0c");
    EXPECT_TRUE(accepts("_1_n0b_p", "_n0a_p"));
    EXPECT_FALSE(accepts("_1_n0a_p", "_n0b_p"));
    EXPECT_FALSE(accepts("_1_n0c_p", "_n0a_p"));
}

// "_n1aca" is found behind "_n1a" and "_n1ab", of which the second is no prefix of the expected name.
TEST(PointerStrings, TheSearchGoesOnPastNamesThatAreNoPrefix)
{
    stands("_n1a", "_n1x");
    stands("_n1ab", "_n1y");
    stands("_n1aca", "_n1z");
    EXPECT_TRUE(accepts("_1_n1zd", "_n1acad"));
}

// The index goes by the second character: the name "_" is no beginning of "_int_p" for it.
TEST(PointerStrings, TheSearchBeginsAtTheSecondCharacter)
{
    stands("_", "_n2x");
    stands("_n2int", "_n2y");
    EXPECT_FALSE(accepts("_10_n2xn2int_p", "_n2int_p"));
    EXPECT_TRUE(accepts("_10_n2y_p", "_n2int_p"));
}

// Names are tried in byte order: "_n3d" before "_n3doub". An equivalent of 255 characters ends the search, and a new
// one empties the cache, so that what was accepted before no longer is.
TEST(PointerStrings, AnEquivalentOf255CharactersEndsTheSearch)
{
    stands("_n3doub", "_n3q");
    EXPECT_TRUE(accepts("_10_n3qle_p", "_n3double_p"));
    stands("_n3d", "_" + std::string(254, 'l'));
    EXPECT_FALSE(accepts("_10_n3qle_p", "_n3double_p"));
}

TEST(PointerStrings, AnEquivalentOf255CharactersBehindTheOneSoughtDoesNot)
{
    stands("_n4d", "_n4q");
    stands("_n4doub", "_" + std::string(254, 'l'));
    EXPECT_TRUE(accepts("_10_n4qouble_p", "_n4double_p"));
}

// An equivalent of 254 characters leaves room for one more of "ouble_p".
TEST(PointerStrings, ACandidateIsCutAt255Characters)
{
    const std::string name = "_" + std::string(253, 'l');
    stands("_n5d", name);
    EXPECT_FALSE(accepts("_10" + name + "ouble_p", "_n5double_p"));
    EXPECT_TRUE(accepts("_10" + name + "o", "_n5double_p"));
}

TEST(PointerStrings, WhatWasFoundForOneTypeIsNotFoundForAnother)
{
    stands("_n6a", "_n6b");
    stands("_n6c", "_n6d");
    EXPECT_TRUE(accepts("_1_n6b_p", "_n6a_p"));
    EXPECT_FALSE(accepts("_1_n6b_p", "_n6c_p"));
    EXPECT_FALSE(accepts("_1_n6d_p", "_n6a_p"));
}

TEST(PointerStrings, MoreTypesThanTheCacheHoldsAreFoundAgainAndAgain)
{
    for (int i = 0; i < 30; ++i)
        stands("_n7a", "_n7b" + std::to_string(i));
    for (int round = 0; round < 3; ++round)
        for (int i = 0; i < 30; ++i)
            EXPECT_TRUE(accepts("_1_n7b" + std::to_string(i) + "_p", "_n7a_p")) << i;
}

// 16 + 8 = 24, found first in the table and then in the cache; the type itself is not converted.
TEST(PointerStrings, AnEquivalentIsConvertedEachTime)
{
    stands("_n8a", "_n8b", plus8);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(decoded("_10_n8b_p", "_n8a_p").address, 24u);
    EXPECT_EQ(decoded("_10_n8a_p", "_n8a_p").address, 16u);
}

TEST(PointerStrings, AConversionIsReplacedByAnotherAndKeptByNone)
{
    stands("_n9a", "_n9b", plus8);
    EXPECT_EQ(decoded("_10_n9b_p", "_n9a_p").address, 24u);
    stands("_n9a", "_n9b", plus16);
    EXPECT_EQ(decoded("_10_n9b_p", "_n9a_p").address, 32u);
    stands("_n9a", "_n9b");
    EXPECT_EQ(decoded("_10_n9b_p", "_n9a_p").address, 32u);

    stands("_n9c", "_n9d", plus8);
    stands("_n9c", "_n9d");
    EXPECT_EQ(decoded("_10_n9d_p", "_n9c_p").address, 24u);
}

}   // namespace
