/* Named checks: one line of output each, details only for what went wrong. */
#ifndef ABI_CHECK_H
#define ABI_CHECK_H

#include <stdbool.h>

#if defined(__MINGW32__)
#define ABI_PRINTF gnu_printf
#else
#define ABI_PRINTF printf
#endif

/* Starts a check; it lasts until `end_check`. */
__attribute__((format(ABI_PRINTF, 1, 2))) void begin_check(const char* format, ...);

/* Prints the detail and counts the check as failed unless `holds`. Returns `holds`. */
__attribute__((format(ABI_PRINTF, 2, 3))) bool expect(bool holds, const char* format, ...);

void end_check(void);

/* `expect` for a result that is one number, printed as a code. */
bool expect_code(unsigned long long got, unsigned long long wanted, const char* what);

/* Prints the totals; the program's exit code. */
int checks_result(void);

#endif
