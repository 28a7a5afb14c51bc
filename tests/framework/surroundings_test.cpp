#include "framework/Surroundings.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <thread>
#include <vector>

#include "framework/AdditiveRandom.h"
#include "framework/ProcessClock.h"
#include "tests/support/TestSurroundings.h"

namespace {

TEST(Surroundings, AreTheProcesssOwnByDefault) {
    Surroundings& own = CurrentSurroundings();
    EXPECT_EQ(&CurrentSurroundings(), &own);
    own.Srand(5);
    const int32_t first = own.Rand(), second = Rand(), third = std::rand();
    std::srand(5);
    EXPECT_EQ(first, std::rand());
    EXPECT_EQ(second, std::rand());
    EXPECT_EQ(third, std::rand());
    const int64_t before = ProcessMilliseconds();
    const int64_t now = own.Milliseconds();
    EXPECT_LE(before, now);
    EXPECT_LE(now, ProcessMilliseconds());
    EXPECT_EQ(own.DataFile("perlin.dat"), "perlin.dat");
    EXPECT_EQ(own.NewDataFile("perlin.dat"), "perlin.dat");
}

TEST(Surroundings, AScopeReplacesThemOnItsThread) {
    Surroundings& own = CurrentSurroundings();
    TestSurroundings outer, inner;
    outer.now = 42;
    {
        const SurroundingsScope scope(outer);
        EXPECT_EQ(&CurrentSurroundings(), &outer);
        EXPECT_EQ(CurrentSurroundings().Milliseconds(), 42);
        {
            const SurroundingsScope within(inner);
            EXPECT_EQ(&CurrentSurroundings(), &inner);
        }
        EXPECT_EQ(&CurrentSurroundings(), &outer);
        std::thread([&] { EXPECT_EQ(&CurrentSurroundings(), &own); }).join();
        AdditiveRandom expected;
        EXPECT_EQ(Rand(), expected.Next());
        EXPECT_EQ(CurrentSurroundings().Rand(), expected.Next());
    }
    EXPECT_EQ(&CurrentSurroundings(), &own);
    try {
        const SurroundingsScope scope(outer);
        throw 1;
    } catch (int) {
        EXPECT_EQ(&CurrentSurroundings(), &own);
    }
}

TEST(Surroundings, OnesOwnLeaveTheProcesssRandAlone) {
    std::srand(9);
    const int next = std::rand();
    std::srand(9);
    TestSurroundings surroundings;
    const SurroundingsScope scope(surroundings);
    for (int i = 0; i < 100; ++i) Rand();
    CurrentSurroundings().Srand(3);
    EXPECT_EQ(std::rand(), next);
}

TEST(Surroundings, FillNumbersAsRandGivesThem) {
    std::array<int32_t, 40> numbers{};
    const auto expectNextNumbers = [&](auto next) {
        FillRandom(numbers);
        for (const int32_t number : numbers) EXPECT_EQ(number, next());
    };
    std::srand(9);
    std::array<int32_t, 40> fromLibrary{};
    for (int32_t& number : fromLibrary) number = std::rand();
    std::srand(9);
    expectNextNumbers([&, i = size_t{0}]() mutable { return fromLibrary[i++]; });

    TestSurroundings surroundings;
    const SurroundingsScope scope(surroundings);
    AdditiveRandom expected;
    expectNextNumbers([&] { return expected.Next(); });
    FillRandom({});
    EXPECT_EQ(Rand(), expected.Next());
}

struct Counted {
    explicit Counted(int* made, int value_ = 0) : value(value_) { ++*made; }
    int value;
};
struct OtherCounted : Counted {
    using Counted::Counted;
};

TEST(Surroundings, SharedObjectsAreMadeOnceForEachTypeAndSurroundings) {
    int made = 0;
    TestSurroundings a, b;
    Counted& inA = a.Shared<Counted>(&made, 7);
    EXPECT_EQ(inA.value, 7);
    EXPECT_EQ(&a.Shared<Counted>(&made, 8), &inA);
    EXPECT_EQ(inA.value, 7);
    EXPECT_NE(&b.Shared<Counted>(&made), &inA);
    EXPECT_NE(static_cast<Counted*>(&a.Shared<OtherCounted>(&made)), &inA);
    EXPECT_EQ(made, 3);
}

TEST(Surroundings, AllThreadsShareOneObject) {
    TestSurroundings surroundings;
    int made = 0;
    std::vector<Counted*> seen(8);
    std::vector<std::thread> threads;
    for (Counted*& object : seen) {
        threads.emplace_back([&] { object = &surroundings.Shared<Counted>(&made); });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(made, 1);
    for (const Counted* object : seen) EXPECT_EQ(object, seen[0]);
}

TEST(ProcessClock, StartsAtTwoSecondsAndRunsForward) {
    const int64_t first = ProcessMilliseconds();
    EXPECT_GE(first, kClockAtLoading);
    EXPECT_LT(first, 602000);
    EXPECT_GE(ProcessMilliseconds(), first);
}

// ---- the generator -----------------------------------------------------------------------------------

#if defined(__GLIBC__)
TEST(AdditiveRandom, GivesTheNumbersOfTheLibrary) {
    std::vector<uint32_t> seeds = {0, 1, 2, 0x7FFFFFFF, 0x80000000, 0x80000001, 0xFFFFFFFF};
    for (uint32_t i = 0; i < 3000; ++i) seeds.push_back(i * i * 2654435761U + i);
    for (const uint32_t seed : seeds) {
        AdditiveRandom random(seed);
        std::srand(seed);
        for (int i = 0; i < 200; ++i) ASSERT_EQ(random.Next(), std::rand()) << "seed " << seed << ", " << i;
    }
    AdditiveRandom random(20);
    std::srand(20);
    for (int i = 0; i < 1000000; ++i) ASSERT_EQ(random.Next(), std::rand()) << i;
}
#endif

TEST(AdditiveRandom, GivesTheSameNumbersEverywhere) {
    AdditiveRandom random;
    for (const int32_t expected : {1804289383, 846930886, 1681692777, 1714636915, 1957747793}) {
        EXPECT_EQ(random.Next(), expected);
    }
    random.Seed(42);
    for (const int32_t expected : {71876166, 708592740, 1483128881, 907283241, 442951012}) {
        EXPECT_EQ(random.Next(), expected);
    }
}

}  // namespace
