#include "callrows.h"

void addSessionRows(std::vector<CallRow>&) {}
