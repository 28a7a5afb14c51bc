// Conversion between UTF-16 and UTF-8: whole, truncated and malformed texts.
#include "framework/TextBridge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Wide.h"

namespace {

using WideString = std::basic_string<WideChar>;

constexpr char32_t kReplacement = 0xFFFD;

// The definitions of the two encodings, one character at a time.
std::string Utf8(char32_t c) {
    const auto tail = [c](int shift) { return static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
    if (c < 0x80) return {static_cast<char>(c)};
    if (c < 0x800) return {static_cast<char>(0xC0 | c >> 6), tail(0)};
    if (c < 0x10000) return {static_cast<char>(0xE0 | c >> 12), tail(6), tail(0)};
    return {static_cast<char>(0xF0 | c >> 18), tail(12), tail(6), tail(0)};
}

WideString Utf16(char32_t c) {
    if (c < 0x10000) return {static_cast<WideChar>(c)};
    return {static_cast<WideChar>(0xD800 + ((c - 0x10000) >> 10)),
            static_cast<WideChar>(0xDC00 + ((c - 0x10000) & 0x3FF))};
}

std::pair<std::string, WideString> InBothEncodings(const std::u32string& characters) {
    std::pair<std::string, WideString> texts;
    for (const char32_t c : characters) {
        texts.first += Utf8(c);
        texts.second += Utf16(c);
    }
    return texts;
}

// Converts into a buffer of exactly `size` characters on the heap and gives back the text.
std::string Narrow(const WideString& wide, size_t size = kTextCapacity) {
    std::vector<char> buffer(size, '#');
    NarrowFromWide(wide.c_str(), buffer.data(), size);
    EXPECT_NE(std::find(buffer.begin(), buffer.end(), '\0'), buffer.end()) << "no terminator";
    return buffer.data();
}

WideString Widen(const std::string& narrow, size_t size = kTextCapacity) {
    std::vector<WideChar> buffer(size, WIDE('#'));
    WideFromNarrow(narrow.c_str(), buffer.data(), size);
    EXPECT_NE(std::find(buffer.begin(), buffer.end(), WIDE('\0')), buffer.end()) << "no terminator";
    return buffer.data();
}

TEST(TextBridge, ConvertsEveryCharacterBothWays) {
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        if (c == 0xD800) c = 0xE000;
        ASSERT_EQ(Narrow(Utf16(c)), Utf8(c)) << std::hex << static_cast<uint32_t>(c);
        ASSERT_EQ(Widen(Utf8(c)), Utf16(c)) << std::hex << static_cast<uint32_t>(c);
    }
}

TEST(TextBridge, ConvertsMixedTexts) {
    const std::u32string characters = U"Gr\u00F6\u00DFe \u20AC \U0001F600!";
    const auto [narrow, wide] = InBothEncodings(characters);
    EXPECT_EQ(Narrow(wide), narrow);
    EXPECT_EQ(Widen(narrow), wide);
    EXPECT_EQ(Narrow({}), "");
    EXPECT_EQ(Widen(""), WideString());
}

// For every size, the longest run of whole characters that fits with the terminator. Towards UTF-16 that is
// judged in bytes: no more of them are read than the target holds units, and no character has fewer bytes
// than units.
TEST(TextBridge, CutsAtAWholeCharacter) {
    const std::u32string characters = U"a\u00E9b\u20ACc\U0001F600\U0001F601\u20AC\u00E9xyz";
    const auto [narrow, wide] = InBothEncodings(characters);
    for (size_t size = 1; size <= narrow.size() + 2; ++size) {
        std::string expected;
        WideString wideExpected;
        for (const char32_t c : characters) {
            if (expected.size() + Utf8(c).size() >= size) break;
            expected += Utf8(c);
        }
        size_t read = 0;
        for (const char32_t c : characters) {
            read += Utf8(c).size();
            if (read > size || wideExpected.size() + Utf16(c).size() >= size) break;
            wideExpected += Utf16(c);
        }
        EXPECT_EQ(Narrow(wide, size), expected) << size;
        EXPECT_EQ(Widen(narrow, size), wideExpected) << size;
    }
}

TEST(TextBridge, ASizeOfZeroWritesNothing) {
    char narrow = '#';
    WideChar wide = WIDE('#');
    NarrowFromWide(WIDE("text"), &narrow, 0);
    WideFromNarrow("text", &wide, 0);
    EXPECT_EQ(narrow, '#');
    EXPECT_EQ(wide, WIDE('#'));
}

TEST(TextBridge, LongTextsAreCut) {
    EXPECT_EQ(Narrow(WideString(10000, WIDE('x'))), std::string(kTextCapacity - 1, 'x'));
    EXPECT_EQ(Widen(std::string(10000, 'x')), WideString(kTextCapacity - 1, WIDE('x')));
    EXPECT_EQ(Narrow(WideString(10000, WIDE('\u20AC'))).size(), 255U);
    EXPECT_EQ(Narrow(WideString(10000, WIDE('\u00E9'))).size(), 254U);
}

// Sources of exactly as many units as the buffer, without a terminator: an address sanitizer detects a read
// past them.
TEST(TextBridge, ReadsNoMoreUnitsThanTheBufferHolds) {
    for (const size_t size : {1U, 2U, 3U, 255U, 256U}) {
        const std::vector<WideChar> wide(size, WIDE('x'));
        std::vector<char> narrow(size, '#');
        NarrowFromWide(wide.data(), narrow.data(), size);
        EXPECT_EQ(std::string(narrow.data()), std::string(size - 1, 'x'));

        const std::vector<char> source(size, 'x');
        std::vector<WideChar> target(size, WIDE('#'));
        WideFromNarrow(source.data(), target.data(), size);
        EXPECT_EQ(WideString(target.data()), WideString(size - 1, WIDE('x')));
    }
    // The last unit is the first half of a pair.
    const std::vector<WideChar> wide = {WIDE('a'), 0xD83D};
    std::vector<char> narrow(2, '#');
    NarrowFromWide(wide.data(), narrow.data(), 2);
    EXPECT_EQ(std::string(narrow.data()), "a");
    // The last bytes begin a sequence of more.
    for (const std::string begun : {"\xC3", "\xE2", "\xE2\x82", "\xF0", "\xF0\x9F", "\xF0\x9F\x98"}) {
        const std::string text = "ab" + begun;
        const std::vector<char> source(text.begin(), text.end());
        std::vector<WideChar> target(source.size(), WIDE('#'));
        WideFromNarrow(source.data(), target.data(), source.size());
        EXPECT_EQ(WideString(target.data()).substr(0, 2), WIDE("ab"));
    }
}

TEST(TextBridge, LoneSurrogatesAreReplaced) {
    const std::string replacement = Utf8(kReplacement);
    for (const WideChar lone : {WideChar{0xD800}, WideChar{0xDBFF}, WideChar{0xDC00}, WideChar{0xDFFF}}) {
        EXPECT_EQ(Narrow({lone}), replacement);
        EXPECT_EQ(Narrow({WIDE('a'), lone}), "a" + replacement);
        EXPECT_EQ(Narrow({lone, WIDE('a')}), replacement + "a");
        EXPECT_EQ(Narrow({lone, WIDE('\u20AC')}), replacement + Utf8(U'\u20AC'));
    }
    EXPECT_EQ(Narrow({0xDC00, 0xD800}), replacement + replacement);
    EXPECT_EQ(Narrow({0xD800, 0xD800, 0xDC00}), replacement + Utf8(0x10000));
    EXPECT_EQ(Narrow({0xD83D, 0xDE00, 0xDE00}), Utf8(0x1F600) + replacement);
}

// The number of replacements for one broken sequence is not fixed; the text around it must survive.
TEST(TextBridge, BrokenSequencesAreReplaced) {
    for (const std::string broken :
         {"\x80", "\xBF",                      // continuation without a lead
          "\xC3", "\xE2\x82", "\xF0\x9F\x98",  // ends early
          "\xC0\x80", "\xC1\xBF",              // longer than needed, 2 bytes
          "\xE0\x80\x80", "\xE0\x9F\xBF",      // longer than needed, 3 bytes
          "\xF0\x80\x80\x80", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80", "\xED\xBF\xBF",  // a surrogate
          "\xF4\x90\x80\x80", "\xF7\xBF\xBF\xBF",  // beyond the last character
          "\xF8\x88\x80\x80\x80", "\xFE", "\xFF"}) {
        const WideString alone = Widen(broken);
        EXPECT_FALSE(alone.empty());
        EXPECT_EQ(alone.find_first_not_of(static_cast<WideChar>(kReplacement)), WideString::npos);
        EXPECT_EQ(Widen("a" + broken + "z"), WIDE("a") + alone + WIDE("z"));
    }
}

TEST(NarrowText, IsACopyForOneCall) {
    EXPECT_STREQ(NarrowText(WIDE("Intensity")).get(), "Intensity");
    EXPECT_STREQ(NarrowText(WIDE("")).get(), "");
    EXPECT_EQ(NarrowText(nullptr).get(), nullptr);
    EXPECT_EQ(std::string(NarrowText(WideString(10000, WIDE('x')).c_str()).get()), std::string(255, 'x'));
}

}  // namespace
