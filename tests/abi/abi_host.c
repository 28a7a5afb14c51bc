/*
 * A host in plain C that knows nothing of the module but slot numbers and record layouts.
 *
 *     abi_host LIBRARY GROUP...
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "catalogue.h"
#include "check.h"
#include "memory.h"
#include "system.h"
#include "tests.h"

static const struct {
    const char* name;
    void (*run)(void);
} groups[] = {
    {"module", test_module},           {"factory", test_factory}, {"catalogue", test_catalogue},
    {"contract", test_contract},       {"text", test_text},       {"properties", test_properties},
    {"settings", test_settings},       {"tone", test_tone},       {"sizes", test_sizes},
    {"large_sizes", test_large_sizes}, {"threads", test_threads},
};
enum { GROUPS = sizeof groups / sizeof *groups };

static int usage(void) {
    fprintf(stderr, "usage: abi_host LIBRARY GROUP...\ngroups:");
    for (int i = 0; i < GROUPS; ++i) fprintf(stderr, " %s", groups[i].name);
    fprintf(stderr, "\n");
    return 2;
}

/*
 * Effects look for data files in the current directory, so the program works in a fresh one. A noise file
 * saves Clouds from making its own, which takes seconds.
 */
static void make_data_files(void) {
    FILE* file = fopen("perlin.dat", "wb");
    if (!file) {
        perror("perlin.dat");
        exit(2);
    }
    Random random = {20};
    uint8_t row[640];
    for (int i = 0; i < 20 * 480; ++i) {
        random_fill(&random, row, sizeof row);
        fwrite(row, 1, sizeof row, file);
    }
    fclose(file);
}

int main(int argc, char** argv) {
    if (argc < 3) return usage();
    char* library = full_path(argv[1]);
    if (!library) {
        perror(argv[1]);
        return 2;
    }
    enter_scratch_directory();
    make_data_files();
    load_module(library);
    for (int argument = 2; argument < argc; ++argument) {
        int group = 0;
        while (group < GROUPS && strcmp(groups[group].name, argv[argument]) != 0) ++group;
        if (group == GROUPS) return usage();
        groups[group].run();
    }
    remove("perlin.dat");
    leave_scratch_directory();
    free(library);
    return checks_result();
}
