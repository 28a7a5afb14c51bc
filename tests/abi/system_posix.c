#include <dlfcn.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include "system.h"

void* open_library(const char* path) {
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library) fprintf(stderr, "abi_host: %s\n", dlerror());
    return library;
}

void close_library(void* library) {
    dlclose(library);
}

void* find_symbol(void* library, const char* name) {
    return dlsym(library, name);
}

static size_t page_size(void) {
    return (size_t)sysconf(_SC_PAGESIZE);
}

uint8_t* guarded_pages(size_t size, size_t* usable) {
    *usable = (size / page_size() + 1) * page_size();
    uint8_t* base =
        mmap(NULL, *usable + page_size(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED || mprotect(base + *usable, page_size(), PROT_NONE) != 0) {
        perror("abi_host: guarded buffer");
        exit(2);
    }
    return base;
}

void free_guarded_pages(uint8_t* base, size_t usable) {
    munmap(base, usable + page_size());
}

static char directory[] = "/tmp/abi_host.XXXXXX";

void enter_scratch_directory(void) {
    if (!mkdtemp(directory) || chdir(directory) != 0) {
        perror(directory);
        exit(2);
    }
}

void leave_scratch_directory(void) {
    if (chdir("/") != 0 || rmdir(directory) != 0) perror(directory);
}

char* full_path(const char* path) {
    return realpath(path, NULL);
}

/* UTF-8, for texts of the basic plane. */
static void narrow(char* to, const uint16_t* text) {
    for (; *text; ++text) {
        const unsigned unit = *text;
        if (unit < 0x80) {
            *to++ = (char)unit;
        } else if (unit < 0x800) {
            *to++ = (char)(0xC0 | unit >> 6);
            *to++ = (char)(0x80 | (unit & 0x3F));
        } else {
            *to++ = (char)(0xE0 | unit >> 12);
            *to++ = (char)(0x80 | (unit >> 6 & 0x3F));
            *to++ = (char)(0x80 | (unit & 0x3F));
        }
    }
    *to = 0;
}

enum { LONGEST_NAME = 255 };

FILE* open_to_write(const uint16_t* path) {
    char name[3 * LONGEST_NAME + 1];
    narrow(name, path);
    return fopen(name, "wb");
}

void remove_file(const uint16_t* path) {
    char name[3 * LONGEST_NAME + 1];
    narrow(name, path);
    remove(name);
}
