#include "grading/grade_state.h"

namespace tavrelune {

GradeSnapshot GradeState::snapshot() const
{
    std::lock_guard guard(lock_);
    return current_;
}

void GradeState::assign(GradeSnapshot next)
{
    {
        std::lock_guard guard(lock_);
        std::swap(current_, next);
    }
    // `next` now holds the previous grade; if it held the last reference to
    // a LUT, the entries are freed here, outside the lock.
}

}  // namespace tavrelune
