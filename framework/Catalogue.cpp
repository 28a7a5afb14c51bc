#include "framework/Catalogue.h"

#include <array>

#include "framework/EffectClass.h"
#include "framework/Guid.h"

class CAntiquatedMovieSpecialEffectFilter;
class CBulgeSpecialEffectFilter;
class CCameraFlashesSpecialEffectFilter;
class CChalkSpecialEffectFilter;
class CChromeSpecialEffectFilter;
class CCloudsSpecialEffectFilter;
class CColoredPencilSpecialEffectFilter;
class CComicBookSpecialEffectFilter;
class CCottonCandySpecialEffectFilter;
class CFireSpecialEffectFilter;
class CFishEyeSpecialEffectFilter;
class CFourSquareSpecialEffectFilter;
class CGraphicPenSpecialEffectFilter;
class CGrayScaleSpecialEffectFilter;
class CHallwayVisionSpecialEffectFilter;
class CLineArtSpecialEffectFilter;
class CLiquefySpecialEffectFilter;
class CLogoAnimationSpecialEffectFilter;
class CMotionBlurSpecialEffectFilter;
class CMotionDetectorSpecialEffectFilter;
class CMovingTwirlSpecialEffectFilter;
class CNeonizeSpecialEffectFilter;
class CNightVisionSpecialEffectFilter;
class CPictureMeSpecialEffectFilter;
class CPlasterSpecialEffectFilter;
class CQuarkSpecialEffectFilter;
class CRainDropsSpecialEffectFilter;
class CRainSpecialEffectFilter;
class CSepiaSpecialEffectFilter;
class CSketchSpecialEffectFilter;
class CSpotLightSpecialEffectFilter;
class CStretchSpecialEffectFilter;
class CTiledUpSpecialEffectFilter;
class CTimeDistortionSpecialEffectFilter;
class CTwirlSpecialEffectFilter;
class CXRaySpecialEffectFilter;

