#include "catalogue.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

/* clang-format off */
const CatalogueRow catalogue[ROWS] = {
    {"ABC27FCB-B469-428E-9A2F-C2117AD7148E", "Graphic Pen", {-1, -1}, NULL, 0},
    {"FB5FBC24-8123-4E32-BBA1-3E77B228A727", "Graphic Pen", {-1, -1}, NULL, 0},
    {"333FBC24-1123-4E32-BBA1-3E77B228A727", "Graphic Pen", {6, 28}, NULL, 0},
    {"1FA2E948-426B-4BDE-A400-2EB1FEBF9522", "Graphic Pen", {-1, -1}, NULL, 0},
    {"1DC06F46-0253-4EF8-96AF-E69B0B535984", "Chrome", {-1, -1}, NULL, 0},
    {"43206F46-1253-4EF8-22AF-E69B0B535984", "Chrome", {-1, -1}, NULL, 0},
    {"0405DEA1-A404-4CC8-A70B-5C273A2A8172", "Plaster", {-1, -1}, NULL, 0},
    {"3A849CCB-B961-40FF-ABB7-4385365DF0FC", "Sketch", {-1, -1}, NULL, 0},
    {"4DD74959-BE0F-44B1-92B6-043DC61D9F39", "Sketch", {-1, -1}, NULL, 0},
    {"E4CA9AFE-50ED-496A-9DC6-214A38B3AEA9", "Sketch", {29, -1}, NULL, 0},
    {"A2BACBE0-498C-4681-BBEC-F39BB439CED1", "Line Art", {-1, -1}, NULL, 0},
    {"6772F07B-DE51-4FA9-A7C7-DE6430F437BF", "Line Art", {17, -1}, NULL, 0},
    {"A50A308E-0D60-46E5-A336-409E22F395DD", "Tiled Up", {4, -1}, NULL, 0},
    {"E13ED2C0-8ABF-424D-95DD-AB390B236072", "Neonize", {0, -1}, NULL, 0},
    {"DD6B365B-A6CD-4473-80D8-20F7A662B981", "Chalk", {7, -1}, "FALSE", 0},
    {"C043B0F7-A2E1-40F3-AAC7-2019FB2571C3", "Chalk", {-1, -1}, "TRUE", 0},
    {"C1A1DEF8-8962-45EF-B416-4C51F4DED591", "Chalk", {-1, -1}, "FALSE", 0},
    {"C116304B-F245-4111-855E-5EA4873787FB", "Liquefy", {24, -1}, NULL, 0},
    {"09BBE22C-BF85-445E-8DF0-F90E72B6B8C0", "Liquefy", {15, -1}, NULL, 0},
    {"D77E9CF7-CE38-4ABF-A4BA-525140515CEC", "Liquefy", {19, -1}, NULL, 0},
    {"930E1289-65C0-403E-880A-1902FDCFEA90", "Fire", {25, -1}, NULL, 0},
    {"D0329FE9-2E4F-46ED-BA05-70DB47014CD9", "Cotton Candy", {3, -1}, NULL, 0},
    {"27E3D176-FB78-4F57-A94F-37EB05CA30F8", "Rain", {26, -1}, NULL, 0},
    {"6179FB24-F31A-44C7-B0AB-8DF5F96F4315", "Four Square", {2, -1}, NULL, 0},
    {"31C0857C-39B7-47C5-A30D-5E7EA39D66A6", "Twirl", {16, -1}, NULL, 0},
    {"D4BD349A-13D3-45F2-8C4C-880E9D2E6280", "Twirl", {27, -1}, NULL, 0},
    {"41AAFA6F-B0F3-4759-A799-4E3DF9833D4A", "Moving Twirl", {11, -1}, NULL, 0},
    {"7DB203B3-4EC6-497D-957F-5A938F6AAB76", "Clouds", {18, -1}, NULL, 0},
    {"83548554-BA11-4C26-9403-442DFA1C2BFE", "Antiquated Movie", {5, -1}, NULL, 0},
    {"F342D1F4-4E9C-475C-82CF-1CC347562DBC", "Hallway Vision", {22, -1}, NULL, 0},
    {"2F8530C5-96DA-4BCD-9CCA-B536EAFB08BB", "Hallway Vision", {23, -1}, NULL, 0},
    {"9E680B79-DC8E-4CA2-B3AE-731A26C57EAE", "Rain Drops", {14, -1}, NULL, 0},
    {"A5749CD7-26DF-440E-B377-4F9909EFE6C9", "Camera Flashes", {12, -1}, "1", 0},
    {"E729C2F2-476B-4B34-A0FC-8F62BAD8CEA0", "Camera Flashes", {-1, -1}, "5", 0},
    {"727BCC5F-DF7B-4ECB-B895-22109E5F5770", "Camera Flashes", {-1, -1}, "4", 0},
    {"B6C05462-D194-4022-B507-8FB2940739BB", "Camera Flashes", {-1, -1}, "8", 0},
    {"33BB1C59-E80E-4B8B-A7AC-66D058A52A00", "Camera Flashes", {-1, -1}, "3", 0},
    {"3BD16EB0-C94B-4D63-BEAE-D034AC9668EF", "Camera Flashes", {-1, -1}, "7", 0},
    {"8BB64F99-EB1E-4D12-9E21-2B68399AFF36", "Camera Flashes", {-1, -1}, "2", 0},
    {"3FB097AA-932B-4B55-83B6-6E969CBE8FB3", "Camera Flashes", {-1, -1}, "6", 0},
    {"9C2835D8-1BE3-4E49-840A-CBBDA6FFAD0F", "Camera Flashes", {-1, -1}, "9", 0},
    {"922AC4BE-F417-4CB9-98D7-6226C2E41589", "Camera Flashes", {-1, -1}, "10", 0},
    {"7107911C-9343-414E-B78A-301C3E8154FC", "Camera Flashes", {-1, -1}, "11", 0},
    {"1CCF41D6-1DB0-4210-A520-257AB271948C", "Camera Flashes", {-1, -1}, "12", 0},
    {"A8DC69D3-3428-4F12-B672-BB58C95BDE25", "Motion Blur - Ghost", {30, -1}, NULL, 0},
    {"6C250CDD-8B28-4821-B047-B30878E3439F", "Motion Detector", {9, -1}, NULL, 0},
    {"8656338E-0410-4832-A7CA-325D902713D2", "Motion Blur - Ghost", {31, -1}, NULL, 0},
    {"7B4F7937-8D17-4216-B206-383740E65E17", "Colored Pencil", {32, -1}, NULL, 0},
    {"80636C0C-87C0-4EDE-AC46-B9F78D3DBF9F", "Spot Light", {-1, -1}, NULL, 0},
    {"0255B3CB-9DF7-4B4D-ADBA-8730305B29EA", "Spot Light", {13, -1}, NULL, 0},
    {"6A5E49C5-2ACA-4115-B778-74AA63AE43C1", "Spot Light", {-1, -1}, NULL, 0},
    {"692E6627-95B1-462D-B120-114CFBA72188", "Quark", {33, -1}, NULL, 0},
    {"65F2B741-B4F0-4B6E-9C6B-3548B3039578", "Logo Animation", {21, -1}, NULL, 0},
    {"48D2B4EE-5668-418C-8CB2-E624F4CBCDBA", "Blockhead", {1, -1}, NULL, PACKED_TOO | DISTORTION},
    {"AAD9F53D-60B9-4EDA-92B7-3E0A568DE28A", "Fish Eye", {8, -1}, NULL, PACKED_TOO | DISTORTION | FIRST_BYTES},
    {"84DF0F59-4E9F-49AA-8DA0-C46E23D07128", "Polarize", {10, -1}, NULL, NO_WORKSPACE},
    {"7EA36DF8-6AC3-40AD-A4F3-9B240E651079", "Comic Book", {20, -1}, NULL, 0},
    {"4CD53514-D1F8-41FD-BE48-24EF98AD69D3", "Time Distortion", {34, -1}, NULL, 0},
    {"3FCD24E0-4787-4D3C-9483-2A689BD61654", "X-Ray", {35, -1}, NULL, 0},
    {"E9CC3E96-DFE8-4B32-A477-13D8968339F2", "Picture Me", {36, -1}, NULL, FACES},
    {"DED4BDD4-E2A0-4542-808E-FC9DC4CBCEA6", "Bulge", {37, -1}, NULL, PACKED_TOO | DISTORTION},
    {"CC006219-72F8-4E49-8E12-6E05B59269E9", "Gray Scale", {38, -1}, NULL, NO_WORKSPACE},
    {"3BF3AE40-0316-41B9-84C5-A8C671212CAC", "Sepia", {39, -1}, NULL, PACKED_TOO},
};

