#include "framework/Catalogue.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>

#include "effects/animated/CameraFlashes.h"
#include "effects/animated/Clouds.h"
#include "effects/animated/Fire.h"
#include "effects/animated/LogoAnimation.h"
#include "effects/animated/Quark.h"
#include "effects/animated/Rain.h"
#include "effects/animated/RainDrops.h"
#include "effects/distortion/Bulge.h"
#include "effects/distortion/FishEye.h"
#include "effects/distortion/HallwayVision.h"
#include "effects/distortion/Liquefy.h"
#include "effects/distortion/MovingTwirl.h"
#include "effects/distortion/Stretch.h"
#include "effects/distortion/Twirl.h"
#include "effects/drawing/Chalk.h"
#include "effects/drawing/ColoredPencil.h"
#include "effects/drawing/ComicBook.h"
#include "effects/drawing/CottonCandy.h"
#include "effects/drawing/GraphicPen.h"
#include "effects/drawing/LineArt.h"
#include "effects/drawing/Plaster.h"
#include "effects/drawing/Sketch.h"
#include "effects/time/FourSquare.h"
#include "effects/time/MotionBlur.h"
#include "effects/time/MotionDetector.h"
#include "effects/time/TiledUp.h"
#include "effects/time/TimeDistortion.h"
#include "effects/tone/AntiquatedMovie.h"
#include "effects/tone/Chrome.h"
#include "effects/tone/GrayScale.h"
#include "effects/tone/Neonize.h"
#include "effects/tone/NightVision.h"
#include "effects/tone/Sepia.h"
#include "effects/tone/SpotLight.h"
#include "effects/tone/XRay.h"
#include "facetrack/PictureMe.h"
#include "framework/Guid.h"

