#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "WebFileManShareAPI.h"
#include "support/logcapture.h"

namespace {

/// One family's calls: both share the logger.
struct Family {
    const char* name;
    const char* fileName;
    const char* started;
    const char* ended;
    uint32_t (*initialize)(uint32_t, QString, bool, bool);
    uint32_t (*end)();
    uint32_t (*updateLevel)(uint32_t);
    uint32_t (*reOpen)();
    uint32_t (*clear)();
};

const Family kFileManager{"WFM",
                          "TorviWFMLibLog.log",
                          "[WFM] WFMInitialization: DebugLevel=63, Append=1, FenkLevel=63",
                          "[WFM] WFMUnInitialization",
                          WFMInitialization,
                          WFMUnInitialization,
                          WFMUpdateDebugLevel,
                          WFMReOpenLogFile,
                          WFMClearLog};
const Family kSharing{"WFMShare",
                      "TorviWFMShareLibLog.log",
                      "[WFMShare] WFMShareInitialization: DebugLevel=63, Append=1, FenkLevel=63",
                      "[WFMShare] WFMShareUnInitialization",
                      WFMShareInitialization,
                      WFMShareUnInitialization,
                      WFMShareUpdateDebugLevel,
                      WFMShareReOpenLogFile,
                      WFMShareClearLog};

const char* const kBanner = "\n===============Finish Logging================\n\n";

QString content(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

/// A line at level 32 that anybody can cause.
void causeALine() {
    bool sync = false;
    WFMGetUseNuboCGI(nullptr, &sync);
}
const char* const kLine = "[WFM] WFMGetUseNuboCGI: WFM_PARSE_XML_INVALID_PARAMETER";

class LifetimeWire : public testing::TestWithParam<Family> {
protected:
    LifetimeWire() { WFMUnInitialization(); }
    ~LifetimeWire() override { WFMUnInitialization(); }

    QString path() const { return m_dir.filePath(GetParam().fileName); }
    QTemporaryDir m_dir;
};

}  // namespace

TEST_P(LifetimeWire, WritesEveryLineAndTheBannerBeforeItEnds) {
    const Family& family = GetParam();
    EXPECT_EQ(family.initialize(63, m_dir.path(), true, true), 0u);
    for (int i = 0; i < 1000; ++i) causeALine();
    EXPECT_EQ(family.end(), 0u);
    const QString text = content(path());
    EXPECT_EQ(text.count(kLine), 1000);
    EXPECT_TRUE(text.contains(family.started)) << text.left(200).toStdString();
    EXPECT_TRUE(text.contains(QString("[Trace] ") + family.ended + "\n"));
    EXPECT_TRUE(text.endsWith(kBanner));
}

TEST_P(LifetimeWire, EndsTwiceAndInEitherOrder) {
    const Family& family = GetParam();
    family.initialize(63, m_dir.path(), true, true);
    EXPECT_EQ(WFMShareUnInitialization(), 0u);
    EXPECT_EQ(WFMUnInitialization(), 0u);
    EXPECT_EQ(family.end(), 0u);
    EXPECT_EQ(content(path()).count("Finish Logging"), 1);
}

TEST_P(LifetimeWire, ALateCallOnlyLosesTheFile) {
    const Family& family = GetParam();
    family.initialize(63, m_dir.path(), true, true);
    family.end();
    const QString before = content(path());
    causeALine();
    WFMUnInitialization();
    EXPECT_EQ(content(path()), before);
}

TEST_P(LifetimeWire, StartsAgainAfterItsEnd) {
    const Family& family = GetParam();
    family.initialize(63, m_dir.path(), true, true);
    family.end();
    family.initialize(63, m_dir.path(), true, true);
    causeALine();
    family.end();
    EXPECT_EQ(content(path()).count(kLine), 1);
    EXPECT_EQ(content(path()).count("Finish Logging"), 2);
}

TEST_P(LifetimeWire, WithoutAppendTheFileBeginsEmpty) {
    const Family& family = GetParam();
    QFile old(path());
    old.open(QIODevice::WriteOnly);
    old.write("old\n");
    old.close();
    family.initialize(63, m_dir.path() + "/", true, false);
    family.end();
    EXPECT_FALSE(content(path()).contains("old"));
    EXPECT_TRUE(content(path()).contains("Append=0"));
}

TEST_P(LifetimeWire, TheFamilyThatComesFirstWinsTheFileAndTheLastTheLevel) {
    const Family& family = GetParam();
    const Family& other = family.initialize == WFMInitialization ? kSharing : kFileManager;
    family.initialize(63, m_dir.path(), true, true);
    other.initialize(16, m_dir.path(), true, true);
    causeALine();  // level 32, which 16 leaves out
    family.end();
    EXPECT_FALSE(QFile::exists(m_dir.filePath(other.fileName)));
    EXPECT_FALSE(content(path()).contains(kLine));
}

TEST_P(LifetimeWire, TheLevelIsAMask) {
    const Family& family = GetParam();
    LogCapture log;
    EXPECT_EQ(family.updateLevel(0), 0u);
    causeALine();
    log.expectNoLines();
    family.updateLevel(31);
    causeALine();
    log.expectNoLines();
    family.updateLevel(32);
    causeALine();
    log.expectLines({kLine});
}

TEST_P(LifetimeWire, ClearingEmptiesTheFileAndNewLinesBeginIt) {
    const Family& family = GetParam();
    QFile old(path());
    old.open(QIODevice::WriteOnly);
    old.write("old\n");
    old.close();
    family.initialize(32, m_dir.path(), true, true);
    EXPECT_EQ(content(path()), "old\n");
    EXPECT_EQ(family.clear(), 0u);
    causeALine();
    family.end();
    EXPECT_TRUE(content(path()).startsWith('[')) << content(path()).toStdString();
}

TEST_P(LifetimeWire, AnEmptyFolderIsTheRoot) {
    const Family& family = GetParam();
    const QString rootLog = QString("/") + family.fileName;
    if (QFile::exists(rootLog) || !QFileInfo("/").isWritable()) GTEST_SKIP() << "can't write to /";
    family.initialize(63, QString(), true, true);
    family.end();
    EXPECT_TRUE(QFile::remove(rootLog));
}

TEST_P(LifetimeWire, ReopeningFollowsAnOutsideRotation) {
    const Family& family = GetParam();
    family.initialize(63, m_dir.path(), true, true);
    ASSERT_TRUE(QFile::rename(path(), m_dir.filePath("moved.log")));
    EXPECT_EQ(family.reOpen(), 0u);
    causeALine();
    family.end();
    EXPECT_TRUE(content(path()).contains(kLine));
}

TEST_P(LifetimeWire, AnUnwritableFolderLeavesTheLibraryWorking) {
    const Family& family = GetParam();
    LogCapture log;
    EXPECT_EQ(family.initialize(32, m_dir.filePath("no/such/folder"), true, true), 0u);
    causeALine();
    EXPECT_EQ(family.clear(), 0u);
    EXPECT_EQ(family.reOpen(), 0u);
    log.expectLines({kLine});
}

TEST_P(LifetimeWire, WithoutAFileItMakesNone) {
    const Family& family = GetParam();
    family.initialize(63, m_dir.path(), false, true);
    causeALine();
    family.end();
    EXPECT_TRUE(QDir(m_dir.path()).isEmpty());
}

INSTANTIATE_TEST_SUITE_P(, LifetimeWire, testing::Values(kFileManager, kSharing),
                         [](const auto& info) { return info.param.name; });