const char listed_only[] = "8AAE654A-D222-4D8A-968F-937591B1B696";

static const PropertyRow properties[] = {
    {"Antiquated Movie", BOOLEAN, "Sepia", "TRUE", "", "TRUE", NULL},
    {"Antiquated Movie", BOOLEAN, "Vignetting", "TRUE", "", "TRUE", NULL},
    {"Camera Flashes", INTEGER, "Mode", "1", "1,7", NULL, NULL},
    {"Camera Flashes", BOOLEAN, "Moving", "TRUE", "", "TRUE", NULL},
    {"Camera Flashes", BOOLEAN, "Colorizing", "TRUE", "", "TRUE", NULL},
    {"Camera Flashes", BOOLEAN, "Animation", "TRUE", "", "TRUE", NULL},
    {"Chalk", BOOLEAN, "DrawEdges", "TRUE", "", NULL, NULL},
    {"Clouds", COLOR, "CloudColor", "0,0,255", "", "192,192,192", NULL},
    {"Clouds", INTEGER, "Intensity", "90", "1,100", "90", NULL},
    {"Clouds", INTEGER, "Type", "1", "1,3", "1", NULL},
    {"Fish Eye", BOOLEAN, "LargeSphere", "TRUE", "", "FALSE", NULL},
    {"Fish Eye", INTEGER, "EffectType", "1", "1,3", "1", "1"},
    {"Graphic Pen", BOOLEAN, "Colored", "TRUE", "", "TRUE", NULL},
    {"Line Art", COLOR, "BackgroundColor", "0,0,0", "", "0,128,255", NULL},
    {"Liquefy", INTEGER, "ChangeSpeed", "1", "1,3", "1", NULL},
    {"Liquefy", INTEGER, "Intensity", "16", "1,24", "16", NULL},
    {"Logo Animation", INTEGER, "Objects Number", "10", "1,40", "10", "10"},
    {"Logo Animation", INTEGER, "Type", "2", "1,2", "2", "1"},
    {"Logo Animation", BOOLEAN, "Moving Animation", "FALSE", "", "FALSE", "FALSE"},
    {"Logo Animation", BOOLEAN, "Colorize", "FALSE", "", "FALSE", "TRUE"},
    {"Logo Animation", BOOLEAN, "Random Colors", "FALSE", "", "TRUE", NULL},
    {"Logo Animation", COLOR, "Color 1", "0,0,0", "", "0,0,0", NULL},
    {"Logo Animation", COLOR, "Color 2", "0,0,0", "", "0,0,0", NULL},
    {"Logo Animation", COLOR, "Color 3", "0,0,0", "", "0,0,0", NULL},
    {"Logo Animation", COLOR, "Color 4", "0,0,0", "", "0,0,0", NULL},
    {"Logo Animation", COLOR, "Color 5", "0,0,0", "", "0,0,0", NULL},
    {"Motion Detector", INTEGER, "BlurDelay", "50", "1,100", "50", "50"},
    {"Motion Detector", COLOR, "BlurColor", "0,0,192", "", "0,0,192", "255,0,0"},
    {"Picture Me", INTEGER, "Speed", "5", "1,5", "5", NULL},
    {"Picture Me", INTEGER, "Rotation Speed", "1", "1,5", "1", NULL},
    {"Picture Me", INTEGER, "Textures Number", "3", "1,10", "0", NULL},
    {"Picture Me", INTEGER, "Picture Size", "32", "10,50", "32", NULL},
    {"Rain Drops", INTEGER, "RainRate", "5", "1,10", "5", NULL},
    {"Rain", INTEGER, "DropPeriod", "1", "1,20", "1", "1"},
    {"Rain", INTEGER, "DropSize", "3", "2,16", "3", "3"},
    {"Tiled Up", INTEGER, "TileSize", "5", "4,32", "16", "5"},
};
/* clang-format on */

