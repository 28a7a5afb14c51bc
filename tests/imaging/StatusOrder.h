// Statuses of a primitive that is called with bad arguments.
#ifndef SPECIALEFFECTS_TESTS_IMAGING_STATUSORDER_H
#define SPECIALEFFECTS_TESTS_IMAGING_STATUSORDER_H

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "imaging/Prim.h"

/// One way to spoil the arguments of a call, and the status that it earns.
template <typename Arguments>
struct Fault {
    std::string what;
    PrimStatus status;
    std::function<void(Arguments&)> spoil;
};

/// Expects of a call that works with good arguments: each fault alone earns its status, and so does each
/// together with all faults behind it in the list. The list is in the order of the checks. `touched` tells
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
