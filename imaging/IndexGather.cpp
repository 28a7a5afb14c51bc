#include "imaging/IndexGather.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <utility>

#include "imaging/PerLevel.h"
#include "imaging/ReleaseMemory.h"
#include "imaging/Vector128.h"

// A map is compiled into blocks, each a few 32-bit words:
//
//   shuffled   target, windows (two for each of 1 to 4 pairs), sixteen picks of a byte each
//   scattered  target, sixteen sources
//   single     target, source
//   copy       target, source of the first of sixteen pixels that stand together there too
//   near       target, lowest source, sixteen distances from it of two bytes each
//   stretch    target, number of pixels, a source for each
//
// Targets and sources are byte offsets. A window is eight bytes of the source; a pair of them fills a
// register. A pick names the byte that a pixel takes: its low four bits the place in the pair, the next two
// the pair.
//
// Sixteen pixels are either a row or a tile of 4 by 4. Rows suit maps that move rows as a whole; where the
// picture is turned, a tile's sources lie in far fewer rows.

namespace {

constexpr int32_t kBlockPixels = 16;
constexpr int32_t kWindowBytes = 8;
constexpr size_t kMaxPairs = 4;
constexpr size_t kMaxWindows = 2 * kMaxPairs;

// Cells of 16 by 4 pixels are four rows or four tiles. Blocks of one kind stand together within areas that
// are small enough for the first-level cache.
constexpr int32_t kCellWidth = 16, kCellHeight = 4;
constexpr int32_t kAreaWidth = 256, kAreaHeight = 64;

enum class Shape : uint32_t { kRow, kTile };

/// Kinds of blocks: the shuffled ones by pairs and shape, then the others.
constexpr uint32_t ShuffledKind(size_t pairs, Shape shape) {
    return static_cast<uint32_t>(2 * (pairs - 1)) + static_cast<uint32_t>(shape);
}
constexpr uint32_t kScatteredRow = 2 * kMaxPairs;
constexpr uint32_t kScatteredTile = kScatteredRow + 1;
constexpr uint32_t kSingle = kScatteredTile + 1;
constexpr uint32_t kCopy = kSingle + 1;
constexpr uint32_t kNear = kCopy + 1;
constexpr uint32_t kStretch1 = kNear + 1;
constexpr uint32_t kStretch3 = kStretch1 + 1;
constexpr uint32_t kKinds = kStretch3 + 1;

/// Entries of four blocks, side by side.
using FourEntries = int32_t __attribute__((vector_size(16)));
using SortedSources = std::array<FourEntries, kBlockPixels>;

/// Sources from this one on leave no room for the number of a pixel below them.
constexpr size_t kMostSortable = size_t{1} << 27;

/// Compare-exchanges of Batcher's odd-even merge sort of sixteen entries.
struct Exchange {
    size_t low, high;
};

constexpr std::array<Exchange, 63> kSortingNetwork = [] {
    std::array<Exchange, 63> network{};
    size_t count = 0;
    for (size_t p = 1; p < kBlockPixels; p *= 2) {
        for (size_t k = p; k >= 1; k /= 2) {
            for (size_t i = k % p; i + k < kBlockPixels; ++i) {
                const bool upper = (i - k % p) / k % 2 != 0;
                if (!upper && i / (2 * p) == (i + k) / (2 * p)) network[count++] = {i, i + k};
            }
        }
    }
    return network;
}();

SE_INLINE void Sort(FourEntries& low, FourEntries& high) {
    const FourEntries inOrder = low < high;
    const FourEntries larger = (high & inOrder) | (low & ~inOrder);
    low = (low & inOrder) | (high & ~inOrder);
    high = larger;
}

/// Sorts the entries of each block.
template <size_t... exchange>
void SortBlocks(SortedSources& sources, std::index_sequence<exchange...>) {
    (Sort(sources[kSortingNetwork[exchange].low], sources[kSortingNetwork[exchange].high]), ...);
}

}  // namespace

/// Turns indices into blocks.
class GatherCompiler {
  public:
    GatherCompiler(GatherMap& map, std::span<const uint32_t> index, int32_t width, size_t srcPixels)
        : map_(map), index_(index), width_(width), srcPixels_(srcPixels) {}

