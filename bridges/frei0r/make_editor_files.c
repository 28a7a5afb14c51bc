// Writes what editors on MLT need to show the effects with readable parameters:
//
//     make_editor_files FOLDER
//
//     FOLDER/kdenlive/frei0r_sfx_rain.xml             an effect for Kdenlive
//     FOLDER/shotcut/sfx_rain/meta.qml and ui.qml     an effect for Shotcut, and the panel of its parameters
//
// frei0r's parameters are numbers from 0 to 1. With these files Kdenlive shows whole steps, Shotcut the
// values themselves, and both the names of choices and the starting values.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#include "sfx/sfx.h"

static void WriteXmlText(FILE* file, const char* text) {
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

// ---- Kdenlive -----------------------------------------------------------------------------------------

static void WriteKdenliveParameter(FILE* file, const sfx_property_info* property) {
    fputs("    <parameter name=\"", file);
    WriteXmlText(file, property->name);
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
                WriteXmlText(file, property->choices[i].id);
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
    WriteXmlText(file, property->name);
    fputs("</name>\n        <comment>", file);
    WriteXmlText(file, property->description);
    if (property->type == SFX_INTEGER && property->minimum != 0) {
        fprintf(file, " Step 0 stands for %d, step %lld for %d.", property->minimum, Room(property),
                property->maximum);
    }
    fputs("</comment>\n    </parameter>\n", file);
}

static void WriteKdenlive(FILE* file, const char* service, const sfx_effect_info* info) {
    fprintf(file, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE kpartgui>\n");
    fprintf(file, "<effect LC_NUMERIC=\"C\" tag=\"frei0r.%s\" id=\"frei0r.%s\">\n    <name>", service,
            service);
    WriteXmlText(file, info->title);
    fputs("</name>\n    <description>", file);
    WriteXmlText(file, info->description);
    fputs("</description>\n    <author>The specialeffects project</author>\n", file);
    for (size_t i = 0; i < info->property_count; ++i) WriteKdenliveParameter(file, info->properties[i]);
    fputs("</effect>\n", file);
}

// ---- Shotcut ------------------------------------------------------------------------------------------

static void WriteQmlText(FILE* file, const char* text) {
    fputc('\'', file);
    for (; *text != '\0'; ++text) {
        if (*text == '\'' || *text == '\\') fputc('\\', file);
        fputc(*text, file);
    }
    fputc('\'', file);
}

static void WriteShotcutMeta(FILE* file, const char* service, const sfx_effect_info* info) {
    fputs("import QtQuick 2.0\nimport org.shotcut.qml 1.0\n\nMetadata {\n", file);
    fputs("    type: Metadata.Filter\n    name: ", file);
    WriteQmlText(file, info->title);
    fprintf(file, "\n    objectName: '%s'\n    mlt_service: 'frei0r.%s'\n    keywords: ", service, service);
    WriteQmlText(file, info->description);
    fputs("\n    qml: 'ui.qml'\n}\n", file);
}

// The control of property `index`, and the button that brings its starting value back.
static void WriteShotcutControl(FILE* file, const sfx_property_info* property, size_t index) {
    fputs("\n        Label {\n            text: ", file);
    WriteQmlText(file, property->name);
    fputs(
        "\n            Layout.alignment: Qt.AlignRight\n\n            Shotcut.HoverTip {\n                "
        "text: ",
        file);
    WriteQmlText(file, property->description);
    fputs("\n            }\n        }\n\n", file);
    switch (property->type) {
        case SFX_BOOLEAN:
            fprintf(file,
                    "        CheckBox {\n            id: control%zu\n\n"
                    "            onToggled: filter.set('%zu', checked ? 1 : 0)\n        }\n",
                    index, index);
            break;
        case SFX_COLOR:
            fprintf(file,
                    "        Shotcut.ColorPicker {\n            id: control%zu\n\n"
                    "            onValueChanged: filter.set('%zu', value)\n        }\n",
                    index, index);
            break;
        case SFX_CHOICE:
            fprintf(file, "        Shotcut.ComboBox {\n            id: control%zu\n\n            model: [",
                    index);
            for (size_t i = 0; i < property->choice_count; ++i) {
                if (i > 0) fputs(", ", file);
                WriteQmlText(file, property->choices[i].id);
            }
            fprintf(file,
                    "]\n            onActivated: filter.set('%zu', numbers%zu[currentIndex])\n        }\n",
                    index, index);
            break;
        case SFX_INTEGER:
            fprintf(file,
                    "        Shotcut.SliderSpinner {\n            id: control%zu\n\n"
                    "            minimumValue: %d\n            maximumValue: %d\n"
                    "            onValueChanged: filter.set('%zu', (value - %d) / %lld)\n        }\n",
                    index, property->minimum, property->maximum, index, property->minimum, Room(property));
            break;
    }
    fprintf(file,
            "\n        Shotcut.UndoButton {\n            onClicked: {\n                setStart('%zu');\n"
            "                setControls();\n            }\n        }\n",
            index);
}

static void WriteShotcutPanel(FILE* file, const sfx_effect_info* info) {
    fputs(
        "import QtQuick 2.12\nimport QtQuick.Controls 2.12\nimport QtQuick.Layouts 1.12\n"
        "import Shotcut.Controls 1.0 as Shotcut\n\nItem {\n",
        file);
    fputs("    // By the parameter's number.\n    property var start: ({", file);
    for (size_t i = 0; i < info->property_count; ++i) {
        const sfx_property_info* const property = info->properties[i];
        fprintf(file, "%s        '%zu': ", i == 0 ? "\n" : ",\n", i);
        if (property->type == SFX_COLOR) {
            fprintf(file, "'#%06x'", (unsigned)property->start);
        } else {
            fprintf(file, "%.6g", NumberOf(property, property->start));
        }
    }
    fputs(info->property_count > 0 ? "\n    })\n" : "})\n", file);
    for (size_t i = 0; i < info->property_count; ++i) {
        const sfx_property_info* const property = info->properties[i];
        if (property->type != SFX_CHOICE) continue;
        fprintf(file, "    property var numbers%zu: [", i);
        for (size_t k = 0; k < property->choice_count; ++k) {
            fprintf(file, "%s%.6g", k > 0 ? ", " : "", NumberOf(property, property->choices[k].value));
        }
        fputs("]\n", file);
    }

    fputs(
        "\n    function setStart(parameter) {\n        filter.set(parameter, start[parameter]);\n    }\n"
        "\n    function setControls() {\n",
        file);
    for (size_t i = 0; i < info->property_count; ++i) {
        const sfx_property_info* const property = info->properties[i];
        if (property->type == SFX_BOOLEAN) {
            fprintf(file, "        control%zu.checked = filter.getDouble('%zu') >= 0.5;\n", i, i);
        } else if (property->type == SFX_COLOR) {
            fprintf(file, "        control%zu.value = filter.get('%zu');\n", i, i);
        } else if (property->type == SFX_CHOICE) {
            fprintf(file,
                    "        control%zu.currentIndex = numbers%zu.findIndex(number => Math.abs(number - "
                    "filter.getDouble('%zu')) < 0.001);\n",
                    i, i, i);
        } else {
            fprintf(file, "        control%zu.value = Math.round(filter.getDouble('%zu') * %lld) + %d;\n", i,
                    i, Room(property), property->minimum);
        }
    }
    fprintf(
        file,
        "    }\n\n    width: 350\n    height: %zu\n"
        "    Component.onCompleted: {\n        if (filter.isNew) {\n"
        "            Object.keys(start).forEach(setStart);\n"
        "            filter.savePreset(Object.keys(start));\n        }\n        setControls();\n    }\n"
        "\n    GridLayout {\n        columns: 3\n        anchors.fill: parent\n        anchors.margins: 8\n"
        "\n        Label {\n            text: qsTr('Preset')\n            Layout.alignment: Qt.AlignRight\n"
        "        }\n\n        Shotcut.Preset {\n            Layout.columnSpan: 2\n"
        "            parameters: Object.keys(start)\n            onPresetSelected: setControls()\n        "
        "}\n",
        80 + 35 * info->property_count);
    for (size_t i = 0; i < info->property_count; ++i) WriteShotcutControl(file, info->properties[i], i);
    fputs("\n        Item {\n            Layout.fillHeight: true\n        }\n    }\n}\n", file);
}

// ---- files --------------------------------------------------------------------------------------------

enum { kPathSize = 4096 };

static void Fail(const char* path) {
    perror(path);
    exit(1);
}

static FILE* Open(const char* path) {
    FILE* const file = fopen(path, "w");
    if (file == NULL) Fail(path);
    return file;
}

static void Close(FILE* file, const char* path) {
    const int failed = ferror(file);
    if (fclose(file) != 0 || failed) Fail(path);
}

static void MakeFolder(const char* path) {
    if (mkdir(path, 0777) != 0 && errno != EEXIST) Fail(path);
}

int main(int count, char** arguments) {
    if (count != 2 || strlen(arguments[1]) > kPathSize - 200) {
        fputs("usage: make_editor_files FOLDER\n", stderr);
        return 2;
    }
    char path[kPathSize];
    snprintf(path, sizeof path, "%s/kdenlive", arguments[1]);
    MakeFolder(path);
    snprintf(path, sizeof path, "%s/shotcut", arguments[1]);
    MakeFolder(path);

    for (size_t i = 0; i < sfx_effect_count(); ++i) {
        const sfx_effect_info* const info = sfx_effect_at(i);
        char service[64];
        snprintf(service, sizeof service, "sfx_%s", info->id);
        for (char* at = service; *at != '\0'; ++at) *at = *at == '-' ? '_' : *at;

        snprintf(path, sizeof path, "%s/kdenlive/frei0r_%s.xml", arguments[1], service);
        FILE* file = Open(path);
        WriteKdenlive(file, service, info);
        Close(file, path);

        snprintf(path, sizeof path, "%s/shotcut/%s", arguments[1], service);
        MakeFolder(path);
        snprintf(path, sizeof path, "%s/shotcut/%s/meta.qml", arguments[1], service);
        file = Open(path);
        WriteShotcutMeta(file, service, info);
        Close(file, path);
        snprintf(path, sizeof path, "%s/shotcut/%s/ui.qml", arguments[1], service);
        file = Open(path);
        WriteShotcutPanel(file, info);
        Close(file, path);
    }
    return 0;
}
