#include "core/Utils.h"

#include <gmock/gmock.h>

#include <QString>
#include <clocale>
#include <cstring>
#include <cwchar>
#include <vector>

using namespace Lattice;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Puts another locale in force for one test.
class InLocale {
public:
    explicit InLocale(const char* name) : m_before(std::setlocale(LC_ALL, nullptr)) {
        m_found = std::setlocale(LC_ALL, name) != nullptr;
    }
    ~InLocale() { std::setlocale(LC_ALL, m_before.c_str()); }
    bool found() const { return m_found; }

private:
    std::string m_before;
    bool m_found;
};

std::wstring Encoded(std::wstring text) {
    PercentEncoding(text);
    return text;
}

std::wstring Decoded(const char* utf8) {
    wchar_t out[64];
    return Utf8ToUnicode_1(utf8, out, 64) == 1 ? out : L"(refused)";
}

long long Size(const wchar_t* text) {
    long long size = -77;
    GetSizewithString(text, size);
    return size;
}

}  // namespace

// ---- format ----

TEST(Format, TakesWideTextNumbersAndMixedArguments) {
    EXPECT_EQ(L"https://nas:8080/x?n=-5&h=1f&b=4294967296",
              format(L"%ls%ls:%d/x?n=%d&h=%x&b=%lld", L"https://", L"nas", 8080, -5, 31, 4294967296LL));
}

TEST(Format, NullFormatIsEmpty) {
    EXPECT_EQ(L"", format(nullptr));
}

TEST(Format, NullTextPrintsAsNothing) {
    EXPECT_EQ(L"<>", format(L"<%ls>", static_cast<const wchar_t*>(nullptr)));
    EXPECT_EQ(L"<>", format(L"<%ls>", static_cast<wchar_t*>(nullptr)));
    EXPECT_EQ(L"<>", format(L"<%s>", static_cast<const char*>(nullptr)));
}

TEST(Format, ATextOf2047CharactersIsWhole) {
    const std::wstring text(2047, L'x');
    EXPECT_EQ(text, format(L"%ls", text.c_str()));
}

TEST(Format, ATextOf2048CharactersIsCutAt2047) {
    const std::wstring text(2048, L'x');
    EXPECT_EQ(text.substr(0, 2047), format(L"%ls", text.c_str()));
}

TEST(Format, ALongerTextKeepsItsFirst2047CharactersWhereverTheCutFalls) {
    std::wstring text;
    for (int i = 0; text.size() < 5000; ++i) {
        text += std::to_wstring(i) + L",";
    }
    EXPECT_EQ(text.substr(0, 2047), format(L"%ls", text.c_str()));
    EXPECT_EQ((L"a7" + text).substr(0, 2047), format(L"a%d%ls%ls", 7, text.c_str(), L"tail"));
    const std::wstring most = text.substr(0, 2045);
    EXPECT_EQ(most + L"12", format(L"%ls%d", most.c_str(), 12345));
    EXPECT_EQ(most + L"ab", format(L"%lsabcdef", most.c_str()));
}

TEST(Format, CharactersBeyondAsciiAreTheSameInEveryLocale) {
    for (const char* locale : {"C", "C.UTF-8"}) {
        InLocale in(locale);
        ASSERT_TRUE(in.found()) << locale;
        EXPECT_EQ(L"/中文/\U0001F600!", format(L"/%ls/%ls!", L"中文", L"\U0001F600")) << locale;
        const std::wstring longText(3000, L'文');
        EXPECT_EQ(longText.substr(0, 2047), format(L"%ls", longText.c_str())) << locale;
    }
}

// ---- StringReplace ----

TEST(StringReplace, ReplacesEveryOccurrence) {
    EXPECT_EQ(L"x-x-", StringReplace(L"a-a-", L"a", L"x"));
    EXPECT_EQ(L"--", StringReplace(L"a-a-", L"a", L""));
    EXPECT_EQ(L"abc", StringReplace(L"abc", L"z", L"x"));
}

