#pragma once

#include <QList>
#include <QPair>
#include <QString>

#include "WebFileManAPI.h"

class QEventLoop;

/// How the form fields of a request travel.
enum VarLayout { kVarsNotSet = 0, kVarsInUrl = 1, kVarsInForm = 2, kVarsInMultipart = 4 };

/// One file of a multipart request.
struct HttpRequestInputFileElement {
    QString variable_name;
    QString local_filename;
    QString request_filename;
    QString mime_type;
    qint64 total_size;
    qint64 start_offset;
    bool bChunkContinue;
};

/// A plain description of one request.
class TORVIAPI_EXPORT HttpRequestInput {
public:
    HttpRequestInput(QString url, QString method, bool secure, QEventLoop* loop = nullptr);

    void initialize();
    void set_agent_name(const QString& name);
    void set_timeout_msec(int msec);  // a value of 0 or below leaves the time-out as it was
    void add_var(QString key, QString value);
    void add_raw_header(QString name, QString value);
    void add_file(QString variableName, QString localFilename, QString requestFilename, QString mimeType,
                  qint64 totalSize, qint64 startOffset, bool chunkContinue);

    bool secure;
    QString url_str;
    QString http_method;
    QString agent_name;
    int var_layout;
    QList<QPair<QString, QString>> vars;
    QList<QPair<QString, QString>> raw_headers;
    QList<HttpRequestInputFileElement> files;
    QEventLoop* event_loop;
    int timeout_msec;
};
