#include "files/GetMoveStatusJson.h"

#include "core/qclogger.h"
#include "core/replyfields.h"

using namespace Lattice;

int CGetMoveStatusJson::Parser(char* text) {
    *this = {};
    return ParseReply(text, [this](const Json::Value& root) {
        if (!root.isObject()) return 1;
        if (!IsPresent(root, "status")) return -1;
        m_status = TranslatedStatus(root, -1);
        if (m_status != 0) return 1;
        // Of the name only its absence is of interest.
        m_fileName = JsonText(root, "filename");
        if (!IsPresent(root, "filename"))
            LogLine(Logger::Error, "[WFM] CGetMoveStatusJson::Parser filename is null (%ls)",
                    m_fileName.c_str());
        else if (m_fileName.empty())
            LogLine(Logger::Error, "[WFM] CGetMoveStatusJson::Parser filename is empty (%ls)",
                    m_fileName.c_str());
        if (!IsPresent(root, "percent")) return -1;
        m_percent = JsonGetInt(root, "percent", 0);
        return 1;
    });
}
