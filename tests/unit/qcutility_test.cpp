#include "core/qcutility.h"

#include <gtest/gtest.h>

using Lattice::Utility;

namespace {

Utility& utility() {
    return Utility::getInstance();
}

std::string encrypted(const QString& text, const QString& key = {}) {
    QByteArray coded("before");
    EXPECT_TRUE(utility().encryptString(text, key, coded));
    return coded.toStdString();
}

QString decrypted(const QString& coded, unsigned int length, const QString& key = {}) {
    QString text("before");
    EXPECT_TRUE(utility().decryptString(coded, length, key, text));
    return text;
}
QString decrypted(const QString& coded) {
    return decrypted(coded, static_cast<unsigned int>(coded.size()));
}

/// Every character that counts by itself.
QString latin1() {
    QString text;
    for (int code = 0; code < 256; ++code) text += QChar(code);
    return text;
}

}  // namespace

TEST(Utility, IsOne) {
    EXPECT_EQ(&Utility::getInstance(), &Utility::getInstance());
}

TEST(Utility, SplitsAPathAtItsLastSeparator) {
    const struct {
        const char *path, *name, *folder, *display;
    } rows[] = {
        {"", "", "", ""},
        {"a", "a", "", "a"},
        {"/", "", "", ""},
        {"\\", "", "", ""},
        {"/a", "a", "", "/a"},
        {"/home/a", "a", "/home", "/home/a"},
        {"/home/a/", "a", "/home/a", "/home/a"},
        {"/home/a//", "", "/home/a/", "/home/a/"},
        {"C:\\x\\y", "y", "C:\\x", "C:\\x\\y"},
        {"C:\\x\\y\\", "y", "C:\\x\\y", "C:\\x\\y"},
        // A backslash goes before any slash.
        {"/a\\b/c", "b/c", "/a", "/a\\b/c"},
        {"a\\b/", "b", "a", "a\\b"},
        {"/\xE6\x96\x87/\xE4\xBB\xB6", "\xE4\xBB\xB6", "/\xE6\x96\x87", "/\xE6\x96\x87/\xE4\xBB\xB6"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        EXPECT_EQ(utility().getFileNameFromPath(row.path), QString(row.name));
        EXPECT_EQ(utility().getFolderNameFromPath(row.path), QString(row.folder));
        EXPECT_EQ(utility().getPathDisplayName(row.path), QString(row.display));
    }
}

TEST(Utility, NeverFindsAMismatchOfOnePath) {
    QString out("before");
    EXPECT_FALSE(utility().checkCaseDisMatch("/A/b/", &out));
    EXPECT_FALSE(utility().checkCaseDisMatch("", nullptr));
    EXPECT_EQ(out, QString("before"));
}

TEST(Utility, OpensNothing) {
    utility().openSelectedItem("/home");
}

TEST(Utility, FindsTheHighestFolderThatDiffersByCaseAlone) {
    const struct {
        const char *a, *b;
        bool found;
        const char *outA, *outB;
    } rows[] = {
        {"/A/b/c", "/a/b/c", true, "/A", "/a"},
        {"/a/B/c", "/a/b/c", true, "/a/B", "/a/b"},
        {"/a/b/C", "/a/b/c", true, "/a/b/C", "/a/b/c"},
        {"/A/b/C", "/a/b/c", true, "/A", "/a"},
        {"/a/B/C", "/a/b/c", true, "/a/B", "/a/b"},
        {"A", "a", true, "A", "a"},
        {"C:\\X\\y", "c:\\x\\y", true, "C:", "c:"},
        {"/\xC3\x84/x", "/\xC3\xA4/x", true, "/\xC3\x84", "/\xC3\xA4"},
        {"/a/b", "/a/b", false, "", ""},
        {"/a/b", "/a/c", false, "", ""},
        {"/A/b", "/a/c", false, "", ""},
        {"", "/a", false, "", ""},
        {"/a", "", false, "", ""},
        {"", "", false, "", ""},
        // The first is cut to the second's length, the second never is.
        {"/A/b/c/d", "/a/b/c", true, "/A", "/a"},
        {"/A/bcd", "/a/b", true, "/A", "/a"},
        {"/a/b/c", "/a/b", false, "", ""},
        {"/A/b", "/a/b/c", false, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.a) + " " + row.b);
        QString outA("before"), outB("before");
        EXPECT_EQ(utility().getCaseDisMatchPath(row.a, row.b, outA, outB), row.found);
        EXPECT_EQ(outA, QString(row.outA));
        EXPECT_EQ(outB, QString(row.outB));
    }
}

