#include "callrows.h"

void addStateRows(std::vector<CallRow>&) {}
