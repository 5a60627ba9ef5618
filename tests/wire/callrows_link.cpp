#include "callrows.h"

void addLinkRows(std::vector<CallRow>&) {}
