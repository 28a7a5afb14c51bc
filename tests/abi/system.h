/* What the host needs of the operating system: system_posix.c and system_windows.c. */
#ifndef ABI_SYSTEM_H
#define ABI_SYSTEM_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

/* Null, with a message on the standard error stream, where the library cannot be loaded. */
void* open_library(const char* path);
void close_library(void* library);
void* find_symbol(void* library, const char* name);

/*
 * Memory whose end is the end of readable memory: at least `size` bytes and one more. `usable` receives how
 * many it holds. Ends the program if there is no such memory.
 */
uint8_t* guarded_pages(size_t size, size_t* usable);
void free_guarded_pages(uint8_t* base, size_t usable);

/* Makes an empty directory and changes to it; changes back and removes it, once it is empty again. */
void enter_scratch_directory(void);
void leave_scratch_directory(void);

/* The path from the root on, in memory of its own; null where there is no such file. */
char* full_path(const char* path);

/* Paths in UTF-16. */
FILE* open_to_write(const uint16_t* path);
void remove_file(const uint16_t* path);

#endif
