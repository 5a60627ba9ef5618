#pragma once

#include "linkterms.h"
#include "session.h"

namespace torvi {

/// Gives links of that node other terms; the addresses may change with them.
void updateLinks(const Session& session, const QString& what, const std::wstring& node, const QString& ids,
                 const LinkTerms& terms);
/// Gives one of them another name, and leaves all else.
void nameLink(const Session& session, const QString& what, const std::wstring& node, const QString& id,
              const QString& name);

}  // namespace torvi
