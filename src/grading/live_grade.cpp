#include "grading/live_grade.h"

#include "model/clip_item.h"

#include <cmath>

namespace tavrelune {

namespace {

// Not-a-number equals itself here, so repeating it does not notify forever.
bool sameValue(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool sameValues(const GradeValues& a, const GradeValues& b)
{
    for (const GradeControl& control : gradeControls)
        if (!sameValue(a.*control.member, b.*control.member))
            return false;
    return true;
}

}  // namespace

LiveGrade::LiveGrade(QObject* parent) : QObject(parent) {}

void LiveGrade::setValue(double GradeValues::*member, double value)
{
    GradeValues next = values_;
    next.*member = value;
    setValues(next);
}

void LiveGrade::setValues(const GradeValues& values)
{
    if (sameValues(values_, values))
        return;
    values_ = values;
    Q_EMIT valuesChanged();
}

void LiveGrade::copyFrom(const ClipItem& clip) { setValues(clip.grade); }

}  // namespace tavrelune
