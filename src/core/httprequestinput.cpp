#include "core/httprequestinput.h"

#include <utility>

HttpRequestInput::HttpRequestInput(QString url, QString method, bool secure, QEventLoop* loop) {
    initialize();
    this->secure = secure;
    url_str = std::move(url);
    http_method = std::move(method);
    event_loop = loop;
}

void HttpRequestInput::initialize() {
    secure = false;
    url_str.clear();
    http_method = QStringLiteral("GET");
    agent_name = QStringLiteral("VEXA Torvi");
    var_layout = kVarsNotSet;
    vars.clear();
    raw_headers.clear();
    files.clear();
    event_loop = nullptr;
    timeout_msec = -1;
}

void HttpRequestInput::set_agent_name(const QString& name) {
    agent_name = name;
}

void HttpRequestInput::set_timeout_msec(int msec) {
    if (msec > 0) timeout_msec = msec;
}

void HttpRequestInput::add_var(QString key, QString value) {
    vars.append({key, value});
}

void HttpRequestInput::add_raw_header(QString name, QString value) {
    raw_headers.append({name, value});
}

void HttpRequestInput::add_file(QString variableName, QString localFilename, QString requestFilename,
                                QString mimeType, qint64 totalSize, qint64 startOffset, bool chunkContinue) {
    files.append({std::move(variableName), std::move(localFilename), std::move(requestFilename),
                  std::move(mimeType), totalSize, startOffset, chunkContinue});
}
