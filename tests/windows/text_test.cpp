// Texts in the system's code page, here the Western one, and paths beyond it.
#define NOMINMAX
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "framework/TextBridge.h"
#include "imaging/Files.h"
#include "sfx/sfx.h"
#include "tests/support/EffectDriver.h"
#include "tests/support/GoldenRun.h"

namespace {

constexpr const char* kLineArt = "{6772F07B-DE51-4FA9-A7C7-DE6430F437BF}";

std::string Narrow(const std::wstring& wide) {
    char text[kTextCapacity];
    NarrowFromWide(wide.c_str(), text, sizeof text);
    return text;
}
std::wstring Widen(const std::string& narrow) {
    wchar_t text[kTextCapacity];
    WideFromNarrow(narrow.c_str(), text, kTextCapacity);
    return text;
}

class CodePage : public testing::Test {
  protected:
    void SetUp() override {
        if (GetACP() != 1252) GTEST_SKIP() << "the system's code page is " << GetACP();
    }
};

TEST_F(CodePage, TextsAreConvertedByIt) {
    EXPECT_EQ(Narrow(L"Gr\u00F6\u00DFe \u20AC"),
              "Gr\xF6\xDF"
              "e \x80");
    EXPECT_EQ(Widen("Gr\xF6\xDF"
                    "e \x80"),
              L"Gr\u00F6\u00DFe \u20AC");
    EXPECT_EQ(Narrow(L"\u4E2D\u0416z"), "??z");
    EXPECT_EQ(Narrow(std::wstring(1000, L'\u00E9')), std::string(255, '\xE9'));
    for (int c = 1; c < 256; ++c) {
        const std::string one = {static_cast<char>(c), 'z'};
        wchar_t expected[8] = {};
        MultiByteToWideChar(0, 0, one.c_str(), -1, expected, 8);
        EXPECT_EQ(Widen(one), expected) << c;
    }
    for (wchar_t c = 1; c < 0xD800; ++c) {
        const std::wstring one = {c, L'z'};
        char expected[8] = {};
        WideCharToMultiByte(0, 0, one.c_str(), -1, expected, 8, nullptr, nullptr);
        ASSERT_EQ(Narrow(one), expected) << int{c};
    }
}

TEST_F(CodePage, PropertiesAreReadAndWrittenThroughIt) {
    EffectDriver effect(kLineArt);
    wchar_t name[256] = L"BackgroundColor", value[256] = L"1,2,3 \u00E9";
    WidePropertyRecord record = {1, name, value};
    EXPECT_EQ(effect->SetProperty(&record), kSuccess);
    EXPECT_EQ(effect.Get("BackgroundColor"), "1,2,3");

    // An unknown name is refused in both forms, and comes back as far as the code page has it.
    wchar_t unknown[256] = L"Gr\u00F6\u00DFe \u4E2D", text[256] = L"\u20AC";
    WidePropertyRecord strange = {1, unknown, text};
    EXPECT_EQ(effect->SetProperty(&strange), kInvalidArgument);
    EXPECT_EQ(effect->GetProperty(&strange), kInvalidArgument);
    EXPECT_STREQ(unknown, L"Gr\u00F6\u00DFe ?");
    EXPECT_STREQ(text, L"\u20AC");
    char narrowName[256] =
        "Gr\xF6\xDF"
        "e",
         narrowText[256] = "\x80";
    PropertyRecord narrow = {1, narrowName, narrowText};
    EXPECT_EQ(effect->GetProperty(&narrow), kInvalidArgument);
}

// The colour of a settings file, read through the contract.
template <class Char>
std::string ColorOf(std::basic_string<Char> path) {
    EffectDriver effect(kLineArt);
    BasicSettingsRecord<Char> record = {1, nullptr, path.data(), {}};
    const ResultCode code = effect->LoadSettings(&record);
    return code == kSuccess ? effect.Get("BackgroundColor") : std::to_string(code);
}

TEST_F(CodePage, SettingsFilesMayHaveAnyName) {
    const TemporaryDirectory here;
    for (const std::wstring name :
         {L"plain.txt", L"Gr\u00F6\u00DFe.txt", L"\u0416\u4E2D.txt", L"\xD83D\xDE00.txt"}) {
        std::ofstream(std::filesystem::path(name)) << "4 5 6";
        EXPECT_EQ(ColorOf(name), "4,5,6");
        std::filesystem::remove(name);
        EXPECT_NE(ColorOf(name), "4,5,6");
    }
    std::ofstream(std::filesystem::path(L"Gr\u00F6\u00DFe.txt")) << "7 8 9";
    EXPECT_EQ(ColorOf<char>("Gr\xF6\xDF"
                            "e.txt"),
              "7,8,9");  // the code page
    EXPECT_EQ(ColorOf<char>("Gr\xC3\xB6\xC3\x9F"
                            "e.txt"),
              "7,8,9");  // UTF-8
}

TEST(Paths, AreUtf8InLibsfx) {
    const TemporaryDirectory here;
    const std::string folder = "\xD0\x96\xE4\xB8\xAD";  // two characters that no 8-bit code page has together
    std::filesystem::create_directory(L"\u0416\u4E2D");
    std::ofstream(std::filesystem::path(L"\u0416\u4E2D/\u00E9.txt")) << "10 11 12";
    sfx_effect* effect = nullptr;
    ASSERT_EQ(sfx_create("line-art-2", &effect), SFX_OK);
    EXPECT_EQ(sfx_load_settings(effect, (folder + "/\xC3\xA9.txt").c_str()), SFX_OK) << sfx_message();
    char value[SFX_VALUE_SIZE];
    EXPECT_EQ(sfx_get(effect, "background-color", value, sizeof value), SFX_OK);
    EXPECT_STREQ(value, "#0a0b0c");
    sfx_destroy(effect);
}

TEST(Paths, OfFilesAreWide) {
    const TemporaryDirectory here;
    const char* const name = "\xD0\x96\xE4\xB8\xAD.bin";
    files::File file = files::OpenToWrite(name);
    ASSERT_NE(file, nullptr);
    files::Write(file, "abc", 3);
    EXPECT_TRUE(files::CloseWritten(std::move(file)));
    EXPECT_TRUE(std::filesystem::exists(L"\u0416\u4E2D.bin"));
    EXPECT_EQ(files::RegularFileSize(name), 3U);
    EXPECT_TRUE(files::Rename(name, "\xE4\xB8\xAD.bin"));
    EXPECT_FALSE(files::Exists(name));
    EXPECT_NE(files::OpenToRead("\xE4\xB8\xAD.bin"), nullptr);
    files::Remove("\xE4\xB8\xAD.bin");
    EXPECT_TRUE(std::filesystem::is_empty("."));
}

TEST(Paths, OfDevicesAndFoldersAreNoFiles) {
    const TemporaryDirectory here;
    std::filesystem::create_directory("folder");
    for (const char* const path : {"NUL", "CON", "COM1", "folder", ".", "", "\\\\.\\pipe\\none", "none"}) {
        EXPECT_EQ(files::RegularFileSize(path), std::nullopt) << path;
        EXPECT_EQ(files::OpenToRead(path), nullptr) << path;
    }
    EXPECT_EQ(files::OpenToRead(std::string(100000, 'x').c_str()), nullptr);
    EXPECT_FALSE(files::Exists(nullptr));
}

}  // namespace