TEST(StringReplace, DoesNotSearchWhatItPutIn) {
    EXPECT_EQ(L"aaaa", StringReplace(L"aa", L"a", L"aa"));
    EXPECT_EQ(L"ba", StringReplace(L"aaa", L"aa", L"b"));
}

TEST(StringReplace, EmptyTextOrEmptySearchGivesACopy) {
    EXPECT_EQ(L"", StringReplace(L"", L"a", L"b"));
    EXPECT_EQ(L"abc", StringReplace(L"abc", L"", L"b"));
}

// ---- xtoi_ ----

TEST(Xtoi, ReadsHexadecimalDigitsOfEitherCase) {
    EXPECT_EQ(31u, xtoi_(L"1F"));
    EXPECT_EQ(31u, xtoi_(L"1f"));
    EXPECT_EQ(0xABCDEFu, xtoi_(L"aBcDeF"));
    EXPECT_EQ(0x12345678u, xtoi_(L"12345678"));
    EXPECT_EQ(0x90u, xtoi_(L"90"));
    EXPECT_EQ(0xFFFFFFFFu, xtoi_(L"FFFFFFFF"));
}

TEST(Xtoi, AnythingElseGivesZero) {
    EXPECT_EQ(0u, xtoi_(L"1G"));
    EXPECT_EQ(0u, xtoi_(L"g1"));
    EXPECT_EQ(0u, xtoi_(L"0x1F"));
    EXPECT_EQ(0u, xtoi_(L" 1"));
    EXPECT_EQ(0u, xtoi_(L"1 "));
    EXPECT_EQ(0u, xtoi_(L"-1"));
    EXPECT_EQ(0u, xtoi_(L"1@"));
    EXPECT_EQ(0u, xtoi_(L"1`"));
    EXPECT_EQ(0u, xtoi_(L"1:"));
    EXPECT_EQ(0u, xtoi_(L"1/"));
    EXPECT_EQ(0u, xtoi_(L""));
    EXPECT_EQ(0u, xtoi_(nullptr));
}

// ---- ToTwoDigit ----

TEST(ToTwoDigit, NegativeIsTwoZeros) {
    EXPECT_EQ(L"00", ToTwoDigit(-1));
    EXPECT_EQ(L"00", ToTwoDigit(-2147483647 - 1));
}

TEST(ToTwoDigit, OneDigitGetsAZero) {
    EXPECT_EQ(L"00", ToTwoDigit(0));
    EXPECT_EQ(L"09", ToTwoDigit(9));
}

TEST(ToTwoDigit, FromTenOnThePlainNumber) {
    EXPECT_EQ(L"10", ToTwoDigit(10));
    EXPECT_EQ(L"99", ToTwoDigit(99));
    EXPECT_EQ(L"2026", ToTwoDigit(2026));
}

// ---- split ----

TEST(Split, GivesThePiecesThatEndInADelimiter) {
    EXPECT_THAT(split("a,b,", ","), ElementsAre("a", "b"));
    EXPECT_THAT(split("a--b--", "--"), ElementsAre("a", "b"));
}

TEST(Split, LeavesOutWhatStandsBehindTheLastDelimiter) {
    EXPECT_THAT(split("a,b", ","), ElementsAre("a"));
    EXPECT_THAT(split("ab", ","), IsEmpty());
    EXPECT_THAT(split("", ","), IsEmpty());
}

TEST(Split, LeavesOutEmptyPiecesAndPiecesThatAreDelimiters) {
    EXPECT_THAT(split(",,a,,b,,", ","), ElementsAre("a", "b"));
    EXPECT_THAT(split(",,,", ","), IsEmpty());
    EXPECT_THAT(split("----a--", "--"), ElementsAre("a"));
}

