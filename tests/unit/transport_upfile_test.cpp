#include <gtest/gtest.h>

#include <QFile>
#include <string>
#include <vector>

#include "core/onewaybody.h"
#include "support/tempdir.h"
#include "transfer/upfile.h"

namespace {

constexpr qint64 kGiB = 1 << 30;

QString name(const std::string& path) {
    return QString::fromStdString(path);
}

/// Reads in pieces of that size until the body ends.
std::string readInPieces(QUpFile& body, qint64 piece) {
    std::string text;
    std::string buffer(static_cast<size_t>(piece), '\0');
    for (;;) {
        const qint64 count = body.readData(buffer.data(), piece);
        if (count <= 0) {
            EXPECT_EQ(count, 0);
            return text;
        }
        text.append(buffer.data(), static_cast<size_t>(count));
    }
}

/// A file of that size without a byte on the disk.
QString sparse(const TempDir& dir, qint64 size) {
    const QString path = name(dir.file("sparse"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_TRUE(file.resize(size));
    return path;
}

}  // namespace

TEST(QUpFile, IsTheThreePiecesWhateverTheBufferSize) {
    const TempDir dir;
    const QString path = name(dir.write("f", "0123456789"));
    for (qint64 piece = 1; piece <= 25; ++piece) {
        QUpFile body(path, "<head>", "</tail>", false);
        ASSERT_TRUE(body.openFile());
        EXPECT_EQ(readInPieces(body, piece), "<head>0123456789</tail>") << "pieces of " << piece;
    }
}

TEST(QUpFile, OneLargeReadTakesHeadFileAndTail) {
    const TempDir dir;
    QUpFile body(name(dir.write("f", "0123")), "ab", "yz", false);
    ASSERT_TRUE(body.openFile());
    char buffer[64];
    ASSERT_EQ(body.readData(buffer, sizeof(buffer)), 8);
    EXPECT_EQ(std::string(buffer, 8), "ab0123yz");
    EXPECT_EQ(body.readData(buffer, sizeof(buffer)), 0);
}

TEST(QUpFile, AReadThatEndsInTheHeadGoesOnFromThere) {
    const TempDir dir;
    QUpFile body(name(dir.write("f", "0123")), "abcdef", "yz", false);
    ASSERT_TRUE(body.openFile());
    char buffer[64];
    ASSERT_EQ(body.readData(buffer, 4), 4);
    EXPECT_EQ(std::string(buffer, 4), "abcd");
    ASSERT_EQ(body.readData(buffer, 3), 3);
    EXPECT_EQ(std::string(buffer, 3), "ef0");
}

TEST(QUpFile, SizesAddUp) {
    const TempDir dir;
    QUpFile body(name(dir.write("f", "0123")), "head", "tailtail", false);
    ASSERT_TRUE(body.openFile());
    EXPECT_EQ(body.headerSize(), 4);
    EXPECT_EQ(body.filesize(), 4);
    EXPECT_EQ(body.tailSize(), 8);
    EXPECT_EQ(body.sizepart(), 8);
    EXPECT_EQ(body.sizefull(), 16);
    EXPECT_EQ(body.size(), 16);
    EXPECT_FALSE(body.isSequential());
}

TEST(QUpFile, SizeFollowsTheFileOfTheMoment) {
    const TempDir dir;
    const QString path = name(dir.write("f", "0123"));
    QUpFile body(path, "h", "t", false);
    ASSERT_TRUE(body.openFile());
    dir.write("f", "01234567");
    EXPECT_EQ(body.filesize(), 8);
    dir.write("f", "0");
    EXPECT_EQ(body.filesize(), 1);
    EXPECT_EQ(body.size(), 3);
}

TEST(QUpFile, AFileThatShrinksUnderTheReadEndsTheBodyEarly) {
    const TempDir dir;
    const QString path = name(dir.write("f", std::string(100, 'x')));
    QUpFile body(path, "", "0123456789", false);
    ASSERT_TRUE(body.openFile());
    char buffer[64];
    ASSERT_EQ(body.readData(buffer, 64), 64);
    ASSERT_TRUE(QFile::resize(path, 60));
    // The tail now starts before the read position: what is left of it, and no byte beyond.
    ASSERT_EQ(body.readData(buffer, 64), 6);
    EXPECT_EQ(std::string(buffer, 6), "456789");
    EXPECT_EQ(body.readData(buffer, 64), 0);
}

TEST(QUpFile, StartsAtTheOffset) {
    const TempDir dir;
    QUpFile body(name(dir.write("f", "0123456789")), "<", ">", false);
    ASSERT_TRUE(body.openFile());
    ASSERT_TRUE(body.seekFileStartPosition(7));
    EXPECT_EQ(body.filesize(), 3);
    EXPECT_EQ(readInPieces(body, 4), "<789>");
}

TEST(QUpFile, AnOffsetAtTheEndLeavesHeadAndTail) {
    const TempDir dir;
    QUpFile body(name(dir.write("f", "0123")), "<", ">", false);
    ASSERT_TRUE(body.openFile());
    ASSERT_TRUE(body.seekFileStartPosition(4));
    EXPECT_EQ(body.filesize(), 0);
    EXPECT_EQ(readInPieces(body, 64), "<>");
}

TEST(QUpFile, PositionZeroAndBelowIsNoSeek) {
    const TempDir dir;
    QUpFile body(name(dir.write("f", "0123")), "<", ">", false);
    ASSERT_TRUE(body.openFile());
    ASSERT_TRUE(body.seekFileStartPosition(2));
    EXPECT_FALSE(body.seekFileStartPosition(0));
    EXPECT_FALSE(body.seekFileStartPosition(-1));
    EXPECT_EQ(readInPieces(body, 64), "<23>");
}

TEST(QUpFile, AClosedFileCantBeSoughtOrRead) {
    const TempDir dir;
    QUpFile body(name(dir.write("f", "0123")), "<", ">", false);
    EXPECT_FALSE(body.seekFileStartPosition(1));
    char buffer[8];
    EXPECT_EQ(body.readData(buffer, sizeof(buffer)), -1);
}

TEST(QUpFile, AFileThatWontOpenIsReported) {
    const TempDir dir;
    QUpFile body(name(dir.file("missing")), "<", ">", false);
    EXPECT_FALSE(body.openFile());
    EXPECT_FALSE(body.isOpen());
}

TEST(QUpFile, WithoutAFileThereIsHeadAndTailAndNothingToOpen) {
    QUpFile body("/dev/null", "<head>", "<tail>", true);
    EXPECT_FALSE(body.openFile());
    EXPECT_EQ(body.filesize(), 0);
    EXPECT_EQ(body.size(), 12);
    ASSERT_TRUE(body.open(QIODevice::ReadOnly));
    EXPECT_EQ(readInPieces(body, 5), "<head><tail>");
}

TEST(QUpFile, NothingCanBeWritten) {
    QUpFile body("", "<", ">", true);
    EXPECT_EQ(body.writeData("x", 1), -1);
}

TEST(QUpFile, ASliceIsAtMostOneGiB) {
    const TempDir dir;
    QUpFile body(sparse(dir, 2 * kGiB), "h", "t", false);
    ASSERT_TRUE(body.openFile());
    EXPECT_EQ(body.filesize(), 2 * kGiB);
    body.setEnabledChunkUploadContinue(true);
    EXPECT_EQ(body.filesize(), 1073741824);
    EXPECT_EQ(body.size(), 1073741824 + 2);
    ASSERT_TRUE(body.seekFileStartPosition(1610612736));
    EXPECT_EQ(body.filesize(), 536870912);
}

TEST(QUpFile, ASliceEndsWithTheTailThoughTheFileGoesOn) {
    const TempDir dir;
    QUpFile body(sparse(dir, kGiB + 5), "<head>", "<tail>", false);
    ASSERT_TRUE(body.openFile());
    body.setEnabledChunkUploadContinue(true);
    std::string buffer(64 << 20, '\0');
    qint64 total = 0;
    std::string last;
    for (;;) {
        const qint64 count = body.readData(buffer.data(), static_cast<qint64>(buffer.size()));
        ASSERT_GE(count, 0);
        if (count == 0) break;
        total += count;
        last = (last + buffer.substr(static_cast<size_t>(std::max<qint64>(count - 7, 0)),
                                     static_cast<size_t>(std::min<qint64>(count, 7))));
        last = last.substr(last.size() - std::min<size_t>(last.size(), 7));
    }
    EXPECT_EQ(total, kGiB + 12);
    EXPECT_EQ(last, std::string("\0<tail>", 7));
}

TEST(OneWayBody, PassesTheBytesOnButIsNeverRewound) {
    const TempDir dir;
    QUpFile source(name(dir.write("f", "0123")), "<", ">", false);
    ASSERT_TRUE(source.openFile());
    OneWayBody body(source);
    EXPECT_FALSE(body.isSequential());
    EXPECT_EQ(body.size(), 6);
    EXPECT_EQ(body.read(4), "<012");
    EXPECT_FALSE(body.reset());
    EXPECT_FALSE(body.seek(0));
    EXPECT_EQ(body.pos(), 4);
    EXPECT_EQ(body.read(64), "3>");
    EXPECT_TRUE(body.atEnd());
    EXPECT_FALSE(body.ranDry());
}

TEST(OneWayBody, EvenAnEmptyOneIsNeverRewound) {
    QUpFile source("", "", "", true);
    ASSERT_TRUE(source.open(QIODevice::ReadOnly));
    OneWayBody body(source);
    EXPECT_FALSE(body.reset());
}

TEST(OneWayBody, ASourceThatRunsDryIsAnErrorNotAWait) {
    struct Dry : QIODevice {
        Dry() { open(QIODevice::ReadOnly | QIODevice::Unbuffered); }
        qint64 size() const override { return 100; }
        qint64 readData(char*, qint64) override { return 0; }
        qint64 writeData(const char*, qint64) override { return -1; }
    } source;
    OneWayBody body(source);
    char buffer[8];
    EXPECT_EQ(body.read(buffer, sizeof(buffer)), -1);
    EXPECT_TRUE(body.ranDry());
}