    /// Shuffles, for a destination that holds a cell and a source that holds a window.
    void CompileBlocks() {
        const auto height = static_cast<int32_t>(index_.size() / static_cast<size_t>(width_));
        for (int32_t top = 0; top < height; top += kAreaHeight) {
            for (int32_t left = 0; left < width_; left += kAreaWidth) {
                const int32_t bottom = std::min(top + kAreaHeight, height);
                const int32_t right = std::min(left + kAreaWidth, width_);
                // Cells at the far edges are moved back to fit; pixels that two cells share are fetched
                // twice.
                for (int32_t y = top; y < bottom; y += kCellHeight) {
                    for (int32_t x = left; x < right; x += kCellWidth) {
                        CompileCell(std::min(x, width_ - kCellWidth), std::min(y, height - kCellHeight));
                    }
                }
                FlushArea();
            }
        }
    }

    /// Plain loads, for all else.
    void CompileStretches(int32_t pixelBytes) {
        const auto width = static_cast<size_t>(width_);
        const size_t height = (index_.size() + width - 1) / width;
        for (size_t top = 0; top < height; top += kAreaHeight) {
            for (size_t left = 0; left < width; left += kAreaWidth) {
                for (size_t y = top; y < std::min(top + kAreaHeight, height); ++y) {
                    const size_t end = y * width + std::min(left + kAreaWidth, width);
                    CompileSegment(y * width + left, std::min(end, index_.size()), pixelBytes);
                }
                FlushArea();
            }
        }
    }

  private:
    void CompileSegment(size_t begin, size_t end, int32_t pixelBytes) {
        for (size_t i = begin; i < end;) {
            size_t kept = i;
            while (kept < end && index_[kept] < srcPixels_) ++kept;
            if (pixelBytes == 1) {
                while (kept - i >= kBlockPixels && CompileNear(i)) i += kBlockPixels;
            }
            if (i < kept) CompileStretch(i, kept, pixelBytes);
            i = kept + 1;
        }
    }

    void CompileStretch(size_t begin, size_t end, int32_t pixelBytes) {
        const auto bytes = static_cast<uint32_t>(pixelBytes);
        std::vector<uint32_t>& words = Append(pixelBytes == 3 ? kStretch3 : kStretch1);
        words.push_back(static_cast<uint32_t>(begin) * bytes);
        words.push_back(static_cast<uint32_t>(end - begin));
        for (size_t i = begin; i < end; ++i) words.push_back(index_[i] * bytes);
    }

    /// The sixteen pixels from one on; false when their sources are too far apart.
    bool CompileNear(size_t begin) {
        const std::span<const uint32_t> sources = index_.subspan(begin, kBlockPixels);
        const auto [lowest, highest] = std::ranges::minmax(sources);
        if (highest - lowest > 0xFFFF) return false;
        const auto apart = [](uint32_t a, uint32_t b) { return b != a + 1; };
        if (std::ranges::adjacent_find(sources, apart) == sources.end()) {
            std::vector<uint32_t>& words = Append(kCopy);
            words.push_back(static_cast<uint32_t>(begin));
            words.push_back(lowest);
            return true;
        }
        std::vector<uint32_t>& words = Append(kNear);
        words.push_back(static_cast<uint32_t>(begin));
        words.push_back(lowest);
        for (size_t i = 0; i < sources.size(); i += 2) {
            const std::array<uint16_t, 2> distances{static_cast<uint16_t>(sources[i] - lowest),
                                                    static_cast<uint16_t>(sources[i + 1] - lowest)};
            words.push_back(std::bit_cast<uint32_t>(distances));
        }
        return true;
    }

    struct Pending {
        uint32_t count = 0;
        std::vector<uint32_t> words;
    };

    /// Sixteen pixels and where they come from.
    struct Block {
        Shape shape;
        uint32_t target;
        std::array<uint32_t, kBlockPixels> sources;
    };

    /// The windows that hold the sources of a block, and the picks from them. No pair if they are too far
    /// apart.
    struct Cover {
        size_t pairs;
        std::array<uint32_t, kMaxWindows> windows;
        std::array<uint8_t, kBlockPixels> picks;
    };

    void FillBlock(Shape shape, int32_t x, int32_t y, Block& block) const {
        block.shape = shape;
        block.target = static_cast<uint32_t>(Place(x, y));
        if (shape == Shape::kRow) {
            std::memcpy(block.sources.data(), &index_[Place(x, y)], sizeof block.sources);
        } else {
            for (int32_t row = 0; row < 4; ++row) {
                std::memcpy(&block.sources[static_cast<size_t>(4 * row)], &index_[Place(x, y + row)],
                            4 * sizeof(uint32_t));
            }
        }
    }

