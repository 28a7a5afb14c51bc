#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <stdlib.h>
#include <string.h>

#include "system.h"

void* open_library(const char* path) {
    HMODULE library = LoadLibraryA(path);
    if (!library) fprintf(stderr, "abi_host: %s cannot be loaded: %lu\n", path, GetLastError());
    return library;
}

void close_library(void* library) {
    FreeLibrary(library);
}

void* find_symbol(void* library, const char* name) {
    FARPROC address = GetProcAddress(library, name);
    void* symbol;
    memcpy(&symbol, &address, sizeof symbol);
    return symbol;
}

static size_t page_size(void) {
    SYSTEM_INFO info;
    GetSystemInfo(&info);
    return info.dwPageSize;
}

uint8_t* guarded_pages(size_t size, size_t* usable) {
    DWORD before;
    *usable = (size / page_size() + 1) * page_size();
    uint8_t* base = VirtualAlloc(NULL, *usable + page_size(), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (!base || !VirtualProtect(base + *usable, page_size(), PAGE_NOACCESS, &before)) {
        fprintf(stderr, "abi_host: guarded buffer\n");
        exit(2);
    }
    return base;
}

void free_guarded_pages(uint8_t* base, size_t usable) {
    (void)usable;
    VirtualFree(base, 0, MEM_RELEASE);
}

static char directory[MAX_PATH];

void enter_scratch_directory(void) {
    char folder[MAX_PATH];
    GetTempPathA(MAX_PATH, folder);
    snprintf(directory, sizeof directory, "%.200s/abi_host.%lu", folder, GetCurrentProcessId());
    if (!CreateDirectoryA(directory, NULL) || !SetCurrentDirectoryA(directory)) {
        fprintf(stderr, "abi_host: %s\n", directory);
        exit(2);
    }
}

void leave_scratch_directory(void) {
    if (!SetCurrentDirectoryA("/") || !RemoveDirectoryA(directory))
        fprintf(stderr, "abi_host: %s\n", directory);
}

char* full_path(const char* path) {
    return _fullpath(NULL, path, 0);
}

FILE* open_to_write(const uint16_t* path) {
    return _wfopen((const wchar_t*)path, L"wb");
}

void remove_file(const uint16_t* path) {
    DeleteFileW((const wchar_t*)path);
}
