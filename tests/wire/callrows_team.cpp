#include "callrows.h"

void addTeamRows(std::vector<CallRow>&) {}