    size_t Place(int32_t x, int32_t y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(width_) + static_cast<size_t>(x);
    }

    bool Kept(uint32_t source) const { return source >= srcPixels_; }

    /// Finds the cover of the block in lane `lane`. Its entries hold the number of a pixel below its source.
    void FindCover(const SortedSources& sorted, size_t lane, Cover& cover) const {
        const auto lastWindow = static_cast<uint32_t>(srcPixels_ - kWindowBytes);
        cover.pairs = 0;
        size_t windows = 0;
        uint32_t window = 0;
        for (const FourEntries& entries : sorted) {
            const auto entry = static_cast<uint32_t>(entries[lane]), source = entry >> 4;
            if (windows == 0 || source - window >= kWindowBytes) {
                if (windows == kMaxWindows) return;
                window = std::min(source, lastWindow);
                cover.windows[windows++] = window;
            }
            // Windows that follow each other are the halves of a pair, so the pick is the first place of the
            // window plus the place in it.
            cover.picks[entry & 15] = static_cast<uint8_t>(kWindowBytes * (windows - 1) + source - window);
        }
        if (windows % 2 != 0) cover.windows[windows] = 0;
        cover.pairs = (windows + 1) / 2;
    }

    /// Four blocks that make up a cell, and how they are fetched.
    struct Cell {
        std::array<Block, 4> blocks;
        std::array<Cover, 4> covers;
        int cost;  // roughly in instructions
    };

    void MakeCell(Shape shape, int32_t x, int32_t y, Cell& cell) const {
        const int storeCost = shape == Shape::kRow ? 1 : 7;
        SortedSources sorted;
        std::array<bool, 4> coverable;
        for (size_t i = 0; i < 4; ++i) {
            const auto step = static_cast<int32_t>(i);
            Block& block = cell.blocks[i];
            if (shape == Shape::kRow) {
                FillBlock(shape, x, y + step, block);
            } else {
                FillBlock(shape, x + 4 * step, y, block);
            }
            uint32_t largest = 0;
            for (uint32_t k = 0; k < kBlockPixels; ++k) {
                const uint32_t source = block.sources[k];
                largest = std::max(largest, source);
                sorted[k][i] = static_cast<int32_t>(source << 4 | k);
            }
            coverable[i] = largest < std::min(srcPixels_, kMostSortable);
        }
        SortBlocks(sorted, std::make_index_sequence<kSortingNetwork.size()>());
        cell.cost = 0;
        for (size_t i = 0; i < 4; ++i) {
            Cover& cover = cell.covers[i];
            cover.pairs = 0;
            if (coverable[i]) FindCover(sorted, i, cover);
            cell.cost += storeCost + (cover.pairs > 0 ? 8 * static_cast<int>(cover.pairs) : 48);
        }
    }

    void CompileCell(int32_t x, int32_t y) {
        constexpr int kBestTileCost = 4 * (7 + 8 * 2);
        Cell rows, tiles;
        MakeCell(Shape::kRow, x, y, rows);
        if (rows.cost > kBestTileCost) {
            MakeCell(Shape::kTile, x, y, tiles);
            if (tiles.cost < rows.cost) return EmitCell(tiles);
        }
        EmitCell(rows);
    }

    void EmitCell(const Cell& cell) {
        for (size_t i = 0; i < 4; ++i) Emit(cell.blocks[i], cell.covers[i]);
    }

    void Emit(const Block& block, const Cover& cover) {
        if (cover.pairs > 0) {
            std::vector<uint32_t>& words = Append(ShuffledKind(cover.pairs, block.shape));
            words.push_back(block.target);
            words.insert(words.end(), cover.windows.begin(),
                         cover.windows.begin() + 2 * static_cast<ptrdiff_t>(cover.pairs));
            std::array<uint32_t, 4> picks;
            std::memcpy(picks.data(), cover.picks.data(), sizeof picks);
            words.insert(words.end(), picks.begin(), picks.end());
        } else if (std::none_of(block.sources.begin(), block.sources.end(),
                                [this](uint32_t source) { return Kept(source); })) {
            std::vector<uint32_t>& words =
                Append(block.shape == Shape::kRow ? kScatteredRow : kScatteredTile);
            words.push_back(block.target);
            words.insert(words.end(), block.sources.begin(), block.sources.end());
        } else {
            for (uint32_t i = 0; i < kBlockPixels; ++i) {
                if (Kept(block.sources[i])) continue;
                const uint32_t step =
                    block.shape == Shape::kRow ? i : i % 4 + i / 4 * static_cast<uint32_t>(width_);
                std::vector<uint32_t>& words = Append(kSingle);
                words.push_back(block.target + step);
                words.push_back(block.sources[i]);
            }
        }
    }

