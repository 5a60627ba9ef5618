#pragma once

#include "request.h"
#include "users.h"

namespace nas {

class Service;

// The user of a login's form; null if the password isn't right.
const User* checkPassword(Service& service, Request& request, const Fields& form);

}  // namespace nas
