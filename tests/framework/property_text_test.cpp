// The string forms of property values.
#include "framework/PropertyText.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace {

// A buffer of exactly `size` bytes on the heap, with marked bytes around it.
class Buffer {
  public:
    explicit Buffer(size_t size) : bytes_(size + 2 * kMargin, kMark), size_(size) {}

    char* data() { return bytes_.data() + kMargin; }
    size_t size() const { return size_; }
    std::string text() { return {data(), strnlen(data(), size_)}; }

    bool terminated() { return std::memchr(data(), 0, size_) != nullptr; }
    bool intact() const {
        const std::string margin(kMargin, kMark);
        return bytes_.substr(0, kMargin) == margin && bytes_.substr(kMargin + size_) == margin;
    }
    bool untouched() const { return bytes_ == std::string(bytes_.size(), kMark); }

  private:
    static constexpr size_t kMargin = 8;
    static constexpr char kMark = '#';
    std::string bytes_;
    size_t size_;
};

TEST(StringCopySafe, CopiesWhatFitsAndAlwaysTerminates) {
    const std::string source = "Antiquated Movie";
    for (size_t size = 1; size <= 40; ++size) {
        Buffer buffer(size);
        const bool fits = size > source.size();
        EXPECT_EQ(StringCopySafe(buffer.data(), size, source.c_str()), fits ? kSuccess : kTextTruncated)
            << size;
        EXPECT_TRUE(buffer.terminated() && buffer.intact()) << size;
        EXPECT_EQ(buffer.text(), source.substr(0, size - 1)) << size;
    }
}

TEST(StringCopySafe, WritesNothingWithoutRoom) {
    Buffer buffer(4);
    EXPECT_EQ(StringCopySafe(buffer.data(), 0, "text"), kInvalidArgument);
    EXPECT_TRUE(buffer.untouched());
    EXPECT_EQ(StringCopySafe(nullptr, 4, "text"), kInvalidArgument);
    EXPECT_EQ(StringCopySafe(buffer.data(), 4, nullptr), kInvalidArgument);
    EXPECT_TRUE(buffer.untouched());
}

TEST(StringCopySafe, OfAnEmptyTextIsATerminator) {
    Buffer buffer(1);
    EXPECT_EQ(StringCopySafe(buffer.data(), 1, ""), kSuccess);
    EXPECT_EQ(buffer.text(), "");
    EXPECT_TRUE(buffer.terminated() && buffer.intact());
}

TEST(StringCopySafe, ReadsNoFurtherThanItNeeds) {
    const std::vector<char> unterminated(5, 'x');
    Buffer buffer(5);
    EXPECT_EQ(StringCopySafe(buffer.data(), 5, unterminated.data()), kTextTruncated);
    EXPECT_EQ(buffer.text(), "xxxx");
}

TEST(SameName, IgnoresTheCaseOfLettersOnly) {
    EXPECT_TRUE(SameName("Intensity", "INTENSITY"));
    EXPECT_TRUE(SameName("rotation speed", "Rotation Speed"));
    EXPECT_TRUE(SameName("Color 1", "cOLOR 1"));
    EXPECT_TRUE(SameName("", ""));
    EXPECT_FALSE(SameName("Color 1", "Color 2"));
    EXPECT_FALSE(SameName("Intensity", "Intensit"));
    EXPECT_FALSE(SameName("Intensit", "Intensity"));
    EXPECT_FALSE(SameName("", "a"));
    // Neighbours of the letters differ from each other by the same bit as upper and lower case do.
    EXPECT_FALSE(SameName("@", "`"));
    EXPECT_FALSE(SameName("[", "{"));
    EXPECT_FALSE(SameName("0", "\x10"));
    EXPECT_FALSE(SameName("\xC3\x84", "\xC3\xA4"));
}

TEST(IntegerFromString, ReadsWhatTheTextBeginsWith) {
    EXPECT_EQ(IntegerFromString("0"), 0);
    EXPECT_EQ(IntegerFromString("24"), 24);
    EXPECT_EQ(IntegerFromString("-5"), -5);
    EXPECT_EQ(IntegerFromString("+7"), 7);
    EXPECT_EQ(IntegerFromString(" \t\n\v\f\r8"), 8);
    EXPECT_EQ(IntegerFromString("12abc"), 12);
    EXPECT_EQ(IntegerFromString("3.9"), 3);
    EXPECT_EQ(IntegerFromString("1,24"), 1);
    EXPECT_EQ(IntegerFromString("0x10"), 0);
    EXPECT_EQ(IntegerFromString("007"), 7);
}

TEST(IntegerFromString, IsZeroWithoutANumber) {
    for (const char* text : {"", " ", "abc", "-", "+", "+-1", "--1", "- 1", ",1", "TRUE"}) {
        EXPECT_EQ(IntegerFromString(text), 0) << text;
    }
}