TEST(Split, AnEmptyDelimiterEndsWithNothing) {
    EXPECT_THAT(split("abc", ""), IsEmpty());
}

// ---- GetFileNameFromPath ----

TEST(GetFileNameFromPath, GivesWhatFollowsTheLastSlash) {
    EXPECT_EQ(L"c.txt", GetFileNameFromPath(L"/a/b/c.txt"));
    EXPECT_EQ(L"c", GetFileNameFromPath(L"C:\\a\\c"));
}

TEST(GetFileNameFromPath, DropsOneTrailingSeparator) {
    EXPECT_EQ(L"b", GetFileNameFromPath(L"/a/b/"));
    EXPECT_EQ(L"b", GetFileNameFromPath(L"a\\b\\"));
    EXPECT_EQ(L"", GetFileNameFromPath(L"/a/b//"));
}

TEST(GetFileNameFromPath, ABackslashGoesBeforeASlash) {
    EXPECT_EQ(L"b/c", GetFileNameFromPath(L"a\\b/c"));
}

TEST(GetFileNameFromPath, WithoutSeparatorTheWholeText) {
    EXPECT_EQ(L"name", GetFileNameFromPath(L"name"));
    EXPECT_EQ(L"name", GetFileNameFromPath(L"name/"));
}

TEST(GetFileNameFromPath, EmptyGivesEmpty) {
    EXPECT_EQ(L"", GetFileNameFromPath(L""));
    EXPECT_EQ(L"", GetFileNameFromPath(L"/"));
}

// ---- GetSizewithString ----

TEST(GetSizewithString, KnowsTheFiveUnits) {
    EXPECT_EQ(1099511627776LL, Size(L"1 TB"));
    EXPECT_EQ(1073741824LL, Size(L"1 GB"));
    EXPECT_EQ(1048576LL, Size(L"1 MB"));
    EXPECT_EQ(1024LL, Size(L"1 KB"));
    EXPECT_EQ(1LL, Size(L"1 bytes"));
}

TEST(GetSizewithString, UnitsCompareWithoutRegardToCase) {
    EXPECT_EQ(2048, Size(L"2 kb"));
    EXPECT_EQ(2048, Size(L"2 Kb"));
    EXPECT_EQ(5, Size(L"5 BYTES"));
}

TEST(GetSizewithString, ReadsFractions) {
    EXPECT_EQ(1610612736, Size(L"1.5 GB"));
    EXPECT_EQ(1288490188, Size(L"1.2 GB"));   // 1288490188.8, cut
    EXPECT_EQ(1309965025, Size(L"1.22 GB"));  // 1309965025.28, cut
    EXPECT_EQ(10, Size(L"0.01 KB"));          // 10.24, cut
    EXPECT_EQ(1073741824LL * 100 / 1000, Size(L"0.100 GB"));
}

TEST(GetSizewithString, CutsTowardsZeroInExtendedPrecision) {
    EXPECT_EQ(-1536, Size(L"-1.5 KB"));
    EXPECT_EQ(-10, Size(L"-0.01 KB"));
    // Beyond the 53 bits of a double.
    EXPECT_EQ(9007199254740993LL, Size(L"9007199254740993 bytes"));
    EXPECT_EQ(9007199254740993LL, Size(L"9007199254740993.0 bytes"));
}

TEST(GetSizewithString, APointAtAnEndIsReadAsItStands) {
    EXPECT_EQ(5 * 1024, Size(L"5. KB"));
    EXPECT_EQ(0, Size(L".5 KB"));
}

TEST(GetSizewithString, WithoutBlankOrWithAnEmptySideZero) {
    EXPECT_EQ(0, Size(L""));
    EXPECT_EQ(0, Size(L"5GB"));
    EXPECT_EQ(0, Size(L" GB"));
    EXPECT_EQ(0, Size(L"5 "));
}

