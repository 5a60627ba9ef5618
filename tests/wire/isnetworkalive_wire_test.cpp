#include <dlfcn.h>
#include <gtest/gtest.h>

#include <QNetworkInterface>
#include <QtGlobal>
#include <optional>
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

using Interfaces = QList<QNetworkInterface>;

std::optional<Interfaces> interfaces;

/// While this lives, the machine has these interfaces.
class Machine {
public:
    explicit Machine(const Interfaces& all) { interfaces = all; }
    ~Machine() { interfaces.reset(); }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;
};

bool isLoopback(const QNetworkInterface& interface) {
    return interface.flags().testFlag(QNetworkInterface::IsLoopBack);
}

}  // namespace

/// The program's own definition goes before Qt's, for the library under test as well.
Interfaces QNetworkInterface::allInterfaces() {
    if (interfaces) return *interfaces;
    static const auto real =
        reinterpret_cast<Interfaces (*)()>(dlsym(RTLD_NEXT, "_ZN17QNetworkInterface13allInterfacesEv"));
    return real();
}

TEST(IsNetworkAliveWire, AMachineWithoutAnInterfaceOrWithItsLoopbackAloneHasNoNetwork) {
    Interfaces loopbacks;
    for (const QNetworkInterface& interface : QNetworkInterface::allInterfaces())
        if (isLoopback(interface)) loopbacks << interface;
    ASSERT_FALSE(loopbacks.isEmpty());
    EXPECT_TRUE(loopbacks.first().flags().testFlag(QNetworkInterface::IsUp));
    EXPECT_FALSE(loopbacks.first().addressEntries().isEmpty());
    const Machine loopbackAlone(loopbacks);
    EXPECT_FALSE(IsNetworkAlive());
    interfaces->clear();
    EXPECT_FALSE(IsNetworkAlive());
    // One that isn't there is neither up nor has it an address.
    *interfaces << QNetworkInterface();
    EXPECT_FALSE(IsNetworkAlive());
}

TEST(IsNetworkAliveWire, OneInterfaceThatServesIsEnough) {
    for (const QNetworkInterface& interface : QNetworkInterface::allInterfaces()) {
        const bool isUp = interface.flags().testFlag(QNetworkInterface::IsUp);
        if (!isUp || isLoopback(interface) || interface.addressEntries().isEmpty()) continue;
        const Machine machine({QNetworkInterface::interfaceFromName("lo"), interface});
        EXPECT_TRUE(IsNetworkAlive());
        return;
    }
    GTEST_SKIP() << "this machine has no network";
}

TEST(IsNetworkAliveWire, IsWhetherAnInterfaceButTheLoopbackIsUpWithAnAddress) {
    bool expected = false;
    for (const QNetworkInterface& interface : QNetworkInterface::allInterfaces()) {
        const bool isUp = interface.flags().testFlag(QNetworkInterface::IsUp);
        if (isUp && !isLoopback(interface) && !interface.addressEntries().isEmpty()) expected = true;
    }
    EXPECT_EQ(IsNetworkAlive(), expected);
}

TEST(IsNetworkAliveWire, TellsDebugOutputOfEachInterfaceThatItLooksAt) {
    DebugOutput debug;
    const QNetworkInterface loopback = QNetworkInterface::interfaceFromName("lo");
    const Machine machine({loopback, loopback});
    IsNetworkAlive();
    const size_t addresses = static_cast<size_t>(loopback.addressEntries().size());
    ASSERT_EQ(debug.lines.size(), 2 * (addresses + 2));
    for (const size_t first : {size_t{0}, addresses + 2}) {
        EXPECT_EQ(debug.lines[first], "name: \"lo\"");
        EXPECT_EQ(debug.lines[first + 1].rfind("ip addresses: \"", 0), 0u) << debug.lines[first + 1];
        EXPECT_NE(debug.lines[first + 1].find("\"  /  \""), std::string::npos) << debug.lines[first + 1];
        EXPECT_EQ(debug.lines[first + addresses + 1].rfind("mac: \"", 0), 0u);
    }
}
