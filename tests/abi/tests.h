/* The groups of checks; each is one argument of the program and one entry of the test list. */
#ifndef ABI_TESTS_H
#define ABI_TESTS_H

void test_module(void);
void test_factory(void);
void test_catalogue(void);
void test_contract(void);
void test_text(void);
void test_properties(void);
void test_settings(void);
void test_tone(void);
void test_sizes(void);
void test_large_sizes(void);
void test_threads(void);

#endif