TEST(GetSizewithString, ZeroAndUnknownUnitsGiveZero) {
    EXPECT_EQ(0, Size(L"0 GB"));
    EXPECT_EQ(0, Size(L"0.0 GB"));
    EXPECT_EQ(0, Size(L"5 XB"));
    EXPECT_EQ(0, Size(L"5 GBs"));
    EXPECT_EQ(0, Size(L"5 G"));
    EXPECT_EQ(0, Size(L"5  GB"));
    EXPECT_EQ(0, Size(L"x GB"));
}

TEST(GetSizewithString, HugeNumbersStayInRange) {
    EXPECT_EQ(9223372036854775807LL, Size(L"99999999999999999999 TB"));
    EXPECT_EQ(-9223372036854775807LL - 1, Size(L"-99999999999999999999 TB"));
    EXPECT_EQ(0, Size((L"1." + std::wstring(6000, L'0') + L" TB").c_str()));
}

// ---- wildCmp ----

TEST(WildCmp, NullGivesNoMatch) {
    EXPECT_EQ(0, wildCmp(nullptr, L"a", 0));
    EXPECT_EQ(0, wildCmp(L"a", nullptr, 0));
    EXPECT_EQ(0, wildCmp(nullptr, nullptr, 1));
}

TEST(WildCmp, ComparesWithoutRegardToCase) {
    EXPECT_EQ(1, wildCmp(L"*.TMP", L"a.tmp", 0));
    EXPECT_EQ(1, wildCmp(L"ÄÖ", L"äö", 0));
    EXPECT_EQ(1, wildCmp(L"\U00010400", L"\U00010428", 0));  // beyond the BMP
    EXPECT_EQ(0, wildCmp(L"[a]", L"{a}", 0));
    EXPECT_EQ(0, wildCmp(L"@", L"`", 0));
}

TEST(WildCmp, QuestionMarkIsExactlyOneCharacter) {
    EXPECT_EQ(1, wildCmp(L"a?c", L"abc", 0));
    EXPECT_EQ(1, wildCmp(L"?", L"\U0001F600", 0));
    EXPECT_EQ(0, wildCmp(L"?", L"", 0));
    EXPECT_EQ(0, wildCmp(L"a?", L"a", 0));
    EXPECT_EQ(0, wildCmp(L"a?", L"abc", 0));
    EXPECT_EQ(1, wildCmp(L"*?", L"a", 0));
    EXPECT_EQ(0, wildCmp(L"*?", L"", 0));
}

TEST(WildCmp, StarIsAnyRun) {
    EXPECT_EQ(1, wildCmp(L"*", L"", 0));
    EXPECT_EQ(1, wildCmp(L"*", L"abc", 0));
    EXPECT_EQ(1, wildCmp(L"a*", L"a", 0));
    EXPECT_EQ(1, wildCmp(L"a*c", L"abbbc", 0));
    EXPECT_EQ(1, wildCmp(L"a**c", L"ac", 0));
    EXPECT_EQ(0, wildCmp(L"a*c", L"abbb", 0));
    EXPECT_EQ(0, wildCmp(L"b*", L"abc", 0));
}

TEST(WildCmp, GoesBackToTheStarAfterAMismatch) {
    EXPECT_EQ(1, wildCmp(L"*ab", L"aab", 0));
    EXPECT_EQ(1, wildCmp(L"*abc*abd", L"xabcabcabd", 0));
    EXPECT_EQ(1, wildCmp(L"*.t?p", L"a.t.tmp", 0));
    EXPECT_EQ(0, wildCmp(L"*.tmp", L"a.tmp.x", 0));
    EXPECT_EQ(1, wildCmp(L"*.tmp", L"a.tmp.tmp", 0));
}

TEST(WildCmp, WhenTheTextEndsOnlyStarsMayBeLeft) {
    EXPECT_EQ(1, wildCmp(L"a***", L"a", 0));
    EXPECT_EQ(0, wildCmp(L"a*b", L"a", 0));
    EXPECT_EQ(0, wildCmp(L"ab", L"a", 0));
    EXPECT_EQ(1, wildCmp(L"", L"", 0));
    EXPECT_EQ(0, wildCmp(L"", L"a", 0));
}

