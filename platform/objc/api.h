#pragma once

// How a declaration of the platform is seen: exported where the frameworks are built, weak where a plug-in is, so that
// it loads on systems that lack a framework, and an ordinary import everywhere else.
#if defined(PLATFORM_BUILD)
#define PLATFORM_API __attribute__((visibility("default")))
#elif defined(PLATFORM_WEAK)
#define PLATFORM_API __attribute__((weak))
#else
#define PLATFORM_API
#endif

// Whether a function of the platform is there to be called. Only where it is declared weak can it be missing.
#if defined(PLATFORM_WEAK)
#define PLATFORM_HAS(function) ((function) != nullptr)
#else
#define PLATFORM_HAS(function) true
#endif