const PropertyRow* properties_of(const CatalogueRow* row, int* count) {
    const PropertyRow* first = NULL;
    *count = 0;
    for (size_t i = 0; i < sizeof properties / sizeof *properties; ++i) {
        if (strcmp(properties[i].effect, row->name) != 0) continue;
        if (!first) first = &properties[i];
        ++*count;
    }
    return first;
}

const char* start_value(const CatalogueRow* row, const PropertyRow* property) {
    return property->starts ? property->starts : row->variant_start;
}

Guid parse_guid(const char* text) {
    unsigned data1 = 0, data2 = 0, data3 = 0, tail[8] = {0};
    if (sscanf(text, "%8x-%4x-%4x-%2x%2x-%2x%2x%2x%2x%2x%2x", &data1, &data2, &data3, &tail[0], &tail[1],
               &tail[2], &tail[3], &tail[4], &tail[5], &tail[6], &tail[7]) != 11) {
        fprintf(stderr, "abi_host: not a GUID: %s\n", text);
        exit(2);
    }
    Guid id = {data1, (uint16_t)data2, (uint16_t)data3, {0}};
    for (int i = 0; i < 8; ++i) id.data4[i] = (uint8_t)tail[i];
    return id;
}

Effect* create_row(Factory* factory, const CatalogueRow* row) {
    Effect* effect = NULL;
    if (create_effect(factory, parse_guid(row->guid), 0, &effect) != SUCCESS || !effect) {
        fprintf(stderr, "abi_host: {%s} \"%s\" does not create\n", row->guid, row->name);
        exit(2);
    }
    return effect;
}

Effect* create_named(Factory* factory, const char* name) {
    for (int i = 0; i < ROWS; ++i)
        if (strcmp(catalogue[i].name, name) == 0) return create_row(factory, &catalogue[i]);
    fprintf(stderr, "abi_host: no effect is called %s\n", name);
    exit(2);
}
