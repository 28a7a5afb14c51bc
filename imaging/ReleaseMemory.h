// Gives the memory of workspaces back.
#ifndef SPECIALEFFECTS_IMAGING_RELEASEMEMORY_H
#define SPECIALEFFECTS_IMAGING_RELEASEMEMORY_H

#include <type_traits>
#include <utility>

/// Replaces each object by an empty one and frees what it held: planes, vectors, strings, maps, arrays of
/// them and structures of them. Assigning `{}` to a vector, like `clear`, keeps its capacity.
template <class... Objects>
void ReleaseMemory(Objects&... objects) {
    const auto release = [](auto& object) {
        std::remove_reference_t<decltype(object)> empty{};
        std::swap(object, empty);
    };
    (release(objects), ...);
}

#endif