TEST(WildCmp, ModeOneTakesALeadingStarForEverything) {
    EXPECT_EQ(1, wildCmp(L"*.tmp", L"a.doc", 1));
    EXPECT_EQ(0, wildCmp(L"*.tmp", L"a.doc", 0));
    EXPECT_EQ(0, wildCmp(L"a*.tmp", L"a.doc", 1));
}

TEST(WildCmp, ModeThreeTakesALeadingStarDotStarForEverything) {
    EXPECT_EQ(1, wildCmp(L"*.*", L"noextension", 3));
    EXPECT_EQ(1, wildCmp(L"*.*zzz", L"noextension", 3));
    EXPECT_EQ(0, wildCmp(L"*.*", L"noextension", 0));
    EXPECT_EQ(0, wildCmp(L"*.*", L"noextension", 2));
    EXPECT_EQ(0, wildCmp(L"*.", L"noextension", 3));
    EXPECT_EQ(0, wildCmp(L"*.tmp", L"a.doc", 3));
}

TEST(WildCmp, PatternsOfManyStarsEnd) {
    // Exponential backtracking would not end within the life of this test.
    std::wstring pattern;
    for (int i = 0; i < 200; ++i) {
        pattern += L"a*";
    }
    EXPECT_EQ(0, wildCmp((pattern + L"b").c_str(), std::wstring(2000, L'a').c_str(), 0));
    EXPECT_EQ(1, wildCmp(pattern.c_str(), std::wstring(2000, L'a').c_str(), 0));
}

TEST(WildCmp, ValuesThatAreNoCharactersCompareAsTheyStand) {
    const wchar_t high[] = {static_cast<wchar_t>(0x7FFFFFFF), 0};
    const wchar_t negative[] = {static_cast<wchar_t>(0x80000000), 0};
    const wchar_t surrogate[] = {static_cast<wchar_t>(0xD800), 0};
    EXPECT_EQ(1, wildCmp(high, high, 0));
    EXPECT_EQ(0, wildCmp(high, negative, 0));
    EXPECT_EQ(1, wildCmp(surrogate, surrogate, 0));
}

TEST(WildCmp, FoldsEveryCharacterAsQtComparesIt) {
    for (uint value = 1; value < 0x20000; ++value) {
        if (value == '*' || value == '?' || (value >= 0xD800 && value <= 0xDFFF)) {
            continue;
        }
        const uint partners[] = {QChar::toLower(value),
                                 QChar::toUpper(value),
                                 QChar::toTitleCase(value),
                                 QChar::toCaseFolded(value),
                                 value ^ 0x20,
                                 uint('k'),
                                 uint('S')};
        for (const uint partner : partners) {
            if (partner == 0 || partner == '*' || partner == '?') {
                continue;
            }
            const wchar_t pattern[] = {static_cast<wchar_t>(partner), 0};
            const wchar_t text[] = {static_cast<wchar_t>(value), 0};
            const bool equal = QString::compare(QString::fromUcs4(&partner, 1), QString::fromUcs4(&value, 1),
                                                Qt::CaseInsensitive) == 0;
            ASSERT_EQ(equal ? 1 : 0, wildCmp(pattern, text, 0)) << std::hex << partner << " " << value;
        }
    }
}

// ---- PercentEncoding ----

struct Pass {
    wchar_t character;
    const wchar_t* code;
};

class PercentEncodingPass : public testing::TestWithParam<Pass> {};

TEST_P(PercentEncodingPass, EncodesTheCharacterWhereverItStands) {
    const std::wstring character(1, GetParam().character);
    const std::wstring code = GetParam().code;
    EXPECT_EQ(code, Encoded(character));
    EXPECT_EQ(code + code + L"a" + code, Encoded(character + character + L"a" + character));
}

