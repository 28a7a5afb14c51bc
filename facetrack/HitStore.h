// Clusters of detector hits.
#ifndef SPECIALEFFECTS_FACETRACK_HITSTORE_H
#define SPECIALEFFECTS_FACETRACK_HITSTORE_H

#include <cstddef>
#include <cstdint>
#include <vector>

/// A place where the classifier found a face: its centre and the side of its square, in frame pixels.
struct Hit {
    int32_t x, y, size;
};

/// Rows of hits; a row is a cluster. A hit joins the first row that has a member near it, and opens a new row
/// otherwise. Of a row only the sums of its members are kept.
///
/// Members are found through a hash table of squares as wide as the merge radius. The members of a square are
/// ordered by row, so that a search ends at the first match. Of the members that a row has at one place only
/// the largest is kept, since it takes every hit that the others would take. A square thus holds a bounded
/// number of members, and adding a hit takes bounded time, however many hits a cascade lets through.
class CHitStore {
  public:
    struct Row {
        int64_t x = 0, y = 0, size = 0;  ///< sums over the members
        int64_t count = 0;

        /// Mean of the members in integers, truncated.
        Hit Mean() const;
    };

    /// Two hits belong together when their centres are within `mergeRadius` and the new one is at most
    /// `sizeRatio` times as large as the member.
    CHitStore(float mergeRadius, float sizeRatio);

    /// Adds a hit and returns the index of its row.
    size_t Add(const Hit& hit);
    /// Forgets the hits but keeps the memory for the next ones.
    void Clear();

    const std::vector<Row>& Rows() const { return rows_; }
    /// Number of members examined since construction, as a measure of work.
    uint64_t Looks() const { return looks_; }

  private:
    /// Index of a member, or kNone.
    using Link = uint32_t;
    static constexpr Link kNone = UINT32_MAX;

    struct Member {
        Hit hit;
        uint32_t row;
        Link next;  ///< in the list of its square
    };

    int32_t SquareOf(int32_t coordinate) const;
    /// The list of a square. Squares may share one; the members' own places tell them apart.
    size_t ListIndex(int64_t column, int64_t line) const;
    uint32_t FindRow(const Hit& hit, int64_t column, int64_t line);
    void Remember(const Hit& hit, uint32_t row, int64_t column, int64_t line);
    void GrowLists();

    float mergeRadius_, sizeRatio_;
    int32_t squareSide_;
    std::vector<Row> rows_;
    std::vector<Member> members_;
    std::vector<Link> lists_;  ///< first members; their number is a power of two
    uint64_t looks_ = 0;
};

#endif