namespace {

constexpr int32_t kOnly = CatalogueRow::kOnly;

template <class Effect>
consteval CatalogueRow Row(const char* guid, const char* shortName, int32_t variant, EffectKind kind,
                           CatalogueRow::Places listedAt, const char* description, uint32_t traits,
                           const char* dataFile = nullptr) {
    return {ParseGuid(guid),
            guid,
            shortName,
            variant,
            kind,
            description,
            traits,
            dataFile,
            listedAt,
            EffectClass<Effect>::Make,
            EffectClass<Effect>::Words};
}

// clang-format off
constexpr CatalogueRow kRows[] = {
    Row<CGraphicPenSpecialEffectFilter>(
        "{ABC27FCB-B469-428E-9A2F-C2117AD7148E}", "graphic-pen-1", 1, EffectKind::Drawing, {},
        "Draws the picture in dark pen strokes that all lean the same way, denser where it is darker.",
        kUsesChance),
    Row<CGraphicPenSpecialEffectFilter>(
        "{FB5FBC24-8123-4E32-BBA1-3E77B228A727}", "graphic-pen-2", 2, EffectKind::Drawing, {},
        "Draws the picture in pen strokes, with lighter flat areas and dark edges.",
        kUsesChance),
    Row<CGraphicPenSpecialEffectFilter>(
        "{333FBC24-1123-4E32-BBA1-3E77B228A727}", "graphic-pen-3", 3, EffectKind::Drawing, {6, 28},
        "Draws the picture in soft pen strokes, with lighter flat areas.",
        kUsesChance),
    Row<CGraphicPenSpecialEffectFilter>(
        "{1FA2E948-426B-4BDE-A400-2EB1FEBF9522}", "graphic-pen-4", 4, EffectKind::Drawing, {},
        "Draws the picture in pen strokes that crawl along their own direction, with lighter flat areas.",
        kMoves | kUsesChance),
    Row<CChromeSpecialEffectFilter>(
        "{1DC06F46-0253-4EF8-96AF-E69B0B535984}", "chrome-1", 1, EffectKind::Tone, {},
        "Turns the scene into dark polished metal: soft gradients become bright and dark bands.",
        kHasMemory),
    Row<CChromeSpecialEffectFilter>(
        "{43206F46-1253-4EF8-22AF-E69B0B535984}", "chrome-2", 2, EffectKind::Tone, {},
        "Turns the scene into bright polished metal: soft gradients become bright and dark bands.",
        kHasMemory),
    Row<CPlasterSpecialEffectFilter>(
        "{0405DEA1-A404-4CC8-A70B-5C273A2A8172}", "plaster", kOnly, EffectKind::Drawing, {},
        "Casts the scene in plaster: dark masses and bright fields, with raised borders lit from above.",
        kHasMemory),
    Row<CSketchSpecialEffectFilter>(
        "{3A849CCB-B961-40FF-ABB7-4385365DF0FC}", "sketch-1", 1, EffectKind::Drawing, {},
        "Draws the picture in short crossing pencil strokes.",
        kUsesChance),
    Row<CSketchSpecialEffectFilter>(
        "{4DD74959-BE0F-44B1-92B6-043DC61D9F39}", "sketch-2", 2, EffectKind::Drawing, {},
        "Draws the picture in short crossing pencil strokes, with inked edges.",
        kUsesChance),
    Row<CSketchSpecialEffectFilter>(
        "{E4CA9AFE-50ED-496A-9DC6-214A38B3AEA9}", "sketch-3", 3, EffectKind::Drawing, {29},
        "Draws the picture in short crossing pencil strokes, softened, with lighter flat areas.",
        kUsesChance),
    Row<CLineArtSpecialEffectFilter>(
        "{A2BACBE0-498C-4681-BBEC-F39BB439CED1}", "line-art-1", 1, EffectKind::Drawing, {},
        "Draws the edges of the scene as bright lines on one flat colour.",
        0),
    Row<CLineArtSpecialEffectFilter>(
        "{6772F07B-DE51-4FA9-A7C7-DE6430F437BF}", "line-art-2", 2, EffectKind::Drawing, {17},
        "Draws the edges of the scene as bright lines on one flat colour; the same as line-art-1.",
        0),
    Row<CTiledUpSpecialEffectFilter>(
        "{A50A308E-0D60-46E5-A336-409E22F395DD}", "tiled-up", kOnly, EffectKind::Time, {4},
        "Divides the picture into square tiles with uneven grout, lit as a relief.",
        kUsesChance),
    Row<CNeonizeSpecialEffectFilter>(
        "{E13ED2C0-8ABF-424D-95DD-AB390B236072}", "neonize", kOnly, EffectKind::Tone, {0},
        "Draws the edges of the scene as glowing coloured lines on black.",
        0),
    Row<CChalkSpecialEffectFilter>(
        "{DD6B365B-A6CD-4473-80D8-20F7A662B981}", "chalk-1", 1, EffectKind::Drawing, {7},
        "Reduces the picture to eight flat chalk tones over blurred colours.",
        0),
    Row<CChalkSpecialEffectFilter>(
        "{C043B0F7-A2E1-40F3-AAC7-2019FB2571C3}", "chalk-2", 2, EffectKind::Drawing, {},
        "Reduces the picture to eight flat chalk tones over blurred colours, with near-black edges.",
        0),
    Row<CChalkSpecialEffectFilter>(
        "{C1A1DEF8-8962-45EF-B416-4C51F4DED591}", "chalk-3", 3, EffectKind::Drawing, {},
        "Draws the outlines of the scene in grey chalk, without colour.",
        0),
    Row<CLiquefySpecialEffectFilter>(
        "{C116304B-F245-4111-855E-5EA4873787FB}", "liquefy-1", 1, EffectKind::Distortion, {24},
        "Shows the picture through moving water with crossed sine waves.",
        kMoves),
    Row<CLiquefySpecialEffectFilter>(
        "{09BBE22C-BF85-445E-8DF0-F90E72B6B8C0}", "liquefy-2", 2, EffectKind::Distortion, {15},
        "Shows the picture through moving water with random blobs that rise and fall.",
        kMoves | kUsesChance),
    Row<CLiquefySpecialEffectFilter>(
        "{D77E9CF7-CE38-4ABF-A4BA-525140515CEC}", "liquefy-3", 3, EffectKind::Distortion, {19},
        "Shows the picture through moving water with scrolling noise.",
        kMoves | kUsesChance),
    Row<CFireSpecialEffectFilter>(
        "{930E1289-65C0-403E-880A-1902FDCFEA90}", "fire", kOnly, EffectKind::Animated, {25},
        "Makes the picture glow like a false-colour heat image, from white through red and blue back to white.",
        0),
    Row<CCottonCandySpecialEffectFilter>(
        "{D0329FE9-2E4F-46ED-BA05-70DB47014CD9}", "cotton-candy", kOnly, EffectKind::Drawing, {3},
        "Turns the picture into soft pastel false colours: pink, violet and cyan.",
        0),
    Row<CRainSpecialEffectFilter>(
        "{27E3D176-FB78-4F57-A94F-37EB05CA30F8}", "rain", kOnly, EffectKind::Animated, {26},
        "Shows the picture under a pond in the rain: rings spread from drops at random places.",
        kHasMemory | kMoves | kUsesChance),
    Row<CFourSquareSpecialEffectFilter>(
        "{6179FB24-F31A-44C7-B0AB-8DF5F96F4315}", "four-square", kOnly, EffectKind::Time, {2},
        "Repeats the scene four times as a high-contrast screen print, each quadrant in its own colours.",
        kHasMemory),
    Row<CTwirlSpecialEffectFilter>(
        "{31C0857C-39B7-47C5-A30D-5E7EA39D66A6}", "twirl-1", 1, EffectKind::Distortion, {16},
        "Twists a disc in the middle of the picture, most at its centre.",
        0),
    Row<CTwirlSpecialEffectFilter>(
        "{D4BD349A-13D3-45F2-8C4C-880E9D2E6280}", "twirl-2", 2, EffectKind::Distortion, {27},
        "Twists the whole picture round its centre, most at the centre.",
        0),
    Row<CMovingTwirlSpecialEffectFilter>(
        "{41AAFA6F-B0F3-4759-A799-4E3DF9833D4A}", "moving-twirl", kOnly, EffectKind::Distortion, {11},
        "Twists a disc in the middle of the picture back and forth.",
        kMoves),
    Row<CCloudsSpecialEffectFilter>(
        "{7DB203B3-4EC6-497D-957F-5A938F6AAB76}", "clouds", kOnly, EffectKind::Animated, {18},
        "Draws drifting clouds of one colour over the picture.",
        kMoves, "perlin.dat"),
    Row<CAntiquatedMovieSpecialEffectFilter>(
        "{83548554-BA11-4C26-9403-442DFA1C2BFE}", "antiquated-movie", kOnly, EffectKind::Tone, {5},
        "Ages the picture like an old film, with hairs, dust, scratches, grain and a jittering gate.",
        kMoves | kUsesChance),
    Row<CHallwayVisionSpecialEffectFilter>(
        "{F342D1F4-4E9C-475C-82CF-1CC347562DBC}", "hallway-vision-1", 1, EffectKind::Distortion, {22},
        "Bends the picture as if seen down a corridor, with smooth sampling.",
        0),
    Row<CHallwayVisionSpecialEffectFilter>(
        "{2F8530C5-96DA-4BCD-9CCA-B536EAFB08BB}", "hallway-vision-2", 2, EffectKind::Distortion, {23},
        "Bends the picture as if seen down a corridor, with nearest-pixel sampling.",
        0),
    Row<CRainDropsSpecialEffectFilter>(
        "{9E680B79-DC8E-4CA2-B3AE-731A26C57EAE}", "rain-drops", kOnly, EffectKind::Animated, {14},
        "Shows the picture through a wet window pane: drops sit on the glass, grow heavy and run down.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{A5749CD7-26DF-440E-B377-4F9909EFE6C9}", "camera-flashes-1", 1, EffectKind::Animated, {12},
        "Adds plain blue glows that flash, drift and light up again elsewhere.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{E729C2F2-476B-4B34-A0FC-8F62BAD8CEA0}", "camera-flashes-5", 5, EffectKind::Animated, {},
        "Adds stars with changing spikes that flash, drift and light up again elsewhere.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{727BCC5F-DF7B-4ECB-B895-22109E5F5770}", "camera-flashes-4", 4, EffectKind::Animated, {},
        "Adds regular stars that flash, drift and light up again elsewhere.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{B6C05462-D194-4022-B507-8FB2940739BB}", "camera-flashes-8", 8, EffectKind::Animated, {},
        "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{33BB1C59-E80E-4B8B-A7AC-66D058A52A00}", "camera-flashes-3", 3, EffectKind::Animated, {},
        "Adds ragged stars that flash, drift and light up again elsewhere.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{3BD16EB0-C94B-4D63-BEAE-D034AC9668EF}", "camera-flashes-7", 7, EffectKind::Animated, {},
        "Adds flares of random kinds that flash, drift and light up again elsewhere.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{8BB64F99-EB1E-4D12-9E21-2B68399AFF36}", "camera-flashes-2", 2, EffectKind::Animated, {},
        "Adds sharp points with wide halos that flash, drift and light up again elsewhere.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{3FB097AA-932B-4B55-83B6-6E969CBE8FB3}", "camera-flashes-6", 6, EffectKind::Animated, {},
        "Adds ragged stars in rings that flash, drift and light up again elsewhere.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{9C2835D8-1BE3-4E49-840A-CBBDA6FFAD0F}", "camera-flashes-9", 9, EffectKind::Animated, {},
        "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{922AC4BE-F417-4CB9-98D7-6226C2E41589}", "camera-flashes-10", 10, EffectKind::Animated, {},
        "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{7107911C-9343-414E-B78A-301C3E8154FC}", "camera-flashes-11", 11, EffectKind::Animated, {},
        "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
        kMoves | kUsesChance),
    Row<CCameraFlashesSpecialEffectFilter>(
        "{1CCF41D6-1DB0-4210-A520-257AB271948C}", "camera-flashes-12", 12, EffectKind::Animated, {},
        "Adds flares of random kinds that flash, drift and light up again elsewhere; the same as camera-flashes-7.",
        kMoves | kUsesChance),
    Row<CMotionBlurSpecialEffectFilter>(
        "{A8DC69D3-3428-4F12-B672-BB58C95BDE25}", "motion-blur-0", 0, EffectKind::Time, {30},
        "Leaves bright trails: blends each frame with the three output frames before it.",
        kHasMemory),
    Row<CMotionDetectorSpecialEffectFilter>(
        "{6C250CDD-8B28-4821-B047-B30878E3439F}", "motion-detector", kOnly, EffectKind::Time, {9},
        "Shows only what moves, as a glow of one colour that fades in real time.",
        kHasMemory | kUsesTime),
    Row<CMotionBlurSpecialEffectFilter>(
        "{8656338E-0410-4832-A7CA-325D902713D2}", "motion-blur-1", 1, EffectKind::Time, {31},
        "Leaves ghosts: blends each frame with the three output frames before it.",
        kHasMemory),
    Row<CColoredPencilSpecialEffectFilter>(
        "{7B4F7937-8D17-4216-B206-383740E65E17}", "colored-pencil", kOnly, EffectKind::Drawing, {32},
        "Draws dark contour lines on pale paper, with the scene's colours as a wash behind them.",
        0),
    Row<CSpotLightSpecialEffectFilter>(
        "{80636C0C-87C0-4EDE-AC46-B9F78D3DBF9F}", "spot-light-0", 0, EffectKind::Tone, {},
        "Darkens the picture except under a round light in the middle.",
        0),
    Row<CSpotLightSpecialEffectFilter>(
        "{0255B3CB-9DF7-4B4D-ADBA-8730305B29EA}", "spot-light-1", 1, EffectKind::Tone, {13},
        "Darkens the picture except under a beam of light from above.",
        0),
    Row<CSpotLightSpecialEffectFilter>(
        "{6A5E49C5-2ACA-4115-B778-74AA63AE43C1}", "spot-light-2", 2, EffectKind::Tone, {},
        "Darkens the picture except under a brighter beam from above with a steep edge.",
        0),
    Row<CQuarkSpecialEffectFilter>(
        "{692E6627-95B1-462D-B120-114CFBA72188}", "quark", kOnly, EffectKind::Animated, {33},
        "Takes each pixel from a random one of the last 16 frames, so that motion dissolves into speckle.",
        kHasMemory | kUsesChance),
    Row<CLogoAnimationSpecialEffectFilter>(
        "{65F2B741-B4F0-4B6E-9C6B-3548B3039578}", "logo-animation", kOnly, EffectKind::Animated, {21},
        "Fades copies of a small logo, a text or a bitmap, in and out at random places.",
        kMoves | kUsesChance | kUsesTime),
    Row<CStretchSpecialEffectFilter>(
        "{48D2B4EE-5668-418C-8CB2-E624F4CBCDBA}", "blockhead", kOnly, EffectKind::Distortion, {1},
        "Squeezes the picture towards the middle, which makes a head look blocky.",
        0),
    Row<CFishEyeSpecialEffectFilter>(
        "{AAD9F53D-60B9-4EDA-92B7-3E0A568DE28A}", "fish-eye", kOnly, EffectKind::Distortion, {8},
        "Shows the picture inside a disc on black, through one of three lens curves.",
        0),
    Row<CNightVisionSpecialEffectFilter>(
        "{84DF0F59-4E9F-49AA-8DA0-C46E23D07128}", "polarize", kOnly, EffectKind::Tone, {10},
        "Inverts the picture into a photographic negative.",
        0),
    Row<CComicBookSpecialEffectFilter>(
        "{7EA36DF8-6AC3-40AD-A4F3-9B240E651079}", "comic-book", kOnly, EffectKind::Drawing, {20},
        "Reduces the picture to the eight saturated colours of cheap printing.",
        0),
    Row<CTimeDistortionSpecialEffectFilter>(
        "{4CD53514-D1F8-41FD-BE48-24EF98AD69D3}", "time-distortion", kOnly, EffectKind::Time, {34},
        "Lets the past show where the scene changes: a moving body smears into its past positions.",
        kHasMemory),
    Row<CXRaySpecialEffectFilter>(
        "{3FCD24E0-4787-4D3C-9483-2A689BD61654}", "x-ray", kOnly, EffectKind::Tone, {35},
        "Turns the picture into a bluish-green radiograph: a darkened, slightly blurred negative.",
        0),
    Row<CPictureMeSpecialEffectFilter>(
        "{E9CC3E96-DFE8-4B32-A477-13D8968339F2}", "picture-me", kOnly, EffectKind::Faces, {36},
        "Sends snapshots of the tracked face to a column of thumbnails at the right edge.",
        kHasMemory | kMoves, "haar.txt"),
    Row<CBulgeSpecialEffectFilter>(
        "{DED4BDD4-E2A0-4542-808E-FC9DC4CBCEA6}", "bulge", kOnly, EffectKind::Distortion, {37},
        "Swells the middle of the picture as if it were pressed out from behind.",
        0),
    Row<CGrayScaleSpecialEffectFilter>(
        "{CC006219-72F8-4E49-8E12-6E05B59269E9}", "gray-scale", kOnly, EffectKind::Tone, {38},
        "Removes the colour.",
        0),
    Row<CSepiaSpecialEffectFilter>(
        "{3BF3AE40-0316-41B9-84C5-A8C671212CAC}", "sepia", kOnly, EffectKind::Tone, {39},
        "Tints the picture brown.",
        0),
};
// clang-format on

/// Listed last but never created: hosts must expect one failure.
constexpr EffectGuid kListedOnly = ParseGuid("{8AAE654A-D222-4D8A-968F-937591B1B696}");
constexpr size_t kListedOnlyAt = 40;

consteval auto MakeListing() {
    std::array<EffectGuid, kListedOnlyAt + 1> listing{};
    listing[kListedOnlyAt] = kListedOnly;
    for (const CatalogueRow& row : kRows) {
        for (const int32_t place : {row.listedAt.first, row.listedAt.second}) {
            if (place != CatalogueRow::Places::kNone) listing[static_cast<size_t>(place)] = row.id;
        }
    }
    return listing;
}
constexpr auto kListing = MakeListing();

}  // namespace

const char* KindName(EffectKind kind) {
    constexpr const char* kNames[] = {"tone", "distortion", "drawing", "time", "animated", "faces"};
    return kNames[static_cast<size_t>(kind)];
}

std::span<const CatalogueRow> EffectCatalogue() {
    return kRows;
}
std::span<const EffectGuid> EffectListing() {
    return kListing;
}
