#pragma once

/// Where the built programs lie; empty when they aren't built.
extern const char* const kTorvi;
extern const char* const kTorviNas;
extern const char* const kTorviCloud;

/// The configuration that a front end of a cluster is meant to have, with its names not filled in.
extern const char* const kClusterTemplate;
