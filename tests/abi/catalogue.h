/* What a host may rely on of the 63 effects: identity, name, place in the listing, properties, traits. */
#ifndef ABI_CATALOGUE_H
#define ABI_CATALOGUE_H

#include "module.h"

enum { ROWS = 63, LISTED = 41 };

/* How an effect differs from the rest. */
enum {
    NO_WORKSPACE = 1, /* frames are processed in every state */
    PACKED_TOO = 2,   /* processes format 2 */
    DISTORTION = 4,   /* Configure always succeeds; a missing workspace is noticed before a bad format */
    FIRST_BYTES = 8,  /* writes the first byte of each plane before anything else */
    FACES = 16        /* Picture Me */
};

typedef struct {
    const char *guid, *name;
    int listed_at[2];          /* places in the listing, -1 for none */
    const char* variant_start; /* where a property's start value differs between variants */
    int traits;
} CatalogueRow;

typedef struct {
    const char* effect; /* display name */
    int type;
    const char *name, *initial, *range; /* the texts of the table */
    const char* starts;                 /* what a new object has; null: the variant's */
    const char* configured;             /* what Configure makes of it at 80 by 48; null: leaves it */
} PropertyRow;

extern const CatalogueRow catalogue[ROWS];

/* The GUID that is listed last and cannot be created. */
extern const char listed_only[];

/* The rows of an effect's property table, in order, and their number. */
const PropertyRow* properties_of(const CatalogueRow* row, int* count);

const char* start_value(const CatalogueRow* row, const PropertyRow* property);

/* From the registry form without braces. */
Guid parse_guid(const char* text);

/* Creates the effect of a row, or of the first row with a name. Ends the program where it does not create. */
Effect* create_row(Factory* factory, const CatalogueRow* row);
Effect* create_named(Factory* factory, const char* name);

#endif
