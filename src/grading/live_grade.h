// The grade of the selected clip while the user edits it: one value per
// grade control (gradeControls()).
//
// Main thread only. A change notifies valuesChanged (assigning the same
// value again is silent), so views and the controller can follow the
// sliders. Owned by the controller.
#pragma once

#include "model/grade_values.h"

#include <QObject>

namespace tavrelune {

struct ClipItem;

class LiveGrade : public QObject {
    Q_OBJECT

public:
    explicit LiveGrade(QObject* parent = nullptr);

    GradeValues values() const { return values_; }
    double value(double GradeValues::*member) const { return values_.*member; }
    void setValue(double GradeValues::*member, double value);
    // Every control of `values`, notifying once when any changed.
    void setValues(const GradeValues& values);
    // The clip's grade.
    void copyFrom(const ClipItem& clip);

    double exposure() const { return values_.exposure; }
    double contrast() const { return values_.contrast; }
    double saturation() const { return values_.saturation; }
    double temperature() const { return values_.temperature; }
    double tint() const { return values_.tint; }
    void setExposure(double value) { setValue(&GradeValues::exposure, value); }
    void setContrast(double value) { setValue(&GradeValues::contrast, value); }
    void setSaturation(double value) { setValue(&GradeValues::saturation, value); }
    void setTemperature(double value) { setValue(&GradeValues::temperature, value); }
    void setTint(double value) { setValue(&GradeValues::tint, value); }

Q_SIGNALS:
    void valuesChanged();

private:
    GradeValues values_;
};

}  // namespace tavrelune
