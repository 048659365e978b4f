/// @file
/// Marks what the shared library shows to the outside.
#pragma once

#if defined(TRELMIX_BUILDING) || defined(__GNUC__)
#define TRELMIX_API __attribute__((visibility("default")))
#else
#define TRELMIX_API
#endif
