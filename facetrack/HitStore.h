// Clusters of detector hits.
#ifndef SPECIALEFFECTS_FACETRACK_HITSTORE_H
#define SPECIALEFFECTS_FACETRACK_HITSTORE_H

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

/// A place where the classifier found a face: its centre and the side of its square, in frame pixels.
struct Hit {
    int32_t x, y, size;
};

/// Rows of hits; a row is a cluster. A hit joins the first row that has a member near it, and opens a new row
/// otherwise. Grows as it must.
///
/// Members are found through a grid of squares as wide as the merge radius, so that adding a hit costs as
/// much as there are members around it, however many hits a cascade lets through.
class CHitStore {
  public:
    /// Two hits belong together when their centres are within `mergeRadius` and the new one is at most
    /// `sizeRatio` times as large as the member.
    CHitStore(float mergeRadius, float sizeRatio);

    void Add(const Hit& hit);
    void Clear();

    const std::vector<std::vector<Hit>>& Rows() const { return rows_; }

  private:
    struct Member {
        Hit hit;
        size_t row;
    };

    int64_t SquareOf(int32_t coordinate) const;

    float mergeRadius_, sizeRatio_;
    int32_t squareSide_;
    std::vector<std::vector<Hit>> rows_;
    std::unordered_map<int64_t, std::vector<Member>> squares_;
};

/// Mean of the hits of a cluster, in integers, truncated. `hits` is not empty.
Hit MeanHit(const std::vector<Hit>& hits);

#endif
