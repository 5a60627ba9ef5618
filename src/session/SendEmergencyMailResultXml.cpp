#include "session/SendEmergencyMailResultXml.h"

#include "core/xmlfields.h"

using namespace Lattice;

int CSendEmergencyMailResultXml::Parser(char* text) {
    WalkXml(text, [this](const QString& name, const QString& value) {
        if (name == "send_result")
            result = value.toInt();
        else if (name == "emergency_try_limit")
            tryLimit = value.toInt();
        else if (name == "emergency_try_count")
            tryCount = value.toInt();
    });
    return 1;  // whatever the text is
}
