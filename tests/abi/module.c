#include "module.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char* module_path;
static void* module;
static Factory* (*create)(void);

void load_module(const char* path) {
    module_path = path;
    module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!module) {
        fprintf(stderr, "abi_host: %s\n", dlerror());
        exit(2);
    }
    void* address = exported("CreateSpecialEffectFactory");
    if (!address) {
        fprintf(stderr, "abi_host: %s does not export CreateSpecialEffectFactory\n", path);
        exit(2);
    }
    /* ISO C has no conversion from an object pointer to a function pointer. */
    memcpy(&create, &address, sizeof create);
}

void reload_module(void) {
    dlclose(module);
    load_module(module_path);
}

void* exported(const char* name) {
    return dlsym(module, name);
}

Factory* create_factory(void) {
    return create();
}
