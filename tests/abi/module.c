#include "module.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "system.h"

static const char* module_path;
static void* module;
static Factory* (*create)(void);

void load_module(const char* path) {
    module_path = path;
    module = open_library(path);
    if (!module) exit(2);
    void* address = exported("CreateSpecialEffectFactory");
    if (!address) {
        fprintf(stderr, "abi_host: %s does not export CreateSpecialEffectFactory\n", path);
        exit(2);
    }
    /* ISO C has no conversion from an object pointer to a function pointer. */
    memcpy(&create, &address, sizeof create);
}

void reload_module(void) {
    close_library(module);
    load_module(module_path);
}

void* exported(const char* name) {
    return find_symbol(module, name);
}

Factory* create_factory(void) {
    return create();
}
