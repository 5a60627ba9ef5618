#include "support/tempdir.h"
