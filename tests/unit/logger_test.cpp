#include "core/qclogger.h"

#include <gmock/gmock.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTextCodec>
#include <algorithm>
#include <atomic>
#include <clocale>
#include <cstdarg>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

#include "core/loggerfile.h"
#include "core/logtext.h"
#include "support/sanitized.h"
#include "support/tempdir.h"

using namespace Lattice;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

const std::string banner = "\n===============Finish Logging================\n\n";

/// Collects what goes to debug output.
class DebugOutput {
public:
    DebugOutput() : m_before((s_current = this, qInstallMessageHandler(Handle))) {}
    ~DebugOutput() {
        qInstallMessageHandler(m_before);
        s_current = nullptr;
    }

    /// What came so far. The logger is finished first, so this is all that was posted.
    std::vector<std::string> lines() {
        Logger::getInstance().finish();
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_lines;
    }
    /// Called on the logger's thread for each line.
    std::function<void(const QString&)> onLine;

private:
    static void Handle(QtMsgType type, const QMessageLogContext&, const QString& message) {
        if (type != QtDebugMsg) {
            return;
        }
        DebugOutput& output = *s_current;
        {
            std::lock_guard<std::mutex> lock(output.m_mutex);
            output.m_lines.push_back(message.toStdString());
        }
        if (output.onLine) {
            output.onLine(message);
        }
    }

    static inline DebugOutput* s_current = nullptr;
    std::mutex m_mutex;
    std::vector<std::string> m_lines;
    QtMessageHandler m_before;
};

class LoggerTest : public testing::Test {
protected:
    LoggerTest() { logger.finish(); }
    ~LoggerTest() override { logger.finish(); }

    std::string path(const char* name = "log") const { return folder.file(name); }
    bool open(const char* name = "log", bool append = false, bool toFile = true) {
        return logger.InitLogFile(QString::fromStdString(path(name)), append, toFile);
    }
    std::string content(const char* name = "log") {
        logger.finish();
        return folder.read(name);
    }

    TempDir folder;
    Logger& logger = Logger::getInstance();
};

using LogLineTest = LoggerTest;

__attribute__((format(printf, 1, 2))) std::string Text(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const QString text = LogText(format, arguments);
    va_end(arguments);
    return text.toStdString();
}

std::string WithoutHead(const std::string& line) {
    const size_t end = line.find("] [");
    return line.substr(line.find("] ", end + 3) + 2);
}

/// The receiver that a user interface would have.
class Window : public QObject {
    Q_OBJECT

public slots:
    void processLog(QString log) {
        lines.push_back(log.toStdString());
        thread = std::this_thread::get_id();
    }

public:
    std::vector<std::string> lines;
    std::thread::id thread;
};

}  // namespace

// ---- The text of a line ----

TEST(LogText, WideTextIsWholeInEveryLocale) {
    for (const char* locale : {"C", "C.UTF-8"}) {
        const std::string before = std::setlocale(LC_ALL, nullptr);
        ASSERT_NE(nullptr, std::setlocale(LC_ALL, locale));
        EXPECT_EQ("(127.0.0.1:8080)", Text("(%ls:%d)", L"127.0.0.1", 8080)) << locale;
        EXPECT_EQ("/文件夹/\U0001F600\U0010FFFF.", Text("/%ls/%ls.", L"文件夹", L"\U0001F600\U0010FFFF"))
            << locale;
        EXPECT_EQ("中", Text("%lc", static_cast<wint_t>(L'中'))) << locale;
        std::setlocale(LC_ALL, before.c_str());
    }
}

TEST(LogText, NullPrintsAsNothing) {
    // Volatile, or the compiler sees the nulls and warns.
    const wchar_t* volatile wide = nullptr;
    const char* volatile narrow = nullptr;
    EXPECT_EQ("<> <> <   >", Text("<%ls> <%s> <%3ls>", wide, narrow, wide));
    EXPECT_EQ("", Text(narrow));
}

TEST(LogText, NarrowTextAndFormatAreUtf8) {
    EXPECT_EQ("é: 中文\U0001F600", Text("é: %s", "中文\U0001F600"));
}

TEST(LogText, ALineHasNoLengthLimit) {
    const std::wstring wide(100000, L'文');
    const std::string narrow(100000, 'x');
    EXPECT_EQ(3u * 100000 + 100000, Text("%ls%s", wide.c_str(), narrow.c_str()).size());
}