INSTANTIATE_TEST_SUITE_P(All, PercentEncodingPass,
                         testing::Values(Pass{L'%', L"%25"}, Pass{L' ', L"%20"}, Pass{L'!', L"%21"},
                                         Pass{L'"', L"%22"}, Pass{L'#', L"%23"}, Pass{L'$', L"%24"},
                                         Pass{L'&', L"%26"}, Pass{L'\'', L"%27"}, Pass{L'(', L"%28"},
                                         Pass{L')', L"%29"}, Pass{L'*', L"%2A"}, Pass{L'+', L"%2B"},
                                         Pass{L',', L"%2C"}, Pass{L'/', L"%2F"}, Pass{L':', L"%3A"},
                                         Pass{L';', L"%3B"}, Pass{L'<', L"%3C"}, Pass{L'>', L"%3E"},
                                         Pass{L'=', L"%3D"}, Pass{L'?', L"%3F"}, Pass{L'@', L"%40"},
                                         Pass{L'[', L"%5B"}, Pass{L'\\', L"%5C"}, Pass{L']', L"%5D"},
                                         Pass{L'^', L"%5E"}, Pass{L'`', L"%60"}, Pass{L'{', L"%7B"},
                                         Pass{L'|', L"%7C"}, Pass{L'}', L"%7D"}, Pass{L'~', L"%7E"}),
                         [](const auto& info) { return std::to_string(int(info.param.character)); });

TEST(PercentEncoding, APercentThatWasPutInIsNotEncodedAgain) {
    EXPECT_EQ(L"100%25", Encoded(L"100%"));
    EXPECT_EQ(L"a%20b", Encoded(L"a b"));
    EXPECT_EQ(L"%2520", Encoded(L"%20"));
}

TEST(PercentEncoding, LettersDigitsAndThreeMarksStay) {
    const std::wstring text = L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._";
    EXPECT_EQ(text, Encoded(text));
}

TEST(PercentEncoding, OtherCharactersStay) {
    EXPECT_EQ(L"中文é\U0001F600", Encoded(L"中文é\U0001F600"));
    EXPECT_EQ(L"\t\x01\x7F", Encoded(L"\t\x01\x7F"));
    const std::wstring withNul(L"a\0b/", 4);
    EXPECT_EQ(std::wstring(L"a\0b%2F", 6), Encoded(withNul));
    EXPECT_EQ(L"", Encoded(L""));
}

// ---- Utf8ToUnicode_1 ----

TEST(Utf8ToUnicode, WritesTheTextInUtf32) {
    EXPECT_EQ(L"aé中\U0001F600", Decoded("aé中\U0001F600"));
    EXPECT_EQ(L"", Decoded(""));
}

TEST(Utf8ToUnicode, NullArgumentsAndNegativeCapacityAreRefused) {
    wchar_t out[4] = L"xyz";
    EXPECT_EQ(0, Utf8ToUnicode_1(nullptr, out, 4));
    EXPECT_EQ(0, Utf8ToUnicode_1("a", nullptr, 4));
    EXPECT_EQ(0, Utf8ToUnicode_1("a", out, -1));
    EXPECT_STREQ(L"xyz", out);
}

TEST(Utf8ToUnicode, ACapacityOfTheCharacterCountFailsAndWritesNothing) {
    wchar_t out[5] = L"xyz!";
    EXPECT_EQ(0, Utf8ToUnicode_1("é中a", out, 3));
    EXPECT_STREQ(L"xyz!", out);
    EXPECT_EQ(0, Utf8ToUnicode_1("", out, 0));
    EXPECT_STREQ(L"xyz!", out);
    EXPECT_EQ(1, Utf8ToUnicode_1("é中a", out, 4));
    EXPECT_STREQ(L"é中a", out);
}

