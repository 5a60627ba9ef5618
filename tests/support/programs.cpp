#include "support/programs.h"

// The only file that knows the places: they differ from build to build, and a compiler cache keeps what
// doesn't.
const char* const kTorvi = TORVI_PATH;
const char* const kTorviNas = TORVI_NAS_PATH;
const char* const kTorviCloud = TORVI_CLOUD_PATH;
const char* const kClusterTemplate = NGINX_CLUSTER_TEMPLATE;
