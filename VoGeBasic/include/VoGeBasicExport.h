// Export macro of the VoGeBasic shared library.
//
// Everything is built with hidden visibility; only declarations marked VOGEBASIC_API
// leave the library. A static build (VOGEBASIC_STATIC) needs no marking on Windows.
#ifndef VOGEBASIC_EXPORT_H
#define VOGEBASIC_EXPORT_H

#if defined(_WIN32) && !defined(VOGEBASIC_STATIC)
#if defined(VoGeBasic_EXPORTS)
#define VOGEBASIC_API __declspec(dllexport)
#else
#define VOGEBASIC_API __declspec(dllimport)
#endif
#elif defined(__GNUC__) || defined(__clang__)
#define VOGEBASIC_API __attribute__((visibility("default")))
#else
#define VOGEBASIC_API
#endif

#endif  // VOGEBASIC_EXPORT_H
