#pragma once

#include <QString>

#include "WebFileManAPI.h"

/// The reply to the question for the user's security question.
class TORVIAPI_EXPORT CSecurityQuestionResultXml {
public:
    int Parser(char* text);
    const QString& getQuestion() const { return question; }

    int32_t questionNo = 0;
    QString question;
};
