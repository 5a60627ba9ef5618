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

/// What every interface is like while this lives.
struct Shape {
    bool isUp;
    bool isLoopback;
    bool hasAddress;
};
const Shape* shape = nullptr;

class AllLike {
public:
    explicit AllLike(const Shape& like) : m_shape(like) { shape = &m_shape; }
    ~AllLike() { shape = nullptr; }
    AllLike(const AllLike&) = delete;
    AllLike& operator=(const AllLike&) = delete;

private:
    const Shape m_shape;
};

template <class Function>
Function qtsOwn(const char* symbol) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, symbol));
}

bool isLoopback(const QNetworkInterface& interface) {
    return interface.flags().testFlag(QNetworkInterface::IsLoopBack);
}

}  // namespace

/// The program's own definition goes before Qt's, for the library under test as well.
Interfaces QNetworkInterface::allInterfaces() {
    if (interfaces) return *interfaces;
    static const auto real = qtsOwn<Interfaces (*)()>("_ZN17QNetworkInterface13allInterfacesEv");
    return real();
}

QNetworkInterface::InterfaceFlags QNetworkInterface::flags() const {
    if (shape != nullptr) {
        InterfaceFlags flags;
        flags.setFlag(IsUp, shape->isUp);
        flags.setFlag(IsLoopBack, shape->isLoopback);
        return flags;
    }
    static const auto real =
        qtsOwn<InterfaceFlags (*)(const QNetworkInterface*)>("_ZNK17QNetworkInterface5flagsEv");
    return real(this);
}

QList<QNetworkAddressEntry> QNetworkInterface::addressEntries() const {
    using Entries = QList<QNetworkAddressEntry>;
    if (shape != nullptr) return shape->hasAddress ? Entries{QNetworkAddressEntry()} : Entries();
    static const auto real =
        qtsOwn<Entries (*)(const QNetworkInterface*)>("_ZNK17QNetworkInterface14addressEntriesEv");
    return real(this);
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

TEST(IsNetworkAliveWire, NeedsAnInterfaceThatIsUpIsNoLoopbackAndHasAnAddress) {
    const Machine machine({QNetworkInterface()});
    for (const bool isUp : {false, true})
        for (const bool isLoop : {false, true})
            for (const bool hasAddress : {false, true}) {
                const AllLike like({isUp, isLoop, hasAddress});
                EXPECT_EQ(IsNetworkAlive(), isUp && !isLoop && hasAddress) << isUp << isLoop << hasAddress;
            }
}

TEST(IsNetworkAliveWire, LooksNoFurtherThanTheFirstThatServes) {
    const Machine machine({QNetworkInterface(), QNetworkInterface()});
    const AllLike serving({true, false, true});
    DebugOutput debug;
    EXPECT_TRUE(IsNetworkAlive());
    EXPECT_EQ(debug.lines.size(), 3u);
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
