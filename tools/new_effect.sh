#!/bin/sh
# Adds a small working effect with its test and catalogue row:
#
#   tools/new_effect.sh KIND NAME        KIND is tone, distortion, drawing, time or animated
#   tools/new_effect.sh drawing Posterize
#   tools/new_effect.sh tone NightSky    shown as "Night Sky", typed as night-sky
#
# It writes the class, its test and its row in the list of effects, with a new GUID, and prints what to run next.
set -eu
export LC_ALL=C
cd "$(dirname "$0")/.."

fail() {
    echo "new_effect.sh: $1" >&2
    exit 2
}

[ $# -eq 2 ] || fail "usage: tools/new_effect.sh KIND NAME"
kind=$1
name=$2
case $kind in
    tone | distortion | drawing | time | animated) ;;
    *) fail "\"$kind\" is not a kind: tone, distortion, drawing, time or animated" ;;
esac
echo "$name" | grep -Eq '^[A-Z][A-Za-z0-9]*$' || fail "\"$name\" is not a name in upper camel case, such as NightSky"

display=$(echo "$name" | sed 's/\([a-z0-9]\)\([A-Z]\)/\1 \2/g')
short=$(echo "$display" | tr '[:upper:] ' '[:lower:]-')
snake=$(echo "$short" | tr - _)
class=C${name}SpecialEffectFilter
header=effects/$kind/$name.h
source=effects/$kind/$name.cpp
test=tests/effects/$kind/${snake}_test.cpp
list=framework/Catalogue.cpp
guard=SPECIALEFFECTS_EFFECTS_$(echo "${kind}_$name" | tr '[:lower:]' '[:upper:]')_H
guid="{$(tr '[:lower:]' '[:upper:]' < /proc/sys/kernel/random/uuid)}"
capital=$(echo "$kind" | cut -c1 | tr '[:lower:]' '[:upper:]')$(echo "$kind" | cut -c2-)

for file in "$header" "$source" "$test"; do
    [ ! -e "$file" ] || fail "$file exists"
done
! grep -rqs "DisplayName = \"$display\"" effects facetrack || fail "there is an effect \"$display\""
! grep -q "\"$short\"\|^class $class;" "$list" || fail "\"$short\" is in $list"

cat > "$header" << END
// $display: the luma in few levels.
#ifndef $guard
#define $guard

#include "framework/EffectBase.h"

class $class final : public PlanarEffect<$class> {
  public:
    static constexpr const char* DisplayName = "$display";
    static std::span<const Property<$class>> Properties();

    void Prepare();
    void ProcessPlanar(const PlanarFrame& frame);

  private:
    int32_t Levels = 4;
};

#endif
END

cat > "$source" << END
#include "effects/$kind/$name.h"

#include "imaging/PerLevel.h"

using Effect = $class;

namespace {

SE_INLINE void Reduce(uint8_t* SE_RESTRICT pixels, size_t count, int32_t levels) {
    for (size_t i = 0; i < count; ++i) {
        const int32_t level = pixels[i] * levels >> 8;
        pixels[i] = static_cast<uint8_t>(level * 255 / (levels - 1));
    }
}

}  // namespace

std::span<const Property<Effect>> Effect::Properties() {
    static constexpr Property<Effect> rows[] = {
        IntegerProperty<&Effect::Levels>("Levels", "4", "2,16").Says("How many levels of brightness there are."),
    };
    return rows;
}

/// Takes the workspace for Width() by Height(); this effect needs none.
void Effect::Prepare() {}

void Effect::ProcessPlanar(const PlanarFrame& frame) {
    const size_t count = static_cast<size_t>(frame.y.width) * static_cast<size_t>(frame.y.height);
    AtLevel<Reduce>(frame.y.data, count, Levels);
}

template struct EffectClass<Effect>;
END

cat > "$test" << END
#include <gtest/gtest.h>

#include "tests/support/SideBySide.h"

namespace {

constexpr const char* kGuid = "$guid";

/// The effect as it is defined, pixel by pixel.
struct Model {
    int levels;
    void operator()(TestFrame& frame) const {
        for (uint8_t& pixel : frame.plane(0)) {
            pixel = static_cast<uint8_t>(pixel * levels / 256 * 255 / (levels - 1));
        }
    }
};

TEST($name, KeepsTheContract) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Name(), "$display");
    ExpectContract(effect);
}

TEST($name, EqualsItsModel) {
    EffectDriver effect(kGuid);
    EXPECT_EQ(effect.Get("Levels"), "4");
    for (const int levels : {4, 2, 16}) {
        ASSERT_EQ(effect.Set("Levels", std::to_string(levels)), kSuccess);
        ExpectEqualsModel(effect, [levels](int, int) { return Model{levels}; });
    }
}

}  // namespace
END

# The row goes to the end of the list, the declaration to its place in the alphabet.
awk -v declaration="class $class;" -v kind="$capital" -v guid="$guid" -v short="$short" -v class="$class" '
    /^class C/ && !declared && $0 > declaration { print declaration; declared = 1 }
    !/^class C/ && seen && !declared { print declaration; declared = 1 }
    /^class C/ { seen = 1 }
    /kRows\[\] = / { rows = 1 }
    rows && /^};/ {
        printf "    Row<%s>(\n        \"%s\", \"%s\", kOnly, EffectKind::%s, {},\n", class, guid, short, kind
        printf "        \"The luma in few levels.\",\n        0),\n"
        rows = 0
    }
    { print }' "$list" > "$list.new"
mv "$list.new" "$list"
if command -v clang-format > /dev/null; then clang-format -i "$header" "$source" "$test"; fi

cat << END
$display has the GUID $guid. Written:
  $header
  $source
  $test
  $list (its row)
Next: build, record its golden frames, run its tests.
  cmake --preset release -DSE_BUILD_TESTS=ON
  cmake --build --preset release --target ${kind}_tests framework_tests golden_tests update_goldens
  build/release/tests/update_goldens tests/golden/checksums.txt $short
  ctest --preset release -j2 -R '$name|Catalogue|Golden'
END