TEST(LogText, WhatIsNoCharacterIsReplaced) {
    const wchar_t text[] = {L'a', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x110000), L'b', 0};
    EXPECT_EQ("a\uFFFD\uFFFDb", Text("%ls", text));
}

TEST(LogText, NumbersOfEveryLength) {
    EXPECT_EQ("-1 2 4294967295 ff FF 17", Text("%d %i %u %x %X %o", -1, 2, ~0u, 255u, 255u, 15u));
    EXPECT_EQ("-9223372036854775808 18446744073709551615",
              Text("%lld %llu", -9223372036854775807LL - 1, 18446744073709551615ULL));
    EXPECT_EQ("-5 5 7 8 -9", Text("%ld %lu %zu %zd %jd", -5L, 5UL, size_t{7}, ssize_t{8}, intmax_t{-9}));
    EXPECT_EQ("-1 255 -1 65535 3", Text("%hhd %hhu %hd %hu %td", -1, 255, -1, 65535, ptrdiff_t{3}));
    EXPECT_EQ("ffffffffffffffff", Text("%llx", ~0ULL));
}

TEST(LogText, FlagsWidthAndPrecision) {
    EXPECT_EQ("[   42][42   ][00042][+42][0x2a][  042]",
              Text("[%5d][%-5d][%05d][%+d][%#x][%5.3d]", 42, 42, 42, 42, 42u, 42));
    EXPECT_EQ("[   42][42   ][042]", Text("[%*d][%*d][%.*d]", 5, 42, -5, 42, 3, 42));
    EXPECT_EQ("[  中文][中文  ][中]", Text("[%4ls][%-4ls][%.1ls]", L"中文", L"中文", L"中文"));
    EXPECT_EQ("[ \U0001F600]", Text("[%2ls]", L"\U0001F600"));
    EXPECT_EQ("[  ab][ab  ][a][]", Text("[%4s][%-4s][%.1s][%.0s]", "ab", "ab", "ab", "ab"));
    EXPECT_EQ("[  c][c  ]", Text("[%3c][%-3c]", 'c', 'c'));
    EXPECT_EQ(std::string(299, ' ') + "1", Text("%300d", 1));
}

TEST(LogText, APrecisionBoundsTheReading) {
    const std::vector<wchar_t> wide = {L'a', L'b'};  // no terminator
    const std::vector<char> narrow = {'a', 'b'};
    EXPECT_EQ("ab ab", Text("%.2ls %.*s", wide.data(), 2, narrow.data()));
    EXPECT_EQ("ab", Text("%.*s", -1, "ab"));
}

TEST(LogText, PointersPercentAndCharacters) {
    EXPECT_EQ("100% c 0x10", Text("100%% %c %p", 'c', reinterpret_cast<void*>(16)));
}

TEST(LogText, UnknownConversionsStandAsTheyAre) {
    // No literals: the compiler knows better.
    const std::string unknown = "a %y b %-5.3lk c %", counting = "abc%n";
    EXPECT_EQ("a %y b %-5.3lk c %", Text(unknown.c_str(), 0));
    int count = 5;
    EXPECT_EQ("abc%n", Text(counting.c_str(), &count));
    EXPECT_EQ(5, count);
}

// ---- The interface ----

TEST_F(LoggerTest, LevelsAreRegisteredWithTheMetaObjectSystem) {
    const std::map<std::string, int> levels = {{"NoLevel", 0}, {"Trace", 1}, {"Performance", 2},
                                               {"Debug", 4},   {"Info", 8},  {"Warning", 16},
                                               {"Error", 32},  {"All", 63}};
    const QMetaEnum metaEnum = QMetaEnum::fromType<Logger::LogLevel>();
    ASSERT_EQ(static_cast<int>(levels.size()), metaEnum.keyCount());
    for (const auto& [name, value] : levels) {
        EXPECT_EQ(value, metaEnum.keyToValue(name.c_str())) << name;
        EXPECT_EQ(name, Logger::logLevelToString(static_cast<Logger::LogLevel>(value)).toStdString());
    }
    EXPECT_NE(QMetaType::UnknownType, QMetaType::type("Lattice::Logger::LogLevel"));
    EXPECT_NE(QMetaType::UnknownType, QMetaType::type("Lattice::Logger::LogLevels"));
    EXPECT_TRUE(QMetaEnum::fromType<Logger::LogLevels>().isFlag());
}

