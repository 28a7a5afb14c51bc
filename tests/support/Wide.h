// Literals of the contract's wide characters.
#ifndef SPECIALEFFECTS_TESTS_SUPPORT_WIDE_H
#define SPECIALEFFECTS_TESTS_SUPPORT_WIDE_H

#if defined(_WIN32)
#define WIDE(literal) L##literal
#else
#define WIDE(literal) u##literal
#endif

#endif
