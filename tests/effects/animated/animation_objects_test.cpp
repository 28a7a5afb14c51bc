#include "effects/animated/AnimationObjects.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <set>

#include "effects/animated/AnimationFramework.h"
#include "imaging/ScalarColor.h"
#include "tests/support/PlainPlane.h"

namespace {

/// A sprite whose state a test can set and see.
class Sprite final : public CMovingAnimationObject {
  public:
    Sprite(int32_t width, int32_t height, int32_t frameWidth, int32_t frameHeight, int32_t frames = 1)
        : CMovingAnimationObject(width, height, frameWidth, frameHeight, frames) {}
    void* DeletingDestructor(uint32_t flags) override { return DestroyObject(this, flags); }

    Sprite& At(int32_t x, int32_t y) {
        X = x;
        Y = y;
        return *this;
    }
    Sprite& With(int32_t vx, int32_t vy) {
        VelocityX = vx;
        VelocityY = vy;
        return *this;
    }
    PlanePoint Position() {
        PlanePoint p{};
        GetPosition(&p);
        return p;
    }
    size_t Cursor() const { return FrameCursor; }
    int32_t velocityX() const { return VelocityX; }
    int32_t velocityY() const { return VelocityY; }
    int32_t maxX() const { return MaxX; }
    CPlane8u& Mask(size_t i = 0) { return Frames[i]; }
};

Owned<Sprite> NewSprite(int32_t w, int32_t h, int32_t fw, int32_t fh, int32_t n = 1) {
    return MakeOwned<Sprite>(w, h, fw, fh, n);
}

TEST(MovingObject, HasItsOperationsInOrder) {
    // Slot n is entry n of the table that the object begins with.
    auto sprite = NewSprite(4, 4, 40, 30);
    sprite->At(3, 5).With(1, 2);
    void** const table = *reinterpret_cast<void***>(static_cast<CBaseAnimationObject*>(sprite.get()));
    using Procedure = void (*)(CBaseAnimationObject*);
    using Query = bool (*)(CBaseAnimationObject*);
    using GetPlane = CPlane8u* (*)(CBaseAnimationObject*);
    using GetPoint = void (*)(CBaseAnimationObject*, PlanePoint*);
    using Bytes = void (*)(CBaseAnimationObject*, uint8_t*);
    reinterpret_cast<Procedure>(table[1])(sprite.get());
    PlanePoint p{};
    reinterpret_cast<GetPoint>(table[4])(sprite.get(), &p);
    EXPECT_EQ(p.x, 4);
    EXPECT_EQ(p.y, 7);
    EXPECT_FALSE(reinterpret_cast<Query>(table[2])(sprite.get()));
    EXPECT_EQ(reinterpret_cast<GetPlane>(table[3])(sprite.get()), &sprite->Mask());
    uint8_t color[4] = {1, 2, 3, 4}, got[4] = {};
    reinterpret_cast<Bytes>(table[6])(sprite.get(), color);
    reinterpret_cast<Bytes>(table[5])(sprite.get(), got);
    EXPECT_EQ(std::vector<uint8_t>(got, got + 4), (std::vector<uint8_t>{1, 2, 3, 4}));
    using Speed = void (*)(CBaseAnimationObject*, int32_t);
    reinterpret_cast<Speed>(table[9])(sprite.get(), 0);
    EXPECT_EQ(sprite->velocityX(), 1);
}

TEST(MovingObject, IsDestroyedThroughItsFirstSlot) {
    const Owned<CMovingAnimationObject> freed = MakeOwned<CMovingAnimationObject>(4, 4, 40, 30, 2);
    void* const memory = ::operator new(sizeof(CMovingAnimationObject));
    auto* const object = new (memory) CMovingAnimationObject(4, 4, 40, 30, 2);
    EXPECT_EQ(object->DeletingDestructor(0), memory);
    ::operator delete(memory);
}

TEST(MovingObject, DrawsARampOfGreyUpAndDown) {
    auto sprite = NewSprite(3, 2, 40, 30, 5);
    sprite->BuildFrames();
    const uint8_t ramp[] = {0, 102, 204, 255, 204};
    for (size_t i = 0; i < std::size(ramp); ++i) {
        const CPlane8u& mask = sprite->Mask(i);
        EXPECT_EQ(std::vector<uint8_t>(mask.data, mask.data + mask.Size()), std::vector<uint8_t>(6, ramp[i]));
    }
    NewSprite(3, 2, 40, 30, 0)->BuildFrames();
}

TEST(MovingObject, BouncesAtTheEdges) {
    auto sprite = NewSprite(10, 10, 50, 40);
    ASSERT_EQ(sprite->maxX(), 39);
    sprite->At(39, 0).With(3, -2);
    sprite->Move();
    EXPECT_EQ(sprite->Position().x, 39);
    EXPECT_EQ(sprite->Position().y, 0);
    EXPECT_EQ(sprite->velocityX(), -3);
    EXPECT_EQ(sprite->velocityY(), 2);
    sprite->Move();
    EXPECT_EQ(sprite->Position().x, 36);
    EXPECT_EQ(sprite->Position().y, 2);
}

TEST(MovingObject, StartsItsCycleByOneDraw) {
    std::srand(5);
    const int drawn = std::rand(), after = std::rand();
    std::srand(5);
    auto sprite = NewSprite(4, 4, 40, 30, 5);
    EXPECT_EQ(sprite->Cursor(), static_cast<size_t>(drawn % 5));
    EXPECT_EQ(std::rand(), after);
    std::srand(5);
    NewSprite(4, 4, 40, 30, 0);
    EXPECT_EQ(std::rand(), drawn);

    while (sprite->Cursor() != 4) EXPECT_TRUE(sprite->NextFrame());
    EXPECT_FALSE(sprite->NextFrame());
    EXPECT_EQ(sprite->Cursor(), 0U);
    EXPECT_TRUE(sprite->NextFrame());
}

TEST(MovingObject, RandomVelocitiesAreTilted) {
    auto sprite = NewSprite(4, 4, 40, 30);
    std::set<int32_t> seen;
    for (int i = 0; i < 5000; ++i) {
        sprite->RandomizeVelocity(15);
        seen.insert(sprite->velocityX());
        seen.insert(sprite->velocityY());
    }
    EXPECT_EQ(*seen.begin(), -14);
    EXPECT_EQ(*seen.rbegin(), 16);
    EXPECT_EQ(seen.size(), 31U);
}

TEST(MovingObject, IsBlackAndOpaqueAtFirst) {
    auto sprite = NewSprite(4, 4, 40, 30);
    uint8_t color[4] = {1, 2, 3, 4};
    sprite->GetColor(color);
    EXPECT_EQ(std::vector<uint8_t>(color, color + 4), (std::vector<uint8_t>{0, 0, 0, 255}));
}

TEST(MovingObject, ColourTakesThreeDrawsAndKeepsAlpha) {
    auto sprite = NewSprite(4, 4, 40, 30);
    const uint8_t start[4] = {9, 9, 9, 77};
    sprite->SetColor(start);
    std::srand(8);
    const int a = std::rand() % 256, b = std::rand() % 256, c = std::rand() % 256, next = std::rand();
    std::srand(8);
    sprite->RandomizeColor();
    EXPECT_EQ(std::rand(), next);
    uint8_t got[4], expected[4];
    sprite->GetColor(got);
    RgbToYuvColor(expected, static_cast<uint8_t>(c), static_cast<uint8_t>(b), static_cast<uint8_t>(a));
    EXPECT_EQ(got[0], expected[0]);
    EXPECT_EQ(got[1], expected[1]);
    EXPECT_EQ(got[2], expected[2]);
    EXPECT_EQ(got[3], 77);
}

TEST(MovingObject, StaysAtTheOriginWhenItDoesNotFit) {
    auto sprite = NewSprite(64, 64, 40, 30);
    std::srand(8);
    std::rand();
    std::rand();
    const int next = std::rand();
    std::srand(8);
    sprite->RandomizePosition();
    EXPECT_EQ(std::rand(), next);
    EXPECT_EQ(sprite->Position().x, 0);
    EXPECT_EQ(sprite->Position().y, 0);
    sprite->With(5, -5);
    sprite->Move();
    EXPECT_EQ(sprite->Position().x, 0);
}

/// The envelope that a fading sprite follows.
int Fade(double x) {
    const double c[9] = {19.795236361585, 369.733067341368, -199.738438091861,
                         58.497524260458, -17.016867787585, 3.998718989183,
                         -0.550613656376, 0.038423391749,   -0.001055715747};
    double p = 0;
    for (int i = 0; i < 9; ++i) p += c[i] * std::pow(x, i);
    return std::clamp(static_cast<int>(p), 0, 255);
}

TEST(BitmapObject, FadesAndJumps) {
    std::srand(12);
    const int length = std::rand() % 14 + 20, start = std::rand() % length;
    std::srand(12);
    CPlane8u source(8, 8);
    source.Fill(255);
    AnimationObject object = MakeOwned<CBitmapAnimationObject>(8, 8, 200, 150, source);
    uint8_t color[4];
    const uint8_t tint[4] = {1, 50, 60, 2};
    object->SetColor(tint);
    int step = start;
    PlanePoint before{}, now{};
    for (int i = 0; i < 3 * length; ++i) {
        const bool ended = ++step > length;
        if (ended) step = 0;
        object->GetPosition(&before);
        ASSERT_EQ(object->NextFrame(), !ended);
        object->GetPosition(&now);
        EXPECT_EQ(now.x != before.x || now.y != before.y, ended) << step;
        object->GetColor(color);
        EXPECT_EQ(color[0], Fade(8.0 / length * step)) << step;
        EXPECT_EQ(color[3], color[0]);
        EXPECT_EQ(color[1], 50);
        EXPECT_EQ(color[2], 60);
    }
    EXPECT_EQ(Fade(0), 19);
    EXPECT_EQ(Fade(1), 234);
    EXPECT_EQ(Fade(2), 253);
    EXPECT_EQ(Fade(3), 179);
    EXPECT_EQ(Fade(8), 1);
}

TEST(BitmapObject, KeepsOffTheMiddle) {
    CPlane8u source(8, 8);
    CBitmapAnimationObject object(8, 8, 200, 150, source);
    int inMiddle = 0;
    for (int i = 0; i < 4000; ++i) {
        object.RandomizePosition();
        PlanePoint p{};
        object.GetPosition(&p);
        ASSERT_GE(p.x, 0);
        ASSERT_LT(p.x, 191);
        const bool x = p.x > 191 / 4 && p.x<3 * 191 / 4, y = p.y> 141 / 4 && p.y < 3 * 141 / 4;
        inMiddle += x && y ? 1 : 0;
    }
    // Anywhere in one case of five, which hits the middle quarter one time in four.
    EXPECT_NEAR(inMiddle, 200, 70);
}

/// Planes and sprites of a test, and the results of the passes by their definitions.
struct Stage {
    Stage() {
        TestRandom random(3);
        for (PlainPlane* plane : {&y, &u, &v}) {
            for (uint8_t& p : plane->pixels) p = random.Byte();
        }
        std::srand(2);
        // Two that overlap, one that reaches past the right and lower edge.
        for (const auto& [x, at] : {std::pair{5, 4}, {14, 9}, {50, 31}}) {
            auto sprite = NewSprite(21, 17, 64, 48);
            sprite->At(x, at);
            for (size_t i = 0; i < sprite->Mask().Size(); ++i) {
                sprite->Mask().data[i] = random.Below(3) == 0 ? uint8_t{0} : random.Byte();
            }
            sprite->RandomizeColor();
            sprites.push_back(sprite.get());
            framework.AddObject(std::move(sprite));
        }
    }

