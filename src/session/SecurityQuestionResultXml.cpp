#include "session/SecurityQuestionResultXml.h"

#include "core/xmlfields.h"

using namespace Lattice;

int CSecurityQuestionResultXml::Parser(char* text) {
    WalkXml(text, [this](const QString& name, const QString& value) {
        if (name == "security_question_no")
            questionNo = value.toInt();
        else if (name == "system_question_text")
            question = value;
    });
    return question.isEmpty() ? -1 : 1;
}