    std::vector<uint32_t>& Append(uint32_t kind) {
        ++pending_[kind].count;
        return pending_[kind].words;
    }

    /// Hands what has been collected to the map, one run for each kind.
    void FlushArea() {
        for (uint32_t kind = 0; kind < kKinds; ++kind) {
            Pending& pending = pending_[kind];
            if (pending.count == 0) continue;
            map_.runs_.push_back({kind, pending.count});
            map_.words_.insert(map_.words_.end(), pending.words.begin(), pending.words.end());
            pending.count = 0;
            pending.words.clear();
        }
    }

    GatherMap& map_;
    std::span<const uint32_t> index_;
    int32_t width_;
    size_t srcPixels_;
    std::array<Pending, kKinds> pending_;
};

namespace {

// ---- running -----------------------------------------------------------------------------------------
//
// Each of these runs `count` blocks from `words` on and returns where the next run begins.

template <int pixelBytes>
const uint32_t* RunStretches(const uint32_t* words, uint32_t count, const uint8_t* src, uint8_t* dst) {
    for (; count > 0; --count) {
        uint8_t* out = dst + words[0];
        const uint32_t* const end = words + 2 + words[1];
        for (words += 2; words < end; ++words, out += pixelBytes) std::memcpy(out, src + *words, pixelBytes);
    }
    return words;
}

const uint32_t* RunCopies(const uint32_t* words, uint32_t count, const uint8_t* src, uint8_t* dst) {
    for (; count > 0; --count, words += 2) std::memcpy(dst + words[0], src + words[1], kBlockPixels);
    return words;
}

const uint32_t* RunNear(const uint32_t* words, uint32_t count, const uint8_t* src, uint8_t* dst) {
    static_assert(std::endian::native == std::endian::little);
    for (; count > 0; --count, words += 2 + kBlockPixels / 2) {
        const uint8_t* const lowest = src + words[1];
        std::array<uint64_t, 2> pixels{};  // one store for eight of them
#pragma GCC unroll 16
        for (size_t i = 0; i < kBlockPixels; ++i) {
            uint16_t distance = 0;
            std::memcpy(&distance, reinterpret_cast<const uint8_t*>(words + 2) + 2 * i, 2);
            pixels[i / 8] |= uint64_t{lowest[distance]} << 8 * (i % 8);
        }
        std::memcpy(dst + words[0], pixels.data(), kBlockPixels);
    }
    return words;
}

const uint32_t* RunSingles(const uint32_t* words, uint32_t count, const uint8_t* src, uint8_t* dst) {
    for (; count > 0; --count, words += 2) dst[words[0]] = src[words[1]];
    return words;
}

template <Shape shape>
const uint32_t* RunScattered(const uint32_t* words, uint32_t count, const uint8_t* src, uint8_t* dst,
                             ptrdiff_t width) {
    for (; count > 0; --count, words += 1 + kBlockPixels) {
        uint8_t* const out = dst + words[0];
        for (int32_t i = 0; i < kBlockPixels; ++i) {
            out[shape == Shape::kRow ? i : i % 4 + i / 4 * width] = src[words[1 + i]];
        }
    }
    return words;
}

#if SE_PICK

using vector128::Bytes;
using vector128::Ints;

/// Two windows.
SE_PICK_TARGET SE_INLINE Bytes LoadPair(const uint8_t* src, const uint32_t* windows) {
    return vector128::LoadHalves(src + windows[0], src + windows[1]);
}

template <Shape shape>
SE_PICK_TARGET SE_INLINE void StoreBlock(Bytes pixels, uint8_t* out, ptrdiff_t width) {
    if constexpr (shape == Shape::kRow) {
        vector128::Store(out, pixels);
    } else {
        const auto rows = reinterpret_cast<Ints>(pixels);
#pragma GCC unroll 4
        for (int y = 0; y < 4; ++y) {
            const int32_t row = rows[y];
            std::memcpy(out + y * width, &row, 4);
        }
    }
}

template <size_t pairs, Shape shape>
SE_PICK_TARGET const uint32_t* RunShuffled(const uint32_t* words, uint32_t count, const uint8_t* src,
                                           uint8_t* dst, ptrdiff_t width) {
    constexpr size_t kWords = 1 + 2 * pairs + 4;
    for (; count > 0; --count, words += kWords) {
        const uint32_t* const windows = words + 1;
        Bytes picks;
        std::memcpy(&picks, windows + 2 * pairs, sizeof picks);
        Bytes pixels;
        if constexpr (pairs == 1) {
            pixels = vector128::Pick(LoadPair(src, windows), picks);
        } else {
            pixels = vector128::PickOrZero(LoadPair(src, windows), picks);
            for (size_t p = 1; p < pairs; ++p) {
                // Only the picks of this pair stay below 16.
                const Bytes own = picks ^ static_cast<uint8_t>(p << 4);
                pixels |= vector128::PickOrZero(LoadPair(src, windows + 2 * p), own);
            }
        }
        StoreBlock<shape>(pixels, dst + words[0], width);
    }
    return words;
}

#endif

}  // namespace