TEST_F(LoggerTest, TheMetaObjectDeclaresSignalAndSlot) {
    const QMetaObject& meta = Logger::staticMetaObject;
    EXPECT_STREQ("Lattice::Logger", meta.className());
    EXPECT_EQ(QMetaMethod::Signal, meta.method(meta.indexOfSignal("updateLog(QString)")).methodType());
    EXPECT_EQ(QMetaMethod::Slot, meta.method(meta.indexOfSlot("processLog(QString)")).methodType());
}

TEST_F(LoggerTest, IsOneObjectForAllThreads) {
    std::vector<Logger*> seen(8);
    std::vector<std::thread> threads;
    for (auto& one : seen) {
        threads.emplace_back([&one] { one = &Logger::getInstance(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_THAT(seen, testing::Each(&logger));
}

TEST_F(LogLineTest, BeginsWithTimeAndLevel) {
    DebugOutput output;
    logger.printLog(Logger::Error, "[WFM] %s: WFM_PARSE_XML_FAIL", "WFMLogin");
    logger.printLog(Logger::Trace, "x");
    const auto lines = output.lines();
    ASSERT_EQ(2u, lines.size());
    EXPECT_TRUE(
        QRegularExpression("^\\[\\d\\d:\\d\\d:\\d\\d\\] \\[Error\\] \\[WFM\\] WFMLogin: WFM_PARSE_XML_FAIL$")
            .match(QString::fromStdString(lines[0]))
            .hasMatch())
        << lines[0];
    EXPECT_TRUE(QRegularExpression("^\\[\\d\\d:\\d\\d:\\d\\d\\] \\[Trace\\] x$")
                    .match(QString::fromStdString(lines[1]))
                    .hasMatch())
        << lines[1];
}

TEST_F(LogLineTest, ByDefaultOnlyErrorsAreWritten) {
    DebugOutput output;
    for (const int level : {1, 2, 4, 8, 16, 32}) {
        LogLine(static_cast<Logger::LogLevel>(level), "level %d", level);
    }
    const auto lines = output.lines();
    ASSERT_EQ(1u, lines.size());
    EXPECT_THAT(lines[0], EndsWith("[Error] level 32"));
}

TEST_F(LogLineTest, WithMaskZeroNothingIsWritten) {
    DebugOutput output;
    logger.setLevels(Logger::NoLevel);
    for (const int level : {1, 2, 4, 8, 16, 32, 63}) {
        LogLine(static_cast<Logger::LogLevel>(level), "level %d", level);
    }
    EXPECT_THAT(output.lines(), IsEmpty());
}

TEST_F(LogLineTest, WithMask63EveryLevelIsWritten) {
    DebugOutput output;
    logger.setLevels(Logger::All);
    for (const int level : {1, 2, 4, 8, 16, 32}) {
        LogLine(static_cast<Logger::LogLevel>(level), "level %d", level);
    }
    const auto lines = output.lines();
    ASSERT_EQ(6u, lines.size());
    EXPECT_THAT(lines[0], EndsWith("[Trace] level 1"));
    EXPECT_THAT(lines[1], EndsWith("[Performance] level 2"));
    EXPECT_THAT(lines[2], EndsWith("[Debug] level 4"));
    EXPECT_THAT(lines[3], EndsWith("[Info] level 8"));
    EXPECT_THAT(lines[4], EndsWith("[Warning] level 16"));
    EXPECT_THAT(lines[5], EndsWith("[Error] level 32"));
}

TEST_F(LogLineTest, TheMaskLetsOnlyItsBitsThrough) {
    DebugOutput output;
    logger.setLevels(Logger::Trace | Logger::Warning);
    for (const int level : {1, 2, 4, 8, 16, 32}) {
        LogLine(static_cast<Logger::LogLevel>(level), "level %d", level);
    }
    EXPECT_THAT(output.lines(), ElementsAre(EndsWith("level 1"), EndsWith("level 16")));
}

TEST_F(LogLineTest, PrintLogDoesNotTestTheMask) {
    DebugOutput output;
    logger.setLevels(Logger::NoLevel);
    logger.printLog(Logger::Info, "all the same");
    EXPECT_THAT(output.lines(), ElementsAre(EndsWith("[Info] all the same")));
}

TEST_F(LogLineTest, DebugOutputGetsTheTextAsItIs) {
    DebugOutput output;
    LogLine(Logger::Error, "\"%ls\" 100%% \\n %ls ", L"中文\U0001F600", L"\t end");
    EXPECT_THAT(output.lines(), ElementsAre(EndsWith("] \"中文\U0001F600\" 100% \\n \t end ")));
}

TEST_F(LoggerTest, AnEmptyTextIsIgnored) {
    DebugOutput output;
    open();
    logger.processLog(QString());
    logger.processLog("one");
    EXPECT_THAT(output.lines(), ElementsAre("one"));
    EXPECT_EQ("one\n" + banner, content());
}

// ---- The file ----

TEST_F(LoggerTest, LinesGoToTheFileWithBannerAtTheEnd) {
    EXPECT_TRUE(open());
    LogLine(Logger::Error, "one");
    LogLine(Logger::Error, "two");
    EXPECT_TRUE(QRegularExpression("^\\[[0-9:]{8}\\] \\[Error\\] one\n\\[[0-9:]{8}\\] \\[Error\\] two\n"
                                   "\n===============Finish Logging================\n\n$")
                    .match(QString::fromStdString(content()))
                    .hasMatch())
        << content();
}

TEST_F(LoggerTest, AnyWideTextReachesTheFileWhateverTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    QTextCodec* codecBefore = QTextCodec::codecForLocale();
    std::setlocale(LC_ALL, "C");
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    open();
    LogLine(Logger::Error, "[WFM] %s(%ls:%d) %ls", "F", L"127.0.0.1", 8080, L"文件夹/\U0001F600\U00020000");
    const std::string text = content();
    QTextCodec::setCodecForLocale(codecBefore);
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_THAT(text, HasSubstr("[WFM] F(127.0.0.1:8080) 文件夹/\U0001F600\U00020000\n"));
}

TEST_F(LoggerTest, WithoutLinesThereIsNoBanner) {
    open();
    EXPECT_EQ("", content());
}

TEST_F(LoggerTest, ASecondFileIsRefusedAndTheFirstKept) {
    EXPECT_TRUE(open("first"));
    EXPECT_FALSE(open("second"));
    LogLine(Logger::Error, "one");
    EXPECT_THAT(content("first"), HasSubstr("one\n"));
    EXPECT_THROW(folder.read("second"), std::runtime_error);
}

TEST_F(LoggerTest, AnEmptyPathMakesNoFile) {
    EXPECT_FALSE(logger.InitLogFile(QString(), false, true));
    EXPECT_TRUE(open());
}

TEST_F(LoggerTest, TheFlagIsStoredByEveryCall) {
    open("log", false, true);
    LogLine(Logger::Error, "one");
    logger.finish();
    EXPECT_TRUE(open("log", true, false));
    logger.processLog("two");
    EXPECT_FALSE(logger.InitLogFile(QString(), true, true));
    logger.processLog("three");
    EXPECT_FALSE(open("other", true, false));
    logger.processLog("four");
    const std::string text = content();
    EXPECT_THAT(text, HasSubstr("one\n"));
    EXPECT_THAT(text, Not(HasSubstr("two")));
    EXPECT_THAT(text, HasSubstr("three\n"));
    EXPECT_THAT(text, Not(HasSubstr("four")));
}

TEST_F(LoggerTest, AnUnwritablePathLeavesDebugOutput) {
    DebugOutput output;
    EXPECT_TRUE(logger.InitLogFile(QString::fromStdString(folder.file("no/such/folder/log")), false, true));
    LogLine(Logger::Error, "one");
    logger.Reopen();
    logger.clearLog();
    EXPECT_THAT(output.lines(), ElementsAre(EndsWith("one")));

    EXPECT_TRUE(logger.InitLogFile(QString::fromStdString(folder.string()), true, true));  // a folder
    LogLine(Logger::Error, "two");
    EXPECT_THAT(output.lines(), ElementsAre(EndsWith("one"), EndsWith("two")));
}

TEST_F(LoggerTest, APipeIsNotWaitedFor) {
    ASSERT_EQ(0, mkfifo(path().c_str(), 0600));
    DebugOutput output;
    open("log", true);
    LogLine(Logger::Error, "one");
    EXPECT_THAT(output.lines(), SizeIs(1));
}

TEST_F(LoggerTest, WithoutAppendTheFileIsEmptiedAtTheStart) {
    folder.write("log", "old\n");
    open("log", false);
    LogLine(Logger::Error, "new");
    EXPECT_THAT(content(), AllOf(Not(HasSubstr("old")), HasSubstr("new\n")));
}

TEST_F(LoggerTest, WithAppendTheFileGoesOn) {
    folder.write("log", "old\n");
    open("log", true);
    LogLine(Logger::Error, "new");
    EXPECT_THAT(content(), AllOf(StartsWith("old\n["), HasSubstr("new\n")));
}

TEST_F(LoggerTest, AFileAboveTheLineLimitContinuesAtItsEnd) {
    std::string old;
    for (int i = 0; i < 10001; ++i) {
        old += "line " + std::to_string(i) + "\n";
    }
    folder.write("log", old);
    open("log", true);
    LogLine(Logger::Error, "one");
    LogLine(Logger::Error, "two");
    const std::string text = content();
    EXPECT_EQ(old, text.substr(0, old.size()));
    EXPECT_THAT(text.substr(old.size()), AllOf(HasSubstr("one\n"), HasSubstr("two\n"), EndsWith(banner)));
}

TEST_F(LoggerTest, AFileThatGrowsAboveTheLineLimitLosesNothing) {
    open();
    for (int i = 0; i < 10050; ++i) {
        LogLine(Logger::Error, "line %d.", i);
    }
    const std::string text = content();
    EXPECT_EQ(10050 + 3, std::count(text.begin(), text.end(), '\n'));
    for (const int i : {0, 1, 9999, 10000, 10001, 10002, 10049}) {
        EXPECT_THAT(text, HasSubstr("line " + std::to_string(i) + ".\n"));
    }
}

TEST_F(LoggerTest, ClearingEmptiesTheFileAndNewLinesStartAtItsBeginning) {
    open();
    logger.processLog("old");
    logger.clearLog();
    EXPECT_EQ("", folder.read("log"));
    logger.processLog("new");
    EXPECT_EQ("new\n", folder.read("log"));
    EXPECT_EQ("new\n" + banner, content());
}

TEST_F(LoggerTest, ReopeningFollowsARotationFromOutside) {
    open();
    logger.processLog("before");
    std::filesystem::rename(path("log"), path("log.1"));
    logger.processLog("still in the moved file");
    logger.Reopen();
    logger.processLog("after");
    EXPECT_EQ("before\nstill in the moved file\n", folder.read("log.1"));
    EXPECT_EQ("after\n" + banner, content());
}

TEST_F(LoggerTest, AFailedReopeningIsMadeGoodByTheNext) {
    std::filesystem::create_directory(folder.path() / "sub");
    ASSERT_TRUE(open("sub/log"));
    logger.processLog("one");
    std::filesystem::remove_all(folder.path() / "sub");
    logger.Reopen();
    logger.processLog("lost");
    std::filesystem::create_directory(folder.path() / "sub");
    logger.Reopen();
    logger.processLog("two");
    EXPECT_EQ("two\n" + banner, content("sub/log"));
}

TEST_F(LoggerTest, WithoutAFileReopenAndClearDoNothing) {
    logger.Reopen();
    logger.clearLog();
}

TEST(LoggerFile, EachWriteReachesTheSystemAtOnce) {
    TempDir folder;
    {
        LoggerFile file(QString::fromStdString(folder.file("log")), false);
        file.Write("one\n");
        EXPECT_EQ("one\n", folder.read("log"));
        file.Write("");
        EXPECT_EQ("one\n", folder.read("log"));
    }
    EXPECT_EQ("one\n" + banner, folder.read("log"));
}

TEST(LoggerFile, AppendsToWhatOthersWroteMeanwhile) {
    TempDir folder;
    LoggerFile file(QString::fromStdString(folder.file("log")), false);
    file.Write("one\n");
    {
        std::ofstream other(folder.file("log"), std::ios::app);
        other << "other\n";
    }
    file.Write("two\n");
    EXPECT_EQ("one\nother\ntwo\n", folder.read("log"));
}

// ---- Receivers ----

TEST_F(LoggerTest, EveryLineGoesToAReceiverOnItsOwnThread) {
    Window window;
    logger.updatetoUI(&window);
    LogLine(Logger::Error, "one");
    std::thread([] { LogLine(Logger::Error, "two"); }).join();
    EXPECT_THAT(window.lines, IsEmpty());  // queued
    QCoreApplication::processEvents();
    EXPECT_THAT(window.lines, ElementsAre(EndsWith("[Error] one"), EndsWith("[Error] two")));
    EXPECT_EQ(std::this_thread::get_id(), window.thread);
}

TEST_F(LoggerTest, ANullReceiverIsIgnoredAndADeadOneForgotten) {
    logger.updatetoUI(nullptr);
    {
        Window window;
        logger.updatetoUI(&window);
    }
    LogLine(Logger::Error, "one");
    QCoreApplication::processEvents();
}

TEST_F(LoggerTest, AFreshStartHasNoReceivers) {
    Window window;
    logger.updatetoUI(&window);
    logger.finish();
    LogLine(Logger::Error, "one");
    QCoreApplication::processEvents();
    EXPECT_THAT(window.lines, IsEmpty());
}

// ---- Threads ----

TEST_F(LoggerTest, LinesArePrintedOnTheLoggersThread) {
    DebugOutput output;
    std::thread::id printer;
    output.onLine = [&](const QString&) { printer = std::this_thread::get_id(); };
    LogLine(Logger::Error, "one");
    output.lines();
    EXPECT_NE(std::thread::id(), printer);
    EXPECT_NE(std::this_thread::get_id(), printer);
}

TEST_F(LoggerTest, OrderIsKeptForEachThread) {
    open();
    constexpr int threadCount = 8, lineCount = 300;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < lineCount; ++i) {
                LogLine(Logger::Error, "thread %d line %d", t, i);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    std::istringstream lines(content());
    std::vector<int> next(threadCount, 0);
    for (std::string line; std::getline(lines, line) && !line.empty();) {
        int t = -1, i = -1;
        ASSERT_EQ(2, std::sscanf(WithoutHead(line).c_str(), "thread %d line %d", &t, &i)) << line;
        ASSERT_EQ(next.at(t)++, i);
    }
    EXPECT_THAT(next, testing::Each(lineCount));
}

TEST_F(LoggerTest, ACallDoesNotWaitForTheOutput) {
    DebugOutput output;
    std::promise<void> gate;
    const std::shared_future<void> opened = gate.get_future().share();
    output.onLine = [&](const QString&) { opened.wait(); };
    for (int i = 0; i < 1000; ++i) {
        LogLine(Logger::Error, "line %d", i);  // would hang if it waited
    }
    gate.set_value();
    EXPECT_THAT(output.lines(), SizeIs(1000));
}

TEST_F(LoggerTest, AMessageHandlerMayLog) {
    DebugOutput output;
    output.onLine = [](const QString& line) {
        if (line.endsWith("first")) {
            LogLine(Logger::Error, "second");
            Logger::getInstance().setLevels(Logger::All);
            Logger::getInstance().clearLog();
            Logger::getInstance().Reopen();
        }
    };
    LogLine(Logger::Error, "first");
    logger.finish();
    EXPECT_THAT(output.lines(), ElementsAre(EndsWith("first"), EndsWith("second")));
}

TEST_F(LoggerTest, AMessageHandlerThatLogsEveryLineDoesNotKeepFinishFromEnding) {
    DebugOutput output;
    std::atomic<bool> on{true};
    output.onLine = [&on](const QString&) {
        if (on) {
            LogLine(Logger::Error, "again");
        }
    };
    LogLine(Logger::Error, "first");
    logger.finish();
    on = false;
    logger.finish();  // the line under way may have posted one more
    EXPECT_THAT(output.lines().front(), EndsWith("first"));
}

TEST_F(LoggerTest, AMessageHandlerMayFinishTheLogger) {
    DebugOutput output;
    std::atomic<bool> finished{false};
    output.onLine = [&](const QString& line) {
        if (line.endsWith("first")) {
            Logger::getInstance().finish();
            finished = true;
        }
    };
    open();
    LogLine(Logger::Error, "first");
    logger.finish();
    EXPECT_TRUE(finished);
    EXPECT_THAT(content(), AllOf(HasSubstr("first\n"), EndsWith(banner)));
    LogLine(Logger::Error, "second");
    EXPECT_THAT(output.lines(), ElementsAre(EndsWith("first"), EndsWith("second")));
}

// ---- The end ----

TEST_F(LoggerTest, FinishWritesEveryLinePostedSoFar) {
    DebugOutput output;
    std::promise<void> gate;
    const std::shared_future<void> opened = gate.get_future().share();
    output.onLine = [&](const QString&) { opened.wait(); };
    open();
    for (int i = 0; i < 500; ++i) {
        LogLine(Logger::Error, "line %d.", i);
    }
    std::thread opener([&] { gate.set_value(); });
    logger.finish();
    opener.join();
    const std::string text = folder.read("log");
    EXPECT_THAT(text, AllOf(HasSubstr("line 0.\n"), HasSubstr("line 499.\n"), EndsWith(banner)));
}

TEST_F(LoggerTest, AForkedChildEndsWithoutTheThread) {
    Logger& logger = Logger::getInstance();
    logger.printLog(Logger::Error, "before the fork");
    const pid_t child = fork();
    if (child == 0) {
        alarm(30);  // ends a child that waits
        logger.printLog(Logger::Error, "nobody writes this");
        logger.finish();
        _exit(7);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

TEST_F(LoggerTest, AfterFinishTheLoggerStartsAfresh) {
    open("first");
    logger.setLevels(Logger::All);
    LogLine(Logger::Trace, "one");
    logger.finish();

    EXPECT_TRUE(logger.enabled(Logger::Error));
    EXPECT_FALSE(logger.enabled(Logger::Trace));
    LogLine(Logger::Error, "between");
    logger.finish();

    EXPECT_TRUE(open("second"));
    LogLine(Logger::Error, "two");
    EXPECT_THAT(content("second"), AllOf(HasSubstr("two\n"), EndsWith(banner)));
    EXPECT_THAT(content("first"), AllOf(HasSubstr("one\n"), Not(HasSubstr("between")), EndsWith(banner)));
}

TEST_F(LoggerTest, FinishTwiceWritesOneBanner) {
    open();
    LogLine(Logger::Error, "one");
    logger.finish();
    logger.finish();
    const std::string text = content();
    EXPECT_EQ(text.find(banner), text.rfind(banner));
}

TEST_F(LoggerTest, FinishingFromManyThreadsWhileOthersLogLosesNoLineAndNoOrder) {
    constexpr int threadCount = 4, lineCount = 400;
    DebugOutput output;
    std::atomic<bool> done{false};
    std::vector<std::thread> finishers, posters;
    for (int f = 0; f < 3; ++f) {
        finishers.emplace_back([&] {
            while (!done) {
                open();
                Logger::getInstance().finish();
            }
        });
    }
    for (int t = 0; t < threadCount; ++t) {
        posters.emplace_back([t] {
            for (int i = 0; i < lineCount; ++i) {
                LogLine(Logger::Error, "thread %d line %d", t, i);
            }
        });
    }
    for (auto& thread : posters) {
        thread.join();
    }
    done = true;
    for (auto& thread : finishers) {
        thread.join();
    }
    std::vector<int> next(threadCount, 0);
    for (const std::string& line : output.lines()) {
        int t = -1, i = -1;
        ASSERT_EQ(2, std::sscanf(WithoutHead(line).c_str(), "thread %d line %d", &t, &i)) << line;
        ASSERT_EQ(next.at(t)++, i);
    }
    EXPECT_THAT(next, testing::Each(lineCount));
}

// ---- The end of the process ----

namespace {

constexpr int childLines = 5 * 50;

struct Ending {
    const char* application;
    const char* finish;
    const char* end;
};

struct ChildRun {
    bool ended = false;
    int exitCode = -1;
    std::string errors;
    std::string log;
};

ChildRun RunChild(const Ending& ending, QStringList wrapper = {}) {
    TempDir folder;
    QStringList command = wrapper;
    command << LOGGER_CHILD_PATH << QString::fromStdString(folder.string()) << ending.application
            << ending.finish << ending.end;
    const QString program = command.takeFirst();
    QProcess child;
    // In the C locale, so that nothing but the logger itself can make the file UTF-8.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", "C");
    child.setProcessEnvironment(environment);
    child.start(program, command);
    ChildRun run;
    run.ended = child.waitForFinished(50000) && child.exitStatus() == QProcess::NormalExit;
    run.exitCode = child.exitCode();
    run.errors = child.readAllStandardError().toStdString();
    run.log = folder.read("TorviWFMLibLog.log");
    return run;
}

int Count(const std::string& text, const std::string& part) {
    int count = 0;
    for (size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size()) {
        ++count;
    }
    return count;
}

const std::string failedCall =
    "[Error] [WFM] WFMGetVersion(né文\U0001F600:0): WFM_PARSE_XML_INVALID_PARAMETER\n";

std::string Name(const testing::TestParamInfo<Ending>& info) {
    return std::string(info.param.application) + "_" + info.param.finish + "_" + info.param.end;
}

}  // namespace

class ProcessEnd : public testing::TestWithParam<Ending> {};

TEST_P(ProcessEnd, WritesEveryLineAndTheBanner) {
    const std::string finish = GetParam().finish;
    const ChildRun run = RunChild(GetParam());
    ASSERT_TRUE(run.ended) << run.errors;
    ASSERT_EQ(0, run.exitCode) << run.errors;
    EXPECT_THAT(run.log,
                HasSubstr("[Trace] [WFM] WFMInitialization: DebugLevel=63, Append=0, FenkLevel=63\n"));
    EXPECT_EQ(finish == "again" ? childLines + 50 : childLines, Count(run.log, failedCall));
    EXPECT_EQ(finish == "again" ? 2 : 1, Count(run.log, banner));
    EXPECT_THAT(run.log, EndsWith(banner));
    const bool own = finish == "once" || finish == "twice" || finish == "late" || finish == "again";
    EXPECT_EQ(own ? 1 : 0, Count(run.log, "[Trace] [WFM] WFMUnInitialization\n"));
    EXPECT_EQ(finish == "share" ? 1 : 0, Count(run.log, "[Trace] [WFMShare] WFMShareUnInitialization\n"));
}

INSTANTIATE_TEST_SUITE_P(Ways, ProcessEnd,
                         testing::Values(Ending{"none", "never", "return"}, Ending{"none", "never", "exit"},
                                         Ending{"none", "never", "thread"}, Ending{"none", "once", "return"},
                                         Ending{"none", "twice", "exit"}, Ending{"none", "late", "return"},
                                         Ending{"none", "again", "return"},
                                         Ending{"alive", "never", "return"}, Ending{"alive", "never", "exit"},
                                         Ending{"alive", "never", "thread"},
                                         Ending{"alive", "once", "return"},
                                         Ending{"alive", "twice", "return"},
                                         Ending{"alive", "share", "return"}, Ending{"alive", "late", "exit"},
                                         Ending{"alive", "again", "exit"}, Ending{"gone", "never", "return"},
                                         Ending{"gone", "once", "return"}, Ending{"gone", "share", "exit"}),
                         Name);

TEST(ProcessEndOnTheLoggersThread, WritesWhatIsLeftAndTheBanner) {
    const ChildRun run = RunChild({"alive", "never", "handler"});
    ASSERT_TRUE(run.ended) << run.errors;
    EXPECT_EQ(0, run.exitCode) << run.errors;
    // One line was on its way when the process was ended from it.
    EXPECT_GE(Count(run.log, failedCall), childLines - 1);
    EXPECT_THAT(run.log, EndsWith(banner));
}

class ProcessEndUnderValgrind : public testing::TestWithParam<Ending> {};

TEST_P(ProcessEndUnderValgrind, LeaksNothing) {
    const QString valgrind = QStandardPaths::findExecutable("valgrind");
    if (sanitized() || valgrind.isEmpty()) {
        GTEST_SKIP() << "no valgrind, or a build that doesn't go with it";
    }
    const ChildRun run = RunChild(GetParam(), {valgrind, "--quiet", "--leak-check=full", "--error-exitcode=9",
                                               "--errors-for-leak-kinds=definite,indirect,possible",
                                               "--show-leak-kinds=definite,indirect,possible"});
    EXPECT_TRUE(run.ended) << run.errors;
    EXPECT_EQ(0, run.exitCode) << run.errors;
    EXPECT_THAT(run.log, EndsWith(banner));
}

INSTANTIATE_TEST_SUITE_P(Ways, ProcessEndUnderValgrind,
                         testing::Values(Ending{"none", "never", "return"}, Ending{"alive", "never", "exit"},
                                         Ending{"alive", "twice", "return"},
                                         Ending{"gone", "late", "return"}),
                         Name);

#include "logger_test.moc"