TEST(Utf8ToUnicode, EveryCharacterComesThrough) {
    for (uint value = 1; value <= 0x10FFFF; ++value) {
        if ((value >= 0xD800 && value <= 0xDFFF) || value == 0xFEFF) {  // Qt takes the latter for a mark
            continue;
        }
        wchar_t out[2];
        ASSERT_EQ(1, Utf8ToUnicode_1(QString::fromUcs4(&value, 1).toUtf8().constData(), out, 2)) << value;
        ASSERT_EQ(value, static_cast<uint>(out[0]));
        ASSERT_EQ(L'\0', out[1]);
    }
    EXPECT_EQ(L"\uFEFFa", Decoded("\uFEFFa"));
}

TEST(Utf8ToUnicode, BrokenSequencesBecomeReplacementCharacters) {
    EXPECT_EQ(L"a\uFFFDb", Decoded("a\x80"
                                   "b"));  // a lone follower
    EXPECT_EQ(L"\uFFFDa", Decoded("\xC3"
                                  "a"));                                  // cut off by a letter
    EXPECT_EQ(L"\uFFFD\uFFFD", Decoded("\xC0\xAF"));                      // overlong
    EXPECT_EQ(L"\uFFFD\uFFFD\uFFFD", Decoded("\xE0\x80\xAF"));            // overlong
    EXPECT_EQ(L"\uFFFD\uFFFD\uFFFD", Decoded("\xED\xA0\x80"));            // a surrogate
    EXPECT_EQ(L"\uFFFD\uFFFD\uFFFD\uFFFD", Decoded("\xF4\x90\x80\x80"));  // above U+10FFFF
    EXPECT_EQ(L"\uFFFD\uFFFD", Decoded("\xFE\xFF"));
    EXPECT_EQ(L"\uFFFD中", Decoded("\xE4\xB8中"));
}

TEST(Utf8ToUnicode, ATextThatEndsInsideACharacterIsNotReadPastItsEnd) {
    for (const char* text : {"\xC3", "\xE4", "\xE4\xB8", "\xF0", "\xF0\x9F", "\xF0\x9F\x98"}) {
        // Exactly as large as the text: the sanitizer sees a byte too many; the tail shows it without one.
        const std::vector<char> exact(text, text + std::strlen(text) + 1);
        EXPECT_EQ(L"\uFFFD", Decoded(exact.data()));
        std::vector<char> followed = exact;
        followed.insert(followed.end(), {'\x98', '\x80', '\x80', '\0'});
        EXPECT_EQ(L"\uFFFD", Decoded(followed.data()));
    }
}

// ---- QString and UTF-8 ----

TEST(WideText, ConvertsToQStringAndBackInEveryPlane) {
    const std::wstring text = L"a中\U0001F600\uFEFFz";
    EXPECT_EQ(QString::fromUtf8("a中\U0001F600") + QChar(0xFEFF) + "z", ToQString(text));
    EXPECT_EQ(text, FromQString(ToQString(text)));
    EXPECT_EQ(QByteArray("a中\U0001F600"), ToUtf8(L"a中\U0001F600"));
    EXPECT_EQ(QByteArray("中"), ToUtf8(std::wstring(L"中")));
}

TEST(WideText, NullIsEmpty) {
    EXPECT_TRUE(ToQString(static_cast<const wchar_t*>(nullptr)).isEmpty());
    EXPECT_TRUE(ToUtf8(static_cast<const wchar_t*>(nullptr)).isEmpty());
}

TEST(WideText, WhatIsNoCharacterIsReplaced) {
    const wchar_t text[] = {L'a',
                            static_cast<wchar_t>(0xD83D),
                            static_cast<wchar_t>(0xDE00),
                            static_cast<wchar_t>(0x110000),
                            static_cast<wchar_t>(0xFFFFFFFF),
                            L'b',
                            0};
    EXPECT_EQ(QString::fromUtf8("a\uFFFD\uFFFD\uFFFD\uFFFDb"), ToQString(text));
}

