#pragma once

#include <string>

#include "wire_text.h"

namespace nas {

// The query of the authentication CGI. Codes and answers stand there as the user typed them, as far as a URL
// can hold that, and a mail is asked for with a doubled "&".
Fields decodeAuthQuery(const std::string& raw);

}  // namespace nas
