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

}  // namespace

LiveGrade::LiveGrade(QObject* parent) : QObject(parent) {}

void LiveGrade::update(double& field, double value, void (LiveGrade::*changed)(double))
{
    if (sameValue(field, value))
        return;
    field = value;
    Q_EMIT(this->*changed)(value);
}

void LiveGrade::setExposure(double value) { update(values_.exposure, value, &LiveGrade::exposureChanged); }
void LiveGrade::setContrast(double value) { update(values_.contrast, value, &LiveGrade::contrastChanged); }
void LiveGrade::setSaturation(double value) { update(values_.saturation, value, &LiveGrade::saturationChanged); }
void LiveGrade::setTemperature(double value) { update(values_.temperature, value, &LiveGrade::temperatureChanged); }

void LiveGrade::copyFrom(const ClipItem& clip)
{
    setExposure(clip.exposure);
    setContrast(clip.contrast);
    setSaturation(clip.saturation);
    setTemperature(clip.temperature);
}

}  // namespace tavrelune