void GatherMap::Build(std::span<const uint32_t> index, int32_t width, size_t srcPixels, int32_t pixelBytes) {
    Release();
    if (width < 1 || index.size() < static_cast<size_t>(width)) return;
    width_ = width;
    words_.reserve(index.size() / 4 * 3);  // what most maps need
    GatherCompiler compiler(*this, index, width, srcPixels);
    const bool wholeRows = index.size() % static_cast<size_t>(width) == 0;
    if (vector128::HasPick() && pixelBytes == 1 && wholeRows && width >= kCellWidth &&
        index.size() / static_cast<size_t>(width) >= kCellHeight && srcPixels >= kWindowBytes) {
        compiler.CompileBlocks();
    } else {
        compiler.CompileStretches(pixelBytes);
    }
    if (words_.capacity() / 2 > words_.size()) words_.shrink_to_fit();
    runs_.shrink_to_fit();
}

void GatherMap::Release() {
    ReleaseMemory(runs_, words_);
    width_ = 0;
}

void GatherMap::Apply(const uint8_t* src, uint8_t* dst) const {
    const uint32_t* words = words_.data();
    const ptrdiff_t width = width_;
    for (const auto& [kind, count] : runs_) {
        switch (kind) {
#if SE_PICK
            case ShuffledKind(1, Shape::kRow):
                words = RunShuffled<1, Shape::kRow>(words, count, src, dst, width);
                break;
            case ShuffledKind(2, Shape::kRow):
                words = RunShuffled<2, Shape::kRow>(words, count, src, dst, width);
                break;
            case ShuffledKind(3, Shape::kRow):
                words = RunShuffled<3, Shape::kRow>(words, count, src, dst, width);
                break;
            case ShuffledKind(4, Shape::kRow):
                words = RunShuffled<4, Shape::kRow>(words, count, src, dst, width);
                break;
            case ShuffledKind(1, Shape::kTile):
                words = RunShuffled<1, Shape::kTile>(words, count, src, dst, width);
                break;
            case ShuffledKind(2, Shape::kTile):
                words = RunShuffled<2, Shape::kTile>(words, count, src, dst, width);
                break;
            case ShuffledKind(3, Shape::kTile):
                words = RunShuffled<3, Shape::kTile>(words, count, src, dst, width);
                break;
            case ShuffledKind(4, Shape::kTile):
                words = RunShuffled<4, Shape::kTile>(words, count, src, dst, width);
                break;
#endif
            case kScatteredRow:
                words = RunScattered<Shape::kRow>(words, count, src, dst, width);
                break;
            case kScatteredTile:
                words = RunScattered<Shape::kTile>(words, count, src, dst, width);
                break;
            case kSingle:
                words = RunSingles(words, count, src, dst);
                break;
            case kCopy:
                words = RunCopies(words, count, src, dst);
                break;
            case kNear:
                words = RunNear(words, count, src, dst);
                break;
            case kStretch1:
                words = RunStretches<1>(words, count, src, dst);
                break;
            default:
                words = RunStretches<3>(words, count, src, dst);
                break;
        }
    }
}