TEST(Utility, CodesInAnAlphabetOfItsOwn) {
    const std::pair<const char*, const char*> rows[] = {
        {"", ""},
        {"f", "Zg=="},
        {"fo", "Zm8="},
        {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="},
        {"fooba", "Zm9vYmE="},
        {"foobar", "Zm9vYmFy"},
        // The two letters that changed places.
        {"A", "qq=="},
        {"B", "qg=="},
        {"\x01", "Aq=="},
        {"\x02\xC2\xA0", "AQA="},
    };
    for (const auto& [text, coded] : rows) EXPECT_EQ(encrypted(text), coded) << text;
}

TEST(Utility, TheTwoLettersStandWhereTheOtherWas) {
    // One text gives every position of the alphabet in turn.
    QString text;
    for (unsigned i = 0; i < 64; i += 4) {
        const unsigned group = i << 18 | (i + 1) << 12 | (i + 2) << 6 | (i + 3);
        text += QChar(group >> 16 & 255);
        text += QChar(group >> 8 & 255);
        text += QChar(group & 255);
    }
    const std::string alphabet = "ABCDEFGHIJKLMNOPqRSTUVWXYZabcdefghijklmnopQrstuvwxyz0123456789+/";
    EXPECT_EQ(encrypted(text), alphabet);
    EXPECT_EQ(decrypted(QString::fromStdString(alphabet)), text);
}

TEST(Utility, ATextComesBackWhateverItsLength) {
    const QString all = latin1();
    for (int length = 0; length <= all.size(); ++length) {
        const QString text = all.left(length);
        const std::string coded = encrypted(text);
        EXPECT_EQ(coded.size(), static_cast<size_t>((length + 2) / 3 * 4));
        EXPECT_EQ(decrypted(QString::fromStdString(coded)), text) << length;
    }
}

TEST(Utility, ACharacterBeyondLatin1ComesBackAsZero) {
    const QString text = QString("a") + QChar(0x4E2D) + "b" + QChar(256) + QChar(255);
    EXPECT_EQ(decrypted(QString::fromStdString(encrypted(text))),
              QString("a") + QChar(0) + "b" + QChar(0) + QChar(255));
}

TEST(Utility, TheKeyIsNotRead) {
    EXPECT_EQ(encrypted("text", "one"), encrypted("text", "two"));
    EXPECT_EQ(decrypted("Zm9v", 4, "key"), QString("foo"));
}

TEST(Utility, ALengthThatIsNoMultipleOfFourGivesNothing) {
    for (const unsigned length : {1u, 2u, 3u, 5u, 0xFFFFFFFFu})
        EXPECT_EQ(decrypted("Zm9vYmFy", length), QString()) << length;
    EXPECT_EQ(decrypted("Zm9vY"), QString());
    EXPECT_EQ(decrypted("", 4), QString());
    EXPECT_EQ(decrypted("Zm9v", 0), QString());
}

TEST(Utility, ReadsNoFurtherThanItIsTold) {
    EXPECT_EQ(decrypted("Zm9vYmFy", 4), QString("foo"));
    // Nor than there is something to read.
    EXPECT_EQ(decrypted("Zm9v", 400), QString("foo"));
    EXPECT_EQ(decrypted("Zm9v", 0xFFFFFFFC), QString("foo"));
}

TEST(Utility, WhatIsNotInTheAlphabetCountsAsItsFirstLetter) {
    EXPECT_EQ(decrypted("Zm9\xE6\x96\x87"), decrypted("Zm9A"));
    EXPECT_EQ(decrypted("Z m-"), decrypted("ZAmA"));
    // A "=" inside, too.
    EXPECT_EQ(decrypted("Z=9v"), decrypted("ZA9v"));
}

TEST(Utility, TheLengthBehindTheLastLetterTellsHowMuchComesBack) {
    EXPECT_EQ(decrypted("===="), QString());
    EXPECT_EQ(decrypted("Z===").size(), 0);
    EXPECT_EQ(decrypted("Zg==").size(), 1);
    EXPECT_EQ(decrypted("Zm8=").size(), 2);
    EXPECT_EQ(decrypted("Zm9v").size(), 3);
    EXPECT_EQ(decrypted("Zm9vY===").size(), 3);
}
