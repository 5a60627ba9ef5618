#include <gtest/gtest.h>

#include <QNetworkInterface>
#include <QtGlobal>
#include <string>
#include <vector>

#include "WebFileManAPI.h"

namespace {

std::vector<std::string>* output = nullptr;

/// What it writes to debug output while this lives.
class DebugOutput {
public:
    DebugOutput() {
        output = &lines;
        m_before = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
            output->push_back(text.toStdString());
        });
    }
    ~DebugOutput() { qInstallMessageHandler(m_before); }
    DebugOutput(const DebugOutput&) = delete;
    DebugOutput& operator=(const DebugOutput&) = delete;
    std::vector<std::string> lines;

private:
    QtMessageHandler m_before;
};

}  // namespace

TEST(IsNetworkAliveWire, IsWhetherAnInterfaceButTheLoopbackIsUpWithAnAddress) {
    bool expected = false;
    for (const QNetworkInterface& interface : QNetworkInterface::allInterfaces()) {
        const bool isUp = interface.flags().testFlag(QNetworkInterface::IsUp);
        const bool isLoopback = interface.flags().testFlag(QNetworkInterface::IsLoopBack);
        if (isUp && !isLoopback && !interface.addressEntries().isEmpty()) expected = true;
    }
    EXPECT_EQ(IsNetworkAlive(), expected);
}

TEST(IsNetworkAliveWire, TellsDebugOutputOfEachInterfaceThatItLooksAt) {
    DebugOutput debug;
    IsNetworkAlive();
    ASSERT_FALSE(debug.lines.empty());
    EXPECT_EQ(debug.lines.front().rfind("name:", 0), 0u) << debug.lines.front();
    EXPECT_EQ(debug.lines.back().rfind("mac:", 0), 0u) << debug.lines.back();
}
