// The border between C++ and C: no exception passes it.
#ifndef SPECIALEFFECTS_SFX_GUARD_H
#define SPECIALEFFECTS_SFX_GUARD_H

#include <exception>
#include <new>

#include "sfx/Message.h"

namespace sfx {

/// An error on its way to the caller; its message is already stored.
struct Failure {
    sfx_status status;
};

/// Runs a body that returns a sfx_status or throws.
template <class Body>
sfx_status Guarded(Body body) noexcept {
    try {
        return body();
    } catch (const Failure& failure) {
        return failure.status;
    } catch (const std::bad_alloc&) {
        return Tell(SFX_ERROR_MEMORY, "out of memory");
    } catch (const std::exception& error) {
        return Tell(SFX_ERROR_FAILED, "unexpected: %s", error.what());
    } catch (...) {
        return Tell(SFX_ERROR_FAILED, "unexpected failure");
    }
}

}  // namespace sfx

#endif
