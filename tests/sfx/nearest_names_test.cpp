// Which names are near to what was typed.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "sfx/Words.h"

namespace {

std::string Nearest(std::string_view typed, const std::vector<std::string_view>& names) {
    std::string text;
    for (const std::string_view name : sfx::NearestNames(typed, names)) {
        text += text.empty() ? "" : " ";
        text += name;
    }
    return text;
}

TEST(NearestNames, HoldWhatWasTyped) {
    EXPECT_EQ(Nearest("pen", {"spend", "pencil"}), "pencil spend");
    EXPECT_EQ(Nearest("Pen 2", {"pen-2"}), "pen-2");
}

TEST(NearestNames, AreAFewLettersAway) {
    EXPECT_EQ(Nearest("cloud", {"aloud", "clous"}), "aloud clous");
    // A letter too much, a letter missing and a wrong letter count alike: two of each are near, three are
    // not.
    EXPECT_EQ(Nearest("rain", {"rai", "ra", "r"}), "rai ra");
    EXPECT_EQ(Nearest("rain", {"trxain", "traxinx"}), "trxain");
    EXPECT_EQ(Nearest("rain", {"roon", "rooo"}), "roon");
    EXPECT_EQ(Nearest("rain", {"ri", "ruin", "drawn"}), "ruin ri drawn");
}

TEST(NearestNames, MayBeFartherFromALongerText) {
    EXPECT_EQ(Nearest("abcdefgh", {"abcdxxxx", "abcxxxxx"}), "abcdxxxx");
    EXPECT_EQ(Nearest(std::string(64, 'a'), {std::string_view("aaa")}), "");
    const std::string name(63, 'a');
    EXPECT_EQ(Nearest(std::string(64, 'a'), {name}), name);
    EXPECT_EQ(Nearest(std::string(65, 'a'), {name}), "");
}

TEST(NearestNames, AreThreeAtMost) {
    EXPECT_EQ(Nearest("ab", {"a1", "a2", "ab", "a3", "a4"}), "ab a1 a2");
}

}  // namespace