    CPlane8u Over(PlainPlane& plane) {
        return CPlane8u::Over(plane.pixels.data(), plane.width, plane.height);
    }

    template <class Op>
    static void ForMask(const PlainPlane& mask, int x, int y, const PlainPlane& plane, Op op) {
        for (int r = 0; r < mask.height; ++r) {
            for (int c = 0; c < mask.width; ++c) {
                if (x + c < plane.width && y + r < plane.height) op(mask.At(c, r), x + c, y + r);
            }
        }
    }
    static PlainPlane MaskOf(Sprite& sprite) {
        const CPlane8u& mask = sprite.Mask();
        return {mask.width, mask.height, std::span(mask.data, mask.Size())};
    }
    static PlainPlane HalfMaskOf(Sprite& sprite) {
        PlainPlane half(sprite.Mask().width / 2, sprite.Mask().height / 2);
        PlainResize(MaskOf(sprite), half);
        return half;
    }

    PlainPlane y{64, 48}, u{32, 24}, v{32, 24};
    CAnimationFramework framework{64, 48};
    std::vector<Sprite*> sprites;
};

TEST(Framework, GlowsByItsDefinition) {
    Stage stage;
    PlainPlane work(64, 48), expected = stage.y;
    for (Sprite* sprite : stage.sprites) {
        const PlanePoint at = sprite->Position();
        Stage::ForMask(Stage::MaskOf(*sprite), at.x, at.y, work, [&](int a, int x, int y) {
            work(x, y) = static_cast<uint8_t>(std::clamp(((255 - a) * work.At(x, y) + a * a) / 255, 0, 255));
        });
    }
    for (size_t i = 0; i < expected.pixels.size(); ++i) {
        expected.pixels[i] =
            static_cast<uint8_t>(255 - ((255 - work.pixels[i]) * (255 - expected.pixels[i])) / 255);
    }
    CPlane8u y = stage.Over(stage.y);
    stage.framework.RenderGlow(&y);
    EXPECT_EQ(stage.y.pixels, expected.pixels);
}

TEST(Framework, TintsByItsDefinition) {
    for (const bool withChroma : {false, true}) {
        Stage stage;
        PlainPlane ey = stage.y, eu = stage.u, ev = stage.v;
        for (Sprite* sprite : stage.sprites) {
            uint8_t color[4] = {200, 0, 0, 180};
            sprite->SetColor(color);
            sprite->RandomizeColor();
            sprite->GetColor(color);
            const PlanePoint at = sprite->Position();
            const auto blend = [&](PlainPlane& plane, int value) {
                return [&plane, value, alpha = int{color[3]}](int a0, int x, int y) {
                    if (a0 == 0) return;
                    const int a = alpha * a0 / 255;
                    plane(x, y) = static_cast<uint8_t>(((255 - a) * plane.At(x, y) + a * value) / 255);
                };
            };
            Stage::ForMask(Stage::MaskOf(*sprite), at.x, at.y, ey, blend(ey, color[0]));
            if (!withChroma) continue;
            const PlainPlane half = Stage::HalfMaskOf(*sprite);
            Stage::ForMask(half, at.x / 2, at.y / 2, eu, blend(eu, color[1]));
            Stage::ForMask(half, at.x / 2, at.y / 2, ev, blend(ev, color[2]));
        }
        CPlane8u y = stage.Over(stage.y), u = stage.Over(stage.u), v = stage.Over(stage.v);
        stage.framework.RenderTinted(&y, &u, &v, withChroma);
        EXPECT_EQ(stage.y.pixels, ey.pixels);
        EXPECT_EQ(stage.u.pixels, eu.pixels);
        EXPECT_EQ(stage.v.pixels, ev.pixels);
    }
}

TEST(Framework, StampsColoursByItsDefinition) {
    Stage stage;
    PlainPlane eu = stage.u, ev = stage.v;
    for (Sprite* sprite : stage.sprites) {
        uint8_t color[4];
        sprite->GetColor(color);
        const PlanePoint at = sprite->Position();
        Stage::ForMask(Stage::HalfMaskOf(*sprite), at.x / 2, at.y / 2, eu, [&](int a, int x, int y) {
            if (a < 20) return;
            eu(x, y) = color[1];
            ev(x, y) = color[2];
        });
    }
    const PlainPlane tu = eu, tv = ev;
    PlainGauss3(tu, eu);
    PlainGauss3(tv, ev);
    CPlane8u u = stage.Over(stage.u), v = stage.Over(stage.v);
    stage.framework.ColorizeChroma(&u, &v);
    EXPECT_EQ(stage.u.pixels, eu.pixels);
    EXPECT_EQ(stage.v.pixels, ev.pixels);
}

TEST(Framework, MasksOfZeroAreInvisibleAndOf255White) {
    CAnimationFramework framework(40, 30);
    auto sprite = NewSprite(10, 10, 40, 30);
    Sprite* const mask = sprite.get();
    framework.AddObject(std::move(sprite));
    CPlane8u y(40, 30), u(20, 15), v(20, 15);
    y.Fill(90);
    u.Fill(50);
    v.Fill(60);
    framework.RenderGlow(&y);
    framework.RenderTinted(&y, &u, &v, true);
    framework.ColorizeChroma(&u, &v);  // smooths, which a flat plane does not show
    EXPECT_EQ(SumPixels(y), 90U * 1200);
    EXPECT_EQ(SumPixels(u), 50U * 300);
    EXPECT_EQ(SumPixels(v), 60U * 300);

    mask->Mask().Fill(255);
    framework.RenderGlow(&y);
    EXPECT_EQ(y.data[0], 255);
    EXPECT_EQ(y.data[11], 90);
    y.Fill(0);
    mask->Mask().Fill(128);
    framework.RenderGlow(&y);
    EXPECT_EQ(y.data[0], 64);  // the glow falls off with the square of the mask

    // The planes are smoothed even with nothing to stamp.
    mask->Mask().Fill(19);
    u.data[20 * 7 + 9] = 255;
    framework.ColorizeChroma(&u, &v);
    EXPECT_EQ(u.data[20 * 7 + 8], (50 * 14 + 255 * 2 + 7) / 16);
}

TEST(Framework, KeepsAndRemovesItsObjects) {
    CAnimationFramework framework(40, 30);
    std::vector<Sprite*> sprites;
    for (size_t i = 0; i < 5; ++i) {
        auto sprite = NewSprite(4, 4, 40, 30);
        sprite->At(static_cast<int32_t>(i), 0).With(1, 0);
        sprites.push_back(sprite.get());
        EXPECT_EQ(framework.AddObject(std::move(sprite)), i + 1);
    }
    framework.RemoveFirst(0);
    framework.RemoveFirst(-3);
    EXPECT_EQ(framework.GetObjectCount(), 5U);
    framework.RemoveFirst(2);
    EXPECT_EQ(framework.GetObjectCount(), 3U);
    framework.MoveAll();
    EXPECT_EQ(sprites[2]->Position().x, 3);
    framework.RemoveFirst(3);
    EXPECT_EQ(framework.GetObjectCount(), 0U);
    framework.AddObject(NewSprite(4, 4, 40, 30));
    framework.RemoveFirst(100);
    EXPECT_EQ(framework.GetObjectCount(), 0U);
    framework.AddObject(NewSprite(4, 4, 40, 30));
    framework.RemoveAll();
    EXPECT_EQ(framework.GetObjectCount(), 0U);
}

}  // namespace
