#pragma once

/// Makes one allocation of this thread fail that may: an `operator new` that answers null. They are counted
/// from 0.
class FailAllocation {
public:
    explicit FailAllocation(int number);
    ~FailAllocation();
    FailAllocation(const FailAllocation&) = delete;
    FailAllocation& operator=(const FailAllocation&) = delete;
};
