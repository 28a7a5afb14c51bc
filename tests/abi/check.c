#include "check.h"

#include <stdarg.h>
#include <stdio.h>

enum { DETAILS_SHOWN = 8 };

static int checks, failed_checks;
static int failures_here;
static char name[256];

void begin_check(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    vsnprintf(name, sizeof name, format, arguments);
    va_end(arguments);
    failures_here = 0;
    /* The name comes out before the check runs, so that a crash shows where it happened. */
    printf("%s ... ", name);
    fflush(stdout);
}

bool expect(bool holds, const char* format, ...) {
    if (holds) return true;
    if (++failures_here <= DETAILS_SHOWN) {
        va_list arguments;
        va_start(arguments, format);
        printf("\n    ");
        vprintf(format, arguments);
        va_end(arguments);
    }
    return false;
}

bool expect_code(unsigned long long got, unsigned long long wanted, const char* what) {
    return expect(got == wanted, "%s: got 0x%llx, want 0x%llx", what, got, wanted);
}

void end_check(void) {
    ++checks;
    if (failures_here == 0) {
        printf("ok\n");
        return;
    }
    ++failed_checks;
    if (failures_here > DETAILS_SHOWN) printf("\n    and %d more", failures_here - DETAILS_SHOWN);
    printf("\nFAILED: %s\n", name);
}

int checks_result(void) {
    printf("%d checks, %d failed\n", checks, failed_checks);
    return failed_checks == 0 && checks > 0 ? 0 : 1;
}
