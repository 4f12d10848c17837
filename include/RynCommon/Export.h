// The one export macro. A shared build exports what carries RYNCOMMON_API and hides all else; a
// static build defines RYNCOMMON_STATIC, for the library and for those who link it.
#pragma once

#if defined(RYNCOMMON_STATIC)
#define RYNCOMMON_API
#elif defined(_WIN32)
#if defined(RYNCOMMON_BUILDING)
#define RYNCOMMON_API __declspec(dllexport)
#else
#define RYNCOMMON_API __declspec(dllimport)
#endif
#else
#define RYNCOMMON_API __attribute__((visibility("default")))
#endif