TEST(IntegerFromString, StaysWithin32Bits) {
    constexpr int32_t lowest = std::numeric_limits<int32_t>::min(),
                      highest = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(IntegerFromString("2147483647"), highest);
    EXPECT_EQ(IntegerFromString("2147483648"), highest);
    EXPECT_EQ(IntegerFromString("4294967297"), highest);
    EXPECT_EQ(IntegerFromString("-2147483648"), lowest);
    EXPECT_EQ(IntegerFromString("-2147483649"), lowest);
    EXPECT_EQ(IntegerFromString(std::string(10000, '9').c_str()), highest);
    EXPECT_EQ(IntegerFromString(("-" + std::string(10000, '9')).c_str()), lowest);
    EXPECT_EQ(IntegerFromString((std::string(10000, '0') + "5").c_str()), 5);
}

TEST(BoolFromString, IsTrueForTheOneWordInAnyCase) {
    for (const char* text : {"TRUE", "true", "tRuE", "True"}) EXPECT_TRUE(BoolFromString(text)) << text;
    for (const char* text : {"1", "YES", "", "FALSE", "TRU", "TRUEE", " TRUE", "TRUE ", "on", "-1"}) {
        EXPECT_FALSE(BoolFromString(text)) << text;
    }
}

TEST(ColorFromString, PacksRedGreenAndBlueFromTheLowByteUp) {
    EXPECT_EQ(ColorFromString("1,2,3"), 1U | 2U << 8 | 3U << 16);
    EXPECT_EQ(ColorFromString("0,0,192"), 192U << 16);
    EXPECT_EQ(ColorFromString("255,255,255"), 0xFFFFFFU);
}

TEST(ColorFromString, ClampsEachNumber) {
    EXPECT_EQ(ColorFromString("300,-5,7"), 255U | 0U << 8 | 7U << 16);
    EXPECT_EQ(ColorFromString("-1,256,128"), 0U | 255U << 8 | 128U << 16);
    EXPECT_EQ(ColorFromString("2147483647,-2147483648,0"), 255U);
}

TEST(ColorFromString, IsBlackWithFewerThanThreeNumbers) {
    for (const char* text :
         {"", "12", "12,34", "12,34,", ",1,2", "1;2;3", "1,,3", "red", "1 ,2,3", "1.5,2,3", "0x10,2,3"}) {
        EXPECT_EQ(ColorFromString(text), 0U) << text;
    }
}

TEST(ColorFromString, PassesOverBlanksInFrontOfNumbersAndWhatFollows) {
    EXPECT_EQ(ColorFromString(" 1, 2,\t3"), 1U | 2U << 8 | 3U << 16);
    EXPECT_EQ(ColorFromString("1,2,3,4"), 1U | 2U << 8 | 3U << 16);
    EXPECT_EQ(ColorFromString("1,2,3abc"), 1U | 2U << 8 | 3U << 16);
    EXPECT_EQ(ColorFromString("+1,+2,+3"), 1U | 2U << 8 | 3U << 16);
}

TEST(ColorFromString, ReadsBackEveryColorThatIsWritten) {
    for (uint32_t color = 0; color <= 0xFFFFFF; color += 4099) {
        char text[16];
        ColorToString(color, text, sizeof text);
        EXPECT_EQ(ColorFromString(text), color) << text;
    }
}

// The texts of the three forms, into buffers of every size.
TEST(ValueToString, CutsToFitAndTerminates) {
    for (size_t size = 0; size <= 20; ++size) {
        const auto check = [size](const std::string& whole, auto write) {
            Buffer buffer(size);
            write(buffer);
            EXPECT_TRUE(buffer.intact()) << whole << " " << size;
            if (size == 0) return;
            EXPECT_TRUE(buffer.terminated()) << whole << " " << size;
            EXPECT_EQ(buffer.text(), whole.substr(0, size - 1));
        };
        check("TRUE", [](Buffer& b) { BoolToString(true, b.data(), b.size()); });
        check("FALSE", [](Buffer& b) { BoolToString(false, b.data(), b.size()); });
        check("0", [](Buffer& b) { IntegerToString(0, b.data(), b.size()); });
        check("-2147483648", [](Buffer& b) { IntegerToString(INT32_MIN, b.data(), b.size()); });
        check("2147483647", [](Buffer& b) { IntegerToString(INT32_MAX, b.data(), b.size()); });
        check("255,0,7", [](Buffer& b) { ColorToString(0x0700FF, b.data(), b.size()); });
        check("1,2,3", [](Buffer& b) { ColorToString(0xFF030201, b.data(), b.size()); });
    }
}

TEST(PropertyText, DoesNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"", "C.UTF-8", "tr_TR.UTF-8", "de_DE.UTF-8"}) {
        std::setlocale(LC_ALL, locale);
        EXPECT_TRUE(SameName("INTENSITY", "intensity"));
        EXPECT_TRUE(BoolFromString("true"));
        EXPECT_EQ(IntegerFromString("1234"), 1234);
        char text[16];
        IntegerToString(1234567, text, sizeof text);
        EXPECT_STREQ(text, "1234567");
    }
    std::setlocale(LC_ALL, before.c_str());
}

}  // namespace
