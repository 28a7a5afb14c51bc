// Writes a description of each effect for Kdenlive:
//
//     make_kdenlive FOLDER
//
// frei0r's parameters are numbers from 0 to 1. With these files Kdenlive shows whole steps, the names of
// choices, and the starting values.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "sfx/sfx.h"

static void WriteText(FILE* file, const char* text) {
    for (; *text != '\0'; ++text) {
        switch (*text) {
            case '&':
                fputs("&amp;", file);
                break;
            case '<':
                fputs("&lt;", file);
                break;
            case '>':
                fputs("&gt;", file);
                break;
            case '"':
                fputs("&quot;", file);
                break;
            default:
                fputc(*text, file);
        }
    }
}

// The steps of a range; at least 1, so that it can divide.
static long long Room(const sfx_property_info* property) {
    const long long room = (long long)property->maximum - property->minimum;
    return room > 0 ? room : 1;
}

static double NumberOf(const sfx_property_info* property, int32_t value) {
    return (double)((long long)value - property->minimum) / (double)Room(property);
}

static void WriteParameter(FILE* file, const sfx_property_info* property) {
    fputs("    <parameter name=\"", file);
    WriteText(file, property->name);
    switch (property->type) {
        case SFX_BOOLEAN:
            fprintf(file, "\" type=\"bool\" default=\"%d\" min=\"0\" max=\"1\">\n", property->start);
            break;
        case SFX_COLOR:
            fprintf(file, "\" type=\"color\" default=\"#%06x\">\n", (unsigned)property->start);
            break;
        case SFX_CHOICE:
            fprintf(file, "\" type=\"list\" default=\"%.6g\" paramlist=\"",
                    NumberOf(property, property->start));
            for (size_t i = 0; i < property->choice_count; ++i) {
                fprintf(file, "%s%.6g", i == 0 ? "" : ";", NumberOf(property, property->choices[i].value));
            }
            fputs("\">\n        <paramlistdisplay>", file);
            for (size_t i = 0; i < property->choice_count; ++i) {
                if (i > 0) fputc(',', file);
                WriteText(file, property->choices[i].id);
            }
            fputs("</paramlistdisplay>\n", file);
            break;
        case SFX_INTEGER:
            // Kdenlive divides what it shows by the factor. Steps are shown, since it knows no offset.
            fprintf(file, "\" type=\"animated\" default=\"%.6g\" min=\"0\" max=\"%lld\" factor=\"%lld\">\n",
                    NumberOf(property, property->start), Room(property), Room(property));
            break;
    }
    fputs("        <name>", file);
    WriteText(file, property->name);
    fputs("</name>\n        <comment>", file);
    WriteText(file, property->description);
    if (property->type == SFX_INTEGER && property->minimum != 0) {
        fprintf(file, " Step 0 stands for %d, step %lld for %d.", property->minimum, Room(property),
                property->maximum);
    }
    fputs("</comment>\n    </parameter>\n", file);
}

static void WriteEffect(FILE* file, const char* service, const sfx_effect_info* info) {
    fprintf(file, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE kpartgui>\n");
    fprintf(file, "<effect LC_NUMERIC=\"C\" tag=\"frei0r.%s\" id=\"frei0r.%s\">\n    <name>", service,
            service);
    WriteText(file, info->title);
    fputs("</name>\n    <description>", file);
    WriteText(file, info->description);
    fputs("</description>\n    <author>The specialeffects project</author>\n", file);
    for (size_t i = 0; i < info->property_count; ++i) WriteParameter(file, info->properties[i]);
    fputs("</effect>\n", file);
}

int main(int count, char** arguments) {
    if (count != 2) {
        fputs("usage: make_kdenlive FOLDER\n", stderr);
        return 2;
    }
    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info* const info = sfx_effect_at(i);
        char service[64];
        snprintf(service, sizeof service, "sfx_%s", info->id);
        for (char* at = service; *at != '\0'; ++at) *at = *at == '-' ? '_' : *at;

        char path[4096];
        if (snprintf(path, sizeof path, "%s/frei0r_%s.xml", arguments[1], service) >= (int)sizeof path) {
            fputs("make_kdenlive: the folder's name is too long\n", stderr);
            return 1;
        }
        FILE* const file = fopen(path, "w");
        if (file == NULL) {
            perror(path);
            return 1;
        }
        WriteEffect(file, service, info);
        const int failed = ferror(file);
        if (fclose(file) != 0 || failed) {
            perror(path);
            return 1;
        }
    }
    return 0;
}
