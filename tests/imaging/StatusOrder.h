// Statuses of a primitive called with invalid arguments.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_STATUSORDER_H
#define SPECIALEFFECTS_TESTS_IMAGING_STATUSORDER_H

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "imaging/Prim.h"

/// One fault in the arguments of a call, and the status that the call returns for it.
template <typename Arguments>
struct Fault {
    std::string what;
    PrimStatus status;
    std::function<void(Arguments&)> spoil;
};

/// Expects that a call succeeds with good arguments, and returns the status of a fault both for that fault
/// alone and together with all that follow in the list, which is in the order of the checks. `touched` says
/// whether a call has changed anything.
template <typename Arguments>
void ExpectStatusesInOrder(const Arguments& good, const std::function<PrimStatus(const Arguments&)>& call,
                           const std::vector<Fault<Arguments>>& faults,
                           const std::function<bool()>& touched) {
    for (size_t i = 0; i < faults.size(); ++i) {
        Arguments alone = good;
        faults[i].spoil(alone);
        EXPECT_EQ(call(alone), faults[i].status) << faults[i].what;
        EXPECT_FALSE(touched()) << faults[i].what;

        Arguments all = good;
        for (size_t k = faults.size(); k-- > i;) {
            faults[k].spoil(all);
        }
        EXPECT_EQ(call(all), faults[i].status) << faults[i].what << " and all that is checked later";
        EXPECT_FALSE(touched()) << faults[i].what << " and all that is checked later";
    }
    EXPECT_EQ(call(good), kPrimOk);
}

#endif