namespace {

constexpr int kNotListed = -1;

struct Places {
    int first = kNotListed, second = kNotListed;
};

/// GUID, the places at which the listing has it, and how the effect is made.
struct Row {
    std::string_view id;
    Places listedAt;
    CSpecialEffectFilter* (*create)();
};

template <class Effect, class... Arguments>
CSpecialEffectFilter* New(Arguments... arguments) {
    return std::make_unique<Effect>(arguments...).release();
}

// clang-format off
constexpr Row kRows[] = {
    {"{ABC27FCB-B469-428E-9A2F-C2117AD7148E}", {}, [] { return New<CGraphicPenSpecialEffectFilter>(1); }},
    {"{FB5FBC24-8123-4E32-BBA1-3E77B228A727}", {}, [] { return New<CGraphicPenSpecialEffectFilter>(2); }},
    {"{333FBC24-1123-4E32-BBA1-3E77B228A727}", {6, 28}, [] { return New<CGraphicPenSpecialEffectFilter>(3); }},
    {"{1FA2E948-426B-4BDE-A400-2EB1FEBF9522}", {}, [] { return New<CGraphicPenSpecialEffectFilter>(4); }},
    {"{1DC06F46-0253-4EF8-96AF-E69B0B535984}", {}, [] { return New<CChromeSpecialEffectFilter>(1); }},
    {"{43206F46-1253-4EF8-22AF-E69B0B535984}", {}, [] { return New<CChromeSpecialEffectFilter>(2); }},
    {"{0405DEA1-A404-4CC8-A70B-5C273A2A8172}", {}, [] { return New<CPlasterSpecialEffectFilter>(); }},
    {"{3A849CCB-B961-40FF-ABB7-4385365DF0FC}", {}, [] { return New<CSketchSpecialEffectFilter>(1); }},
    {"{4DD74959-BE0F-44B1-92B6-043DC61D9F39}", {}, [] { return New<CSketchSpecialEffectFilter>(2); }},
    {"{E4CA9AFE-50ED-496A-9DC6-214A38B3AEA9}", {29}, [] { return New<CSketchSpecialEffectFilter>(3); }},
    {"{A2BACBE0-498C-4681-BBEC-F39BB439CED1}", {}, [] { return New<CLineArtSpecialEffectFilter>(1); }},
    {"{6772F07B-DE51-4FA9-A7C7-DE6430F437BF}", {17}, [] { return New<CLineArtSpecialEffectFilter>(2); }},
    {"{A50A308E-0D60-46E5-A336-409E22F395DD}", {4}, [] { return New<CTiledUpSpecialEffectFilter>(); }},
    {"{E13ED2C0-8ABF-424D-95DD-AB390B236072}", {0}, [] { return New<CNeonizeSpecialEffectFilter>(); }},
    {"{DD6B365B-A6CD-4473-80D8-20F7A662B981}", {7}, [] { return New<CChalkSpecialEffectFilter>(1); }},
    {"{C043B0F7-A2E1-40F3-AAC7-2019FB2571C3}", {}, [] { return New<CChalkSpecialEffectFilter>(2); }},
    {"{C1A1DEF8-8962-45EF-B416-4C51F4DED591}", {}, [] { return New<CChalkSpecialEffectFilter>(3); }},
    {"{C116304B-F245-4111-855E-5EA4873787FB}", {24}, [] { return New<CLiquefySpecialEffectFilter>(1); }},
    {"{09BBE22C-BF85-445E-8DF0-F90E72B6B8C0}", {15}, [] { return New<CLiquefySpecialEffectFilter>(2); }},
    {"{D77E9CF7-CE38-4ABF-A4BA-525140515CEC}", {19}, [] { return New<CLiquefySpecialEffectFilter>(3); }},
    {"{930E1289-65C0-403E-880A-1902FDCFEA90}", {25}, [] { return New<CFireSpecialEffectFilter>(); }},
    {"{D0329FE9-2E4F-46ED-BA05-70DB47014CD9}", {3}, [] { return New<CCottonCandySpecialEffectFilter>(); }},
    {"{27E3D176-FB78-4F57-A94F-37EB05CA30F8}", {26}, [] { return New<CRainSpecialEffectFilter>(); }},
    {"{6179FB24-F31A-44C7-B0AB-8DF5F96F4315}", {2}, [] { return New<CFourSquareSpecialEffectFilter>(); }},
    {"{31C0857C-39B7-47C5-A30D-5E7EA39D66A6}", {16}, [] { return New<CTwirlSpecialEffectFilter>(1, 1.15); }},
    {"{D4BD349A-13D3-45F2-8C4C-880E9D2E6280}", {27}, [] { return New<CTwirlSpecialEffectFilter>(2, 1.15); }},
    {"{41AAFA6F-B0F3-4759-A799-4E3DF9833D4A}", {11}, [] { return New<CMovingTwirlSpecialEffectFilter>(); }},
    {"{7DB203B3-4EC6-497D-957F-5A938F6AAB76}", {18}, [] { return New<CCloudsSpecialEffectFilter>(); }},
    {"{83548554-BA11-4C26-9403-442DFA1C2BFE}", {5}, [] { return New<CAntiquatedMovieSpecialEffectFilter>(); }},
    {"{F342D1F4-4E9C-475C-82CF-1CC347562DBC}", {22}, [] { return New<CHallwayVisionSpecialEffectFilter>(1); }},
    {"{2F8530C5-96DA-4BCD-9CCA-B536EAFB08BB}", {23}, [] { return New<CHallwayVisionSpecialEffectFilter>(2); }},
    {"{9E680B79-DC8E-4CA2-B3AE-731A26C57EAE}", {14}, [] { return New<CRainDropsSpecialEffectFilter>(); }},
    {"{A5749CD7-26DF-440E-B377-4F9909EFE6C9}", {12}, [] { return New<CCameraFlashesSpecialEffectFilter>(1); }},
    {"{E729C2F2-476B-4B34-A0FC-8F62BAD8CEA0}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(5); }},
    {"{727BCC5F-DF7B-4ECB-B895-22109E5F5770}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(4); }},
    {"{B6C05462-D194-4022-B507-8FB2940739BB}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(8); }},
    {"{33BB1C59-E80E-4B8B-A7AC-66D058A52A00}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(3); }},
    {"{3BD16EB0-C94B-4D63-BEAE-D034AC9668EF}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(7); }},
    {"{8BB64F99-EB1E-4D12-9E21-2B68399AFF36}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(2); }},
    {"{3FB097AA-932B-4B55-83B6-6E969CBE8FB3}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(6); }},
    {"{9C2835D8-1BE3-4E49-840A-CBBDA6FFAD0F}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(9); }},
    {"{922AC4BE-F417-4CB9-98D7-6226C2E41589}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(10); }},
    {"{7107911C-9343-414E-B78A-301C3E8154FC}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(11); }},
    {"{1CCF41D6-1DB0-4210-A520-257AB271948C}", {}, [] { return New<CCameraFlashesSpecialEffectFilter>(12); }},
    {"{A8DC69D3-3428-4F12-B672-BB58C95BDE25}", {30}, [] { return New<CMotionBlurSpecialEffectFilter>(0); }},
    {"{6C250CDD-8B28-4821-B047-B30878E3439F}", {9}, [] { return New<CMotionDetectorSpecialEffectFilter>(); }},
    {"{8656338E-0410-4832-A7CA-325D902713D2}", {31}, [] { return New<CMotionBlurSpecialEffectFilter>(1); }},
    {"{7B4F7937-8D17-4216-B206-383740E65E17}", {32}, [] { return New<CColoredPencilSpecialEffectFilter>(); }},
    {"{80636C0C-87C0-4EDE-AC46-B9F78D3DBF9F}", {}, [] { return New<CSpotLightSpecialEffectFilter>(0); }},
    {"{0255B3CB-9DF7-4B4D-ADBA-8730305B29EA}", {13}, [] { return New<CSpotLightSpecialEffectFilter>(1); }},
    {"{6A5E49C5-2ACA-4115-B778-74AA63AE43C1}", {}, [] { return New<CSpotLightSpecialEffectFilter>(2); }},
    {"{692E6627-95B1-462D-B120-114CFBA72188}", {33}, [] { return New<CQuarkSpecialEffectFilter>(); }},
    {"{65F2B741-B4F0-4B6E-9C6B-3548B3039578}", {21}, [] { return New<CLogoAnimationSpecialEffectFilter>(); }},
    {"{48D2B4EE-5668-418C-8CB2-E624F4CBCDBA}", {1}, [] { return New<CStretchSpecialEffectFilter>(); }},
    {"{AAD9F53D-60B9-4EDA-92B7-3E0A568DE28A}", {8}, [] { return New<CFishEyeSpecialEffectFilter>(); }},
    {"{84DF0F59-4E9F-49AA-8DA0-C46E23D07128}", {10}, [] { return New<CNightVisionSpecialEffectFilter>(); }},
    {"{7EA36DF8-6AC3-40AD-A4F3-9B240E651079}", {20}, [] { return New<CComicBookSpecialEffectFilter>(); }},
    {"{4CD53514-D1F8-41FD-BE48-24EF98AD69D3}", {34}, [] { return New<CTimeDistortionSpecialEffectFilter>(); }},
    {"{3FCD24E0-4787-4D3C-9483-2A689BD61654}", {35}, [] { return New<CXRaySpecialEffectFilter>(); }},
    {"{E9CC3E96-DFE8-4B32-A477-13D8968339F2}", {36}, [] { return New<CPictureMeSpecialEffectFilter>(); }},
    {"{DED4BDD4-E2A0-4542-808E-FC9DC4CBCEA6}", {37}, [] { return New<CBulgeSpecialEffectFilter>(); }},
    {"{CC006219-72F8-4E49-8E12-6E05B59269E9}", {38}, [] { return New<CGrayScaleSpecialEffectFilter>(); }},
    {"{3BF3AE40-0316-41B9-84C5-A8C671212CAC}", {39}, [] { return New<CSepiaSpecialEffectFilter>(); }},
};
// clang-format on

/// Listed last, and created by nothing: hosts have to expect one failure.
constexpr std::string_view kListedOnly = "{8AAE654A-D222-4D8A-968F-937591B1B696}";
constexpr size_t kListedOnlyAt = 40;

template <size_t... i>
constexpr auto MakeCatalogue(std::index_sequence<i...>) {
    return std::array{CatalogueRow{ParseGuid(kRows[i].id), kRows[i].create}...};
}
constexpr auto kCatalogue = MakeCatalogue(std::make_index_sequence<std::size(kRows)>());

constexpr auto MakeListing() {
    std::array<EffectGuid, kListedOnlyAt + 1> listing{};
    listing[kListedOnlyAt] = ParseGuid(kListedOnly);
    for (size_t i = 0; i < kCatalogue.size(); ++i) {
        for (const int place : {kRows[i].listedAt.first, kRows[i].listedAt.second}) {
            if (place != kNotListed) listing[static_cast<size_t>(place)] = kCatalogue[i].id;
        }
    }
    return listing;
}
constexpr auto kListing = MakeListing();

}  // namespace

std::span<const CatalogueRow> EffectCatalogue() {
    return kCatalogue;
}
std::span<const EffectGuid> EffectListing() {
    return kListing;
}