// ---- Bounded fields ----

TEST(CopyText, StoresATextThatFitsWithItsTerminator) {
    wchar_t field[4] = L"???";
    EXPECT_TRUE(CopyText(field, L"abc"));
    EXPECT_STREQ(L"abc", field);
    EXPECT_TRUE(CopyText(field, L""));
    EXPECT_STREQ(L"", field);
}

TEST(CopyText, LeavesTheFieldAloneIfTheTextDoesNotFit) {
    wchar_t field[4] = L"old";
    EXPECT_FALSE(CopyText(field, L"abcd"));
    EXPECT_STREQ(L"old", field);
    EXPECT_FALSE(CopyText(field, 0, L""));
    EXPECT_FALSE(CopyText(nullptr, 4, L"a"));
    EXPECT_STREQ(L"old", field);
}

TEST(CopyTextCut, CutsAndTerminates) {
    wchar_t field[5] = L"????";
    CopyTextCut(field, 4, L"abcdef");
    EXPECT_STREQ(L"abc", field);
    CopyTextCut(field, L"abcd");
    EXPECT_STREQ(L"abcd", field);
    CopyTextCut(field, 0, L"x");
    EXPECT_STREQ(L"abcd", field);
    CopyTextCut(nullptr, 4, L"x");
    CopyTextCut(field, 1, L"x");
    EXPECT_STREQ(L"", field);
}

// ---- Paths ----

TEST(ServerPath, LeadingSlashIsAddedOnce) {
    EXPECT_EQ(L"/a/b", WithLeadingSlash(L"a/b"));
    EXPECT_EQ(L"/a/b", WithLeadingSlash(L"/a/b"));
    EXPECT_EQ(L"/", WithLeadingSlash(L""));
}

TEST(ServerPath, TheServerSideSchemeGetsNoLeadingSlash) {
    EXPECT_EQ(L"vtf://a", WithLeadingSlash(L"vtf://a"));
    EXPECT_EQ(L"/vtf:/a", WithLeadingSlash(L"vtf:/a"));
    EXPECT_EQ(L"/vtf", WithLeadingSlash(L"vtf"));
}

TEST(ServerPath, TrailingSlashIsAddedOnce) {
    EXPECT_EQ(L"a/", WithTrailingSlash(L"a"));
    EXPECT_EQ(L"a/", WithTrailingSlash(L"a/"));
    EXPECT_EQ(L"/", WithTrailingSlash(L""));
}

TEST(ServerPath, OneTrailingSlashIsCut) {
    EXPECT_EQ(L"a", WithoutTrailingSlash(L"a"));
    EXPECT_EQ(L"a", WithoutTrailingSlash(L"a/"));
    EXPECT_EQ(L"a/", WithoutTrailingSlash(L"a//"));
    EXPECT_EQ(L"", WithoutTrailingSlash(L"/"));
    EXPECT_EQ(L"", WithoutTrailingSlash(L""));
}

TEST(ServerPath, SplitsAtTheLastSlash) {
    const SplitPath both = SplitAtLastSlash(L"/a/b/c");
    EXPECT_EQ(L"/a/b", both.parent);
    EXPECT_EQ(L"c", both.name);
    const SplitPath top = SplitAtLastSlash(L"/c");
    EXPECT_EQ(L"", top.parent);
    EXPECT_EQ(L"c", top.name);
    const SplitPath open = SplitAtLastSlash(L"/a/");
    EXPECT_EQ(L"/a", open.parent);
    EXPECT_EQ(L"", open.name);
}

TEST(ServerPath, WithoutASlashTheWholeTextIsTheName) {
    const SplitPath name = SplitAtLastSlash(L"name");
    EXPECT_EQ(L"", name.parent);
    EXPECT_EQ(L"name", name.name);
}
