#include "callrows.h"

void addShareSettingRows(std::vector<CallRow>&) {}
