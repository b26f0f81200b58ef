// The four adjustment values of the selected clip while the user edits them.
//
// Main thread only. Each value notifies its change signal when it changes
// (assigning the same value again is silent), so views and the controller
// can follow the sliders. Owned by the controller.
#pragma once

#include "grading/grade_values.h"

#include <QObject>

namespace tavrelune {

struct ClipItem;

class LiveGrade : public QObject {
    Q_OBJECT
    Q_PROPERTY(double exposure READ exposure WRITE setExposure NOTIFY exposureChanged)
    Q_PROPERTY(double contrast READ contrast WRITE setContrast NOTIFY contrastChanged)
    Q_PROPERTY(double saturation READ saturation WRITE setSaturation NOTIFY saturationChanged)
    Q_PROPERTY(double temperature READ temperature WRITE setTemperature NOTIFY temperatureChanged)

public:
    explicit LiveGrade(QObject* parent = nullptr);

    double exposure() const { return values_.exposure; }
    double contrast() const { return values_.contrast; }
    double saturation() const { return values_.saturation; }
    double temperature() const { return values_.temperature; }
    GradeValues values() const { return values_; }

    void setExposure(double value);
    void setContrast(double value);
    void setSaturation(double value);
    void setTemperature(double value);

    // Takes exposure, contrast, saturation and temperature from the clip, in
    // that order, each notifying as its setter does.
    void copyFrom(const ClipItem& clip);

Q_SIGNALS:
    void exposureChanged(double exposure);
    void contrastChanged(double contrast);
    void saturationChanged(double saturation);
    void temperatureChanged(double temperature);

private:
    void update(double& field, double value, void (LiveGrade::*changed)(double));

    GradeValues values_;
};

}  // namespace tavrelune
