#pragma once

#include "calls.h"
#include "links.h"

namespace nas {

// The keys of a form that mails links.
inline const Shape kMail = {"addressee", "subject", "content"};

// What kMail holds, before anything is done for the mail's sake.
void requireMail(const Fields& form);
// False if no mail can go out.
bool mailOut(Service& service, const Fields& form, const std::vector<Link>& links);

}  // namespace nas
